#include "platform/threads/WorkQueue.h"
#include "tests/support/run/TestMain.h"

#include <atomic>
#include <barrier>
#include <latch>

class TestWorkQueue final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsJobsInTheOrderOfTheirComing();
    void runsAsManyAtOnceAsItHasThreads();
    void tellsTheRunningJobToStop();
    void forgetsWaitingJobs();
};

void TestWorkQueue::runsJobsInTheOrderOfTheirComing()
{
    QList<int> order;
    std::latch done(3);
    WorkQueue queue(1);
    for (const int number : {1, 2, 3})
        queue.push([&, number](const std::stop_token &) {
            order.append(number);
            done.count_down();
        });
    done.wait();
    QCOMPARE(order, (QList<int>{1, 2, 3}));
}

void TestWorkQueue::runsAsManyAtOnceAsItHasThreads()
{
    // Neither passes before the other has come.
    std::barrier meeting(2);
    std::latch done(2);
    WorkQueue queue(2);
    for (int i = 0; i < 2; ++i)
        queue.push([&](const std::stop_token &) {
            meeting.arrive_and_wait();
            done.count_down();
        });
    done.wait();
}

void TestWorkQueue::tellsTheRunningJobToStop()
{
    std::latch begun(1);
    std::atomic<bool> wasTold = false;
    {
        WorkQueue queue(1);
        queue.push([&](const std::stop_token &stop) {
            std::latch told(1);
            const std::stop_callback callback(stop, [&] { told.count_down(); });
            begun.count_down();
            told.wait();
            wasTold = true;
        });
        begun.wait();
    }
    QVERIFY(wasTold);
}

void TestWorkQueue::forgetsWaitingJobs()
{
    std::latch begun(1);
    std::atomic<bool> hasRun = false;
    {
        WorkQueue queue(1);
        queue.push([&](const std::stop_token &stop) {
            std::latch told(1);
            const std::stop_callback callback(stop, [&] { told.count_down(); });
            begun.count_down();
            told.wait();
        });
        begun.wait();
        queue.push([&](const std::stop_token &) { hasRun = true; });
    }
    QVERIFY(!hasRun);
}

VANTOR_TEST_MAIN(TestWorkQueue)
#include "tst_WorkQueue.moc"
