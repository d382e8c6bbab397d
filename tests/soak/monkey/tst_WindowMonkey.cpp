#include "tests/soak/monkey/MonkeyRound.h"
#include "tests/soak/monkey/ProcessFigures.h"
#include "tests/soak/monkey/ToolkitWarnings.h"
#include "tests/support/run/GuiTestMain.h"

namespace {

constexpr quint32 kSeed = 51;
constexpr int kRounds = 5;
constexpr int kEvents = 400;

} // namespace

/// The real windows under random events, for seconds. The program of scripts/soak does the same for
/// as long as one likes.
class TestWindowMonkey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void losesNothingAndWarnsOfNothing();
};

void TestWindowMonkey::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void TestWindowMonkey::losesNothingAndWarnsOfNothing()
{
    ToolkitWarnings warnings;
    MonkeyTally tally;
    int descriptors = 0;
    for (quint32 round = 0; round < kRounds; ++round) {
        MonkeyRound(kSeed + round).play(kEvents, tally);
        QCOMPARE(tally.findings, QStringList());
        QCOMPARE(warnings.take(), QStringList());
        if (round == kRounds / 2)
            descriptors = ProcessFigures::now().descriptors;
    }
    QCOMPARE(tally.events, kRounds * kEvents);
    QVERIFY(tally.cleanings > 0 && tally.removed > 0);
    QVERIFY(ProcessFigures::now().descriptors <= descriptors + 2);
}

VANTOR_GUI_TEST_MAIN(TestWindowMonkey)
#include "tst_WindowMonkey.moc"
