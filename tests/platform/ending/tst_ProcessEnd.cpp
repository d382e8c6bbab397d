#include "platform/ending/ProcessEnd.h"

#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <csignal>
#include <unistd.h>

using namespace std::chrono_literals;

class TestProcessEnd final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsWithTheCode();
    void endsByTheSignal_data();
    void endsByTheSignal();
    void endsLateWithTheCode();
    void endsLateByTheSignal();
};

void TestProcessEnd::endsWithTheCode()
{
    constexpr int kCode = 3;
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        endProcess({.exitCode = kCode});
        return 0;
    });
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, kCode);
}

void TestProcessEnd::endsByTheSignal_data()
{
    QTest::addColumn<bool>("isBlocked");
    QTest::newRow("plain") << false;
    QTest::newRow("blocked") << true;
}

/// It is handled and perhaps blocked, and still ends the process.
void TestProcessEnd::endsByTheSignal()
{
    QFETCH(bool, isBlocked);
    const ChildOutcome outcome = runInChild(ChildUser::Same, [isBlocked] {
        ::signal(SIGTERM, [](int) {});
        sigset_t all;
        sigfillset(&all);
        if (isBlocked)
            ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        endProcess({.exitCode = 3, .signal = SIGTERM});
        return 0;
    });
    QCOMPARE(outcome.signal, SIGTERM);
}

void TestProcessEnd::endsLateWithTheCode()
{
    constexpr int kCode = 3;
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        endProcessAfter(1s, {.exitCode = kCode});
        for (;;)
            ::pause();
        return 0;
    });
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, kCode);
}

void TestProcessEnd::endsLateByTheSignal()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        endProcessAfter(1s, {.exitCode = 3, .signal = SIGHUP});
        for (;;)
            ::pause();
        return 0;
    });
    QCOMPARE(outcome.signal, SIGHUP);
}

VANTOR_TEST_MAIN(TestProcessEnd)
#include "tst_ProcessEnd.moc"
