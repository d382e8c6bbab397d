#include "platform/ending/ExitGuard.h"

#include "platform/threads/BackgroundQueue.h"
#include "platform/threads/BackgroundThreads.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <atomic>
#include <csignal>
#include <latch>
#include <new>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

using Queue = BackgroundQueue<OwnersEnd::Abandon, Queueing::All>;

constexpr int kDestroyed = 3;

/// Its destructor ends the process with a code of its own.
struct Witness
{
    ~Witness() { ::_exit(kDestroyed); }
};

void say(const char *text)
{
    (void)!::write(STDERR_FILENO, text, qstrlen(text));
}

/// Begins a task that works until it is told to stop, and then says so.
void beginWork(Queue &queue)
{
    std::latch hasBegun(1);
    queue.run([&hasBegun](const std::stop_token &stop) {
        hasBegun.count_down();
        while (!stop.stop_requested())
            std::this_thread::yield();
        say("work stopped\n");
    });
    hasBegun.wait();
}

} // namespace

class TestExitGuard final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsTheWorkBeforeTheProcess();
    void destroysNothingStatic();
    void waitsForNoThreadThatHangs();
    void endsTheWorkWhenAnExceptionIsNotCaught();
    void leavesAnExitAfterItsEndAlone();
};

void TestExitGuard::endsTheWorkBeforeTheProcess()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        Queue queue;
        const ExitGuard guard;
        beginWork(queue);
        std::exit(0);
        return 0;
    });
    QCOMPARE(outcome.errorText, QByteArray("work stopped\n"));
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, EXIT_FAILURE);
}

void TestExitGuard::destroysNothingStatic()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        [[maybe_unused]] static const Witness object;
        const ExitGuard guard;
        std::exit(0);
        return 0;
    });
    QCOMPARE(outcome.exitCode, EXIT_FAILURE);
}

void TestExitGuard::waitsForNoThreadThatHangs()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        const ExitGuard guard;
        startBackgroundThread([] {
            for (;;)
                ::pause();
        });
        ::alarm(60); // an end by this signal would be too late
        std::exit(0);
        return 0;
    });
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, EXIT_FAILURE);
}

void TestExitGuard::endsTheWorkWhenAnExceptionIsNotCaught()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        Queue queue;
        const ExitGuard guard;
        beginWork(queue);
        std::thread([] { throw std::bad_alloc(); }).join();
        return 0;
    });
    QVERIFY2(outcome.errorText.startsWith("work stopped\n"), outcome.errorText);
    QCOMPARE(outcome.signal, SIGABRT);
}

void TestExitGuard::leavesAnExitAfterItsEndAlone()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        [[maybe_unused]] static const Witness object;
        {
            const ExitGuard guard;
        }
        std::exit(0);
        return 0;
    });
    QCOMPARE(outcome.exitCode, kDestroyed);
}

VANTOR_TEST_MAIN(TestExitGuard)
#include "tst_ExitGuard.moc"
