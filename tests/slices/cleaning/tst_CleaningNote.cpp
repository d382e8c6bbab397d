#include "slices/cleaning/CleaningNote.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QFile>
#include <csignal>
#include <unistd.h>

class TestCleaningNote final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void leadsToWhatAKillHasLeft_data();
    void leadsToWhatAKillHasLeft();
    void isForgottenOnceTheCleaningHasEnded();
    void isWrittenWhereNothingIsExcluded();
    void isNotWrittenForNothing();
    void keepsWhatCouldNotBePutBack();
    void keepsWhatCouldNotBeTakenOutOfItsSlot();
    void leadsNowhereOutsideTheGrant();
    void isNoHarmWhenItIsDamaged();
    void goesWithoutANoteWhenNoneCanBeWritten();

private:
    CleaningPlan plan(const FileUrls &excluded) const
    {
        return makeCleaningPlan(hostSystemCalls(), *m_home, {m_slice}, excluding(excluded));
    }
    enum class Aside { UnderItsOwn, InASlot };
    bool cleanAndDie(const QByteArray &name, Aside aside = Aside::UnderItsOwn) const;
    /// What the settings' folder holds beside the note itself.
    qsizetype furtherNotes() const
    {
        return QDir(m_settings).entryList({QStringLiteral("aside-*")}, QDir::Files).size();
    }
    QList<CleaningRefusal> putBack() const
    {
        const LogRecorder silenced;
        CleaningNote note(hostSystemCalls(), m_settings);
        const QList<CleaningRefusal> left = note.putBack(*m_home, {});
        note.end();
        return left;
    }
    bool isNoted(const QByteArray &text) const
    {
        QFile file(m_settings + QStringLiteral("/cleaning"));
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QString m_settings;
    QByteArray m_downloads;
    SliceToClean m_slice;
};

void TestCleaningNote::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_settings = QFile::decodeName(*m_scratch / "settings");
    m_downloads = *m_scratch / "home/Downloads";
    makeFile(m_downloads + "/kept");
    makeFile(m_downloads + "/file");
    makeFile(m_downloads + "/a/b/deep");
    makeFile(*m_scratch / "home/.cache/thing");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
    m_slice = contentsOf({m_home->folder("Downloads")});
}

/// Cleans as the program does, in another process, which is killed when an entry of this name has
/// just been moved aside.
bool TestCleaningNote::cleanAndDie(const QByteArray &name, Aside aside) const
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [&] {
        const bool isSlot = aside == Aside::InASlot;
        const Swapper calls(isSlot ? "afterTakingAside" : "removeFile",
                            isSlot ? name : ".vantor-aside." + name, [] { ::raise(SIGKILL); });
        const LogRecorder silenced;
        CleaningNote note(hostSystemCalls(), m_settings);
        const CleaningPlan doomed = plan({m_home->file("Downloads/kept")});
        note.begin(doomed);
        performCleaning(calls, doomed, {}, {}, isSlot ? note.names() : nullptr);
        return 0;
    });
    return outcome.signal == SIGKILL;
}

void TestCleaningNote::leadsToWhatAKillHasLeft_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isSingle");
    QTest::addColumn<bool>("isInSlot");
    for (const bool isInSlot : {false, true}) {
        const char *where = isInSlot ? "in a slot" : "under its own";
        QTest::addRow("directly in the location, %s", where)
            << QByteArray("file") << false << isInSlot;
        QTest::addRow("deep inside, %s", where) << QByteArray("a/b/deep") << false << isInSlot;
        QTest::addRow("a single file, %s", where) << QByteArray("file") << true << isInSlot;
    }
}

/// The next cleaning is of something else.
void TestCleaningNote::leadsToWhatAKillHasLeft()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isSingle);
    if (isSingle)
        m_slice = theFiles({m_home->file("Downloads/" + name)});
    QFETCH(bool, isInSlot);
    QVERIFY(cleanAndDie(name.sliced(name.lastIndexOf('/') + 1),
                        isInSlot ? Aside::InASlot : Aside::UnderItsOwn));
    QVERIFY(!exists(m_downloads + '/' + name));
    m_slice = contentsOf({m_home->folder(".cache")});
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + '/' + name));
    QVERIFY(!isNoted("Downloads"));
    QCOMPARE(furtherNotes(), 0);
}

void TestCleaningNote::isForgottenOnceTheCleaningHasEnded()
{
    CleaningNote note(hostSystemCalls(), m_settings);
    note.begin(plan({m_home->file("Downloads/kept")}));
    QVERIFY(isNoted("Downloads"));
    QCOMPARE(furtherNotes(), 1);
    note.end();
    QVERIFY(!isNoted("Downloads"));
    QCOMPARE(furtherNotes(), 0);
}

void TestCleaningNote::isWrittenWhereNothingIsExcluded()
{
    CleaningNote note(hostSystemCalls(), m_settings);
    note.begin(plan({}));
    QVERIFY(isNoted("Downloads"));
}

void TestCleaningNote::isNotWrittenForNothing()
{
    CleaningNote note(hostSystemCalls(), m_settings);
    note.begin({});
    note.end();
    QVERIFY(!QFile::exists(m_settings));
}

void TestCleaningNote::keepsWhatCouldNotBePutBack()
{
    QVERIFY(cleanAndDie("file"));
    makeFile(m_downloads + "/file", "of the user's own");
    const QList<CleaningRefusal> left = putBack();
    QCOMPARE(left.size(), 1);
    QCOMPARE(left.first().path, m_downloads + "/.vantor-aside.file");
    QVERIFY(isNoted("Downloads"));
    move(m_downloads + "/file", m_downloads + "/other");
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + "/file") && !isNoted("Downloads"));
}

/// It waits under a private name that tells its own.
void TestCleaningNote::keepsWhatCouldNotBeTakenOutOfItsSlot()
{
    QVERIFY(cleanAndDie("file", Aside::InASlot));
    makeFile(m_downloads + "/file", "of the user's own");
    const QList<CleaningRefusal> left = putBack();
    QCOMPARE(left.size(), 1);
    QCOMPARE(left.first().path, m_downloads + "/.vantor-aside.file");
    move(m_downloads + "/file", m_downloads + "/other");
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + "/file") && !isNoted("Downloads"));
    QCOMPARE(furtherNotes(), 0);
}

void TestCleaningNote::leadsNowhereOutsideTheGrant()
{
    const QByteArray outside = *m_scratch / "outside/.vantor-aside.file";
    QVERIFY(cleanAndDie("file"));
    makeFile(outside);
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home/.cache");
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + "/.vantor-aside.file") && exists(outside));
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home"); // granted again
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + "/file") && exists(outside));
}

void TestCleaningNote::isNoHarmWhenItIsDamaged()
{
    QVERIFY(cleanAndDie("file"));
    makeFile(QFile::encodeName(m_settings) + "/cleaning", "below file:///\nin nowhere\n\n/");
    QVERIFY(putBack().isEmpty());
    QVERIFY(exists(m_downloads + "/.vantor-aside.file"));
}

/// It cleans all the same: what is left aside is found when its own folder is cleaned again.
void TestCleaningNote::goesWithoutANoteWhenNoneCanBeWritten()
{
    makeFile(QFile::encodeName(m_settings), "a file where the folder should be");
    LogRecorder log;
    CleaningNote note(hostSystemCalls(), m_settings);
    note.begin(plan({m_home->file("Downloads/kept")}));
    QVERIFY(log.lines().contains(QStringLiteral("no note of the cleaning could be written")));
}

VANTOR_TEST_MAIN(TestCleaningNote)
#include "tst_CleaningNote.moc"
