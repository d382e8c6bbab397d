#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int kPatience = 120'000; // milliseconds

/// The answer of bench/compare.
struct Answer
{
    int exitCode = -1;
    QString output;
};

/// A program in the place of vantor-bench: $BENCH is the real one, $1 its command.
void makeStandIn(const QString &path, const QByteArray &lines)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\nBENCH=" VANTOR_BENCH "\n" + lines);
    QVERIFY(file.setPermissions(file.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser));
}

Answer compare(const QString &section, const QByteArray &standIn)
{
    // In memory, where there is such a place: trees are made much faster there.
    const QString memory = QStringLiteral("/dev/shm");
    const QTemporaryDir folder((QFileInfo::exists(memory) ? memory : QDir::tempPath()) +
                               QStringLiteral("/tst_Compare-XXXXXX"));
    const QString bench = folder.filePath(QStringLiteral("vantor-bench"));
    makeStandIn(bench, standIn);
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(VANTOR_COMPARE),
                  {QStringLiteral("--quick"), QStringLiteral("--alone"), QStringLiteral("--rounds"),
                   QStringLiteral("1"), QStringLiteral("--cores"), QStringLiteral("1"),
                   QStringLiteral("--bench"), bench, QStringLiteral("--folder"), folder.path(),
                   QStringLiteral("--ram"), folder.path(), section});
    if (!process.waitForFinished(kPatience))
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

} // namespace

/// The command that measures Vantor beside other programs, with a bench that does wrong.
class TestCompare final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsRightWhatIsRight_data();
    void callsRightWhatIsRight();
    void seesAWrongResult_data();
    void seesAWrongResult();
};

void TestCompare::callsRightWhatIsRight_data()
{
    QTest::addColumn<QString>("section");
    for (const char *section : {"sizing", "search", "cleaning"})
        QTest::addRow("%s", section) << QString::fromLatin1(section);
}

void TestCompare::callsRightWhatIsRight()
{
    QFETCH(QString, section);
    const Answer answer = compare(section, "exec $BENCH \"$@\"\n");
    QVERIFY2(!answer.output.contains(QStringLiteral("Vantor:")), qPrintable(answer.output));
    QCOMPARE(answer.exitCode, 0);
}

void TestCompare::seesAWrongResult_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QByteArray>("standIn");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const char *section, const QByteArray &standIn,
                        const char *complaint) {
        QTest::addRow("%s", name) << QString::fromLatin1(section) << standIn
                                  << QString::fromLatin1(complaint);
    };
    row("a size", "sizing", "$BENCH \"$@\" | sed 's/\"bytes\":/&1/'\n", "Vantor: (1");
    row("a number of items", "sizing", "$BENCH \"$@\" | sed 's/\"items\":/&1/'\n", "instead of");
    row("a walk that was broken off", "sizing",
        "$BENCH \"$@\" | sed 's/\"complete\":true/\"complete\":false/'\n", "False) instead of");
    row("a file not found", "search", "$BENCH \"$@\" | sed '2d'\n", "1 of");
    row("a file found twice", "search", "$BENCH \"$@\" | sed '2p'\n", "1 too many");
    row("something left", "cleaning", "$BENCH \"$@\"; [ \"$1\" != clean ] || touch \"$2/left\"\n",
        "1 entries left");
    row("something beside removed", "cleaning",
        "$BENCH \"$@\"; [ \"$1\" != clean ] || rm \"$2/../decoys/decoy-7\"\n",
        "what lay beside is not whole");
    row("something excluded removed", "cleaning",
        "$BENCH \"$@\"; [ \"$1\" != clean ] || rm -rf \"$2\"\n", "lost that were excluded");
    row("a failure", "cleaning", "$BENCH \"$@\"; [ \"$1\" != clean ] || exit 1\n",
        "Vantor: ended with 1");
}

void TestCompare::seesAWrongResult()
{
    QFETCH(QString, section);
    QFETCH(QByteArray, standIn);
    QFETCH(QString, complaint);
    const Answer answer = compare(section, standIn);
    QVERIFY2(answer.output.contains(complaint), qPrintable(answer.output));
    QCOMPARE(answer.exitCode, 1);
}

VANTOR_TEST_MAIN(TestCompare)
#include "tst_Compare.moc"
