#include "platform/system/HostSystemCalls.h"

#include "platform/system/SystemCalls.h"
#include "tests/support/calls/FailingKernel.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <unistd.h>

class TestHostSystemCalls final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesUpWhenTheSystemNeverLetsItOpen_data();
    void givesUpWhenTheSystemNeverLetsItOpen();
};

void TestHostSystemCalls::givesUpWhenTheSystemNeverLetsItOpen_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("somebody renames all the time") << EAGAIN;
    QTest::newRow("interrupted all the time") << EINTR;
}

void TestHostSystemCalls::givesUpWhenTheSystemNeverLetsItOpen()
{
    QFETCH(int, error);
    constexpr int kOpened = 0;
    constexpr unsigned kPatience = 20; // in seconds; whoever tries for ever is ended by a signal
    const ChildOutcome outcome = runInChild(ChildUser::Same, [error] {
        ::alarm(kPatience);
        if (!failEveryOpenedFolder(error))
            return kOpened;
        const auto opened = hostSystemCalls().openRoot("/");
        return opened ? kOpened : opened.error();
    });
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, error);
}

VANTOR_TEST_MAIN(TestHostSystemCalls)
#include "tst_HostSystemCalls.moc"
