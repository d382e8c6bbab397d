#include "slices/home/KnownPrograms.h"
#include "tests/support/run/TestMain.h"

#include <QSet>

namespace {

/// Every text of a row that becomes part of a path.
QList<const char *> pathsOf(const KnownProgram &program)
{
    QList<const char *> paths{program.homeProfiles, program.configProfiles, program.cache,
                              program.snap.name, program.snap.profiles};
    for (const FlatpakEdition &flatpak : program.flatpaks)
        paths.append(flatpak.id);
    for (const ProgramChannel &channel : program.channels)
        paths.append(channel.folder);
    return paths;
}

bool leadsDown(const QByteArray &path)
{
    const QByteArrayList names = path.split('/');
    return !names.contains("") && !names.contains(".") && !names.contains("..");
}

} // namespace

/// What every row must contain. The tests of the found programs check what the rows say about each
/// program.
class TestKnownPrograms final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void haveANameAndACacheEach();
    void areSeenToRun();
    void leadDownFromTheHome();
    void knowNoFilesWithoutProfiles();
    void fillAText();
};

void TestKnownPrograms::haveANameAndACacheEach()
{
    QSet<QByteArray> names;
    QSet<QByteArray> caches;
    for (const KnownProgram &program : knownPrograms()) {
        names.insert(program.name);
        caches.insert(program.cache);
        QVERIFY(!QByteArray(program.cache).isEmpty());
    }
    QCOMPARE(names.size(), qsizetype(knownPrograms().size()));
    QCOMPARE(caches.size(), qsizetype(knownPrograms().size()));
}

/// By a process, also when there is a lock: the lock may be elsewhere.
void TestKnownPrograms::areSeenToRun()
{
    QSet<QByteArray> processes;
    for (const KnownProgram &program : knownPrograms()) {
        QVERIFY2(program.processes.front(), program.name);
        for (const char *process : program.processes) {
            QVERIFY2(!process || !processes.contains(process), process);
            if (process)
                processes.insert(process);
        }
    }
    for (const KnownMailProgram &program : knownMailPrograms())
        QVERIFY(!QByteArray(program.process).isEmpty());
}

void TestKnownPrograms::leadDownFromTheHome()
{
    for (const KnownProgram &program : knownPrograms()) {
        for (const char *path : pathsOf(program))
            QVERIFY2(!path || leadsDown(path), path);
    }
    for (const KnownMailProgram &program : knownMailPrograms())
        QVERIFY2(leadsDown(program.attachments), program.attachments);
}

void TestKnownPrograms::knowNoFilesWithoutProfiles()
{
    for (const KnownProgram &program : knownPrograms()) {
        const bool hasProfiles = program.homeProfiles || program.configProfiles;
        QVERIFY2(hasProfiles == (program.family != ProgramFamily::Other), program.name);
        QVERIFY2(hasProfiles || program.files == ProfileFiles::Unknown, program.name);
        QVERIFY2(program.snap.name || !program.snap.profiles, program.name);
        for (const FlatpakEdition &flatpak : program.flatpaks)
            QVERIFY2(!flatpak.id || hasProfiles ||
                         flatpak.profiles == FlatpakEdition::Profiles::Unknown,
                     program.name);
    }
}

void TestKnownPrograms::fillAText()
{
    QCOMPARE(withProgramNames(QStringLiteral("as it is")), QStringLiteral("as it is"));
    QCOMPARE(withProgramNames(QStringLiteral("{mail programs}: {chromiums} of {browsers}")),
             QStringLiteral("Claws Mail and Sylpheed: five of Firefox, Chrome, Chromium, Brave, "
                            "Edge and Vivaldi"));
}

VANTOR_TEST_MAIN(TestKnownPrograms)
#include "tst_KnownPrograms.moc"
