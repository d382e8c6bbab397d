#include "platform/threads/BackgroundThreads.h"
#include "platform/threads/TaskRunner.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <atomic>
#include <barrier>
#include <latch>
#include <memory>
#include <thread>
#include <unistd.h>

class TaskRunnerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mayEndByAReply()
    {
        auto runner = std::make_unique<TaskRunner>(1);
        bool isReplied = false;
        runner->add([&](const std::stop_token &) { return [&] { runner.reset(); }; });
        runner->add([&](const std::stop_token &) { return [&] { isReplied = true; }; });
        QTRY_VERIFY(!runner);
        QCoreApplication::processEvents();
        QVERIFY(!isReplied);
    }

    void runsTasksInTheOrderOfTheirComing()
    {
        QList<int> order;
        std::latch done(3);
        TaskRunner runner(1);
        for (const int number : {1, 2, 3})
            runner.add([&, number](const std::stop_token &) {
                order.append(number);
                done.count_down();
                return TaskRunner::Reply();
            });
        done.wait();
        runner.waitUntilIdle();
        QCOMPARE(order, (QList<int>{1, 2, 3}));
    }

    void runsAsManyAtOnceAsItHasThreads()
    {
        // Neither task goes on before the other has arrived.
        std::barrier meeting(2);
        std::latch done(2);
        TaskRunner runner(2);
        for (int i = 0; i < 2; ++i)
            runner.add([&](const std::stop_token &) {
                meeting.arrive_and_wait();
                done.count_down();
                return TaskRunner::Reply();
            });
        done.wait();
        runner.waitUntilIdle();
    }

    void runsNoMoreAtOnceThanItHasThreads()
    {
        constexpr int kTasks = 60;
        constexpr unsigned kThreads = 3;
        std::atomic<unsigned> underWay = 0, most = 0;
        std::latch gate(1);
        int replies = 0;
        TaskRunner runner(kThreads);
        for (int i = 0; i < kTasks; ++i)
            runner.add([&](const std::stop_token &) {
                const unsigned now = ++underWay;
                for (unsigned seen = most; seen < now;)
                    most.compare_exchange_weak(seen, now);
                gate.wait();
                --underWay;
                return [&] { ++replies; };
            });
        // Threads that are started later have run before any ends: one too many would have, too.
        std::barrier meeting(kTasks);
        TaskRunner later(kTasks);
        for (int i = 0; i < kTasks; ++i)
            later.add([&](const std::stop_token &) {
                meeting.arrive_and_wait();
                return TaskRunner::Reply();
            });
        later.waitUntilIdle();
        gate.count_down();
        QTRY_COMPARE(replies, kTasks);
        QVERIFY(most.load() <= kThreads);
    }

    void oneThatHangsHoldsUpNoOtherThread()
    {
        std::latch gate(1);
        TaskRunner runner(3);
        int replies = 0;
        for (int i = 0; i < 3; ++i)
            runner.add([&, i](const std::stop_token &) {
                if (i < 2)
                    gate.wait();
                return [&] { ++replies; };
            });
        QTRY_COMPARE(replies, 1);
        gate.count_down();
        QTRY_COMPARE(replies, 3);
    }

    void repliesToAll()
    {
        QList<int> replied;
        TaskRunner runner(1);
        for (const int number : {1, 2, 3})
            runner.add([&, number](const std::stop_token &stop) {
                return [&, number, wasStopped = stop.stop_requested()] {
                    replied.append(wasStopped ? -number : number);
                };
            });
        QTRY_COMPARE(replied, (QList<int>{1, 2, 3}));
    }

    void waitsUntilNothingIsLeftToDo()
    {
        std::atomic<int> done = 0;
        TaskRunner runner(2);
        for (int i = 0; i < 20; ++i)
            runner.add([&](const std::stop_token &) {
                std::this_thread::yield();
                ++done;
                return TaskRunner::Reply();
            });
        runner.waitUntilIdle();
        QCOMPARE(done.load(), 20);
    }

    void tellsItsTasksToStopWhenTheProgramEnds()
    {
        constexpr int kStopped = 1;
        const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
            ::alarm(60); // one that is told nothing works for ever
            TaskRunner runner(1);
            std::latch begun(1);
            int stopped = 0;
            runner.add([&](const std::stop_token &stop) {
                begun.count_down();
                while (!stop.stop_requested())
                    std::this_thread::yield();
                return TaskRunner::Reply();
            });
            begun.wait();
            stopBackgroundThreads();
            runner.add([&](const std::stop_token &stop) {
                stopped = stop.stop_requested() ? kStopped : 0;
                return TaskRunner::Reply();
            });
            runner.waitUntilIdle();
            return stopped;
        });
        QCOMPARE(outcome.signal, 0);
        QCOMPARE(outcome.exitCode, kStopped);
    }

    void aStopForgetsTasksThatWait()
    {
        TaskRunner runner(1);
        std::latch begun(1), gate(1);
        std::atomic<bool> hasRun = false;
        runner.add([&](const std::stop_token &) {
            begun.count_down();
            gate.wait();
            return TaskRunner::Reply();
        });
        begun.wait();
        runner.add([&](const std::stop_token &) {
            hasRun = true;
            return TaskRunner::Reply();
        });
        runner.stop();
        QCOMPARE(runner.unfinishedCount(), 1);
        gate.count_down();
        QTRY_COMPARE(runner.unfinishedCount(), 0);
        QVERIFY(!hasRun);
    }

    /// The reply may hold the last reference to an object of the main thread.
    void whatADroppedReplyHoldsEndsOnTheMainThread()
    {
        std::atomic<std::thread::id> endedOn;
        std::latch begun(1), gate(1);
        {
            TaskRunner runner(1);
            std::shared_ptr<int> held(new int, [&endedOn](const int *value) {
                delete value;
                endedOn = std::this_thread::get_id();
            });
            runner.add([&, held = std::move(held)](const std::stop_token &) mutable {
                begun.count_down();
                gate.wait();
                return [held = std::move(held)] {};
            });
            begun.wait();
        }
        gate.count_down();
        awaitBackgroundThreads();
        QVERIFY(endedOn.load() == std::thread::id());
        QCoreApplication::processEvents();
        QVERIFY(endedOn.load() == std::this_thread::get_id());
    }
};

VANTOR_TEST_MAIN(TaskRunnerTest)
#include "tst_TaskRunner.moc"
