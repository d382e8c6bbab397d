#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsUnderway.h"
#include "tests/support/calls/KillingCalls.h"
#include "tests/support/run/KilledProcess.h"
#include "tests/support/run/TestMain.h"

#include <QTemporaryDir>
#include <limits>

/// What is left of the settings when the process that saves them is killed.
class TestSettingsKills final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKillBeforeAnyCallLeavesTheOldOrTheNew();
    void aKillAtAnyMomentLosesNoAcknowledgedSave();
};

void TestSettingsKills::aKillBeforeAnyCallLeavesTheOldOrTheNew()
{
    constexpr int kSaves = 3; // the first, the second, and one with a previous generation
    int kills = 0;
    for (;; ++kills) {
        const QTemporaryDir folder(settingsGround());
        const SettingsUnderway settings(folder.filePath(QStringLiteral("settings")));
        const WorkEnd end = runAndKill([&] { settings.save(KillingCalls(kills), 1, kSaves); });
        const QByteArray wrong = settings.wrong(hostSystemCalls());
        QVERIFY2(wrong.isEmpty(), QByteArray::number(kills) + ": " + wrong);
        QVERIFY(end != WorkEnd::Failed);
        if (end == WorkEnd::Done)
            break;
    }
    QVERIFY(kills > 40);
}

void TestSettingsKills::aKillAtAnyMomentLosesNoAcknowledgedSave()
{
    constexpr int kKills = 200;
    constexpr std::chrono::microseconds kStep{25};
    const QTemporaryDir folder(settingsGround());
    int acknowledged = 0;
    for (int i = 0; i < kKills; ++i) {
        const SettingsUnderway settings(folder.filePath(QString::number(i)));
        const WorkEnd end = runAndKill(
            [&] { settings.save(hostSystemCalls(), 1, std::numeric_limits<int>::max() - 1); },
            i * kStep);
        QCOMPARE(end, WorkEnd::Killed);
        acknowledged += settings.acknowledged();
        const QByteArray wrong = settings.wrong(hostSystemCalls());
        QVERIFY2(wrong.isEmpty(), QByteArray::number(i) + ": " + wrong);
    }
    QVERIFY(acknowledged > kKills / 10);
}

VANTOR_TEST_MAIN(TestSettingsKills)
#include "tst_SettingsKills.moc"
