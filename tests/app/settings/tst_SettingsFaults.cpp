#include "tests/app/settings/SettingsFaultCase.h"
#include "tests/support/calls/PossibleErrors.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

/// What becomes of the settings when calls of the system fail while they are read and saved.
class TestSettingsFaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noFailedCallLosesAnAcknowledgedSave();
    void noCallThatFailsForGoodLosesOne();
};

void TestSettingsFaults::noFailedCallLosesAnAcknowledgedSave()
{
    const QTemporaryDir ground(settingsGround());
    const SettingsFaultOutcome sound = saveWithFaults(ground.path(), {});
    QVERIFY2(sound.wrong.isEmpty(), sound.wrong);
    std::size_t faults = 0;
    for (std::size_t call = 0; call < sound.calls.size(); ++call) {
        const std::size_t errors = possibleErrors(sound.calls[call]).size();
        QVERIFY2(errors > 0, sound.calls[call]);
        for (std::size_t which = 0; which < errors; ++which) {
            const SettingsFaultOutcome outcome = saveWithFaults(ground.path(), {{call, which}});
            QVERIFY2(outcome.wrong.isEmpty(), outcome.wrong);
            faults += outcome.faults;
        }
    }
    QVERIFY(faults > 300);
}

void TestSettingsFaults::noCallThatFailsForGoodLosesOne()
{
    const QTemporaryDir ground(settingsGround());
    const SettingsFaultOutcome sound = saveWithFaults(ground.path(), {});
    for (std::size_t call = 0; call < sound.calls.size(); ++call) {
        for (const int error : {EAGAIN, EINTR, EIO}) {
            const SettingsFaultOutcome outcome =
                saveWithFaults(ground.path(), {{call, 0, Fault::Lasts::ForGood, error}});
            QVERIFY2(outcome.wrong.isEmpty(), outcome.wrong);
            QVERIFY(outcome.faults > 0);
        }
    }
}

VANTOR_TEST_MAIN(TestSettingsFaults)
#include "tst_SettingsFaults.moc"
