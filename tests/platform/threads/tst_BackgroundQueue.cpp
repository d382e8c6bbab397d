#include "platform/threads/BackgroundQueue.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <atomic>
#include <latch>
#include <memory>
#include <semaphore>
#include <thread>

namespace {

template <Queueing kQueueing> using WaitingQueue = BackgroundQueue<OwnersEnd::Wait, kQueueing>;
template <Queueing kQueueing>
using AbandoningQueue = BackgroundQueue<OwnersEnd::Abandon, kQueueing>;

// A task of one kind cannot be used as a task of the other, because each may use other things.
static_assert(
    !std::is_convertible_v<BackgroundTask<OwnersEnd::Wait>, BackgroundTask<OwnersEnd::Abandon>>);
static_assert(
    !std::is_convertible_v<BackgroundTask<OwnersEnd::Abandon>, BackgroundTask<OwnersEnd::Wait>>);

void waitForStop(const std::stop_token &stop)
{
    std::binary_semaphore isTold(0);
    const std::stop_callback tell(stop, [&isTold] { isTold.release(); });
    isTold.acquire();
}

} // namespace

class BackgroundQueueTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksElsewhereAndRepliesHere()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::thread::id worked, replied;
        queue.run([&](const std::stop_token &) {
            worked = std::this_thread::get_id();
            return [&] { replied = std::this_thread::get_id(); };
        });
        QVERIFY(queue.isBusy());
        QTRY_COMPARE(replied, std::this_thread::get_id());
        QVERIFY(worked != std::thread::id() && worked != replied);
        QVERIFY(!queue.isBusy());
    }

    void needsNoReply()
    {
        WaitingQueue<Queueing::All> queue;
        std::atomic<std::thread::id> worked;
        queue.run([&](const std::stop_token &) { worked = std::this_thread::get_id(); });
        queue.run([](const std::stop_token &) { return BackgroundReply(); });
        QCOMPARE(queue.unfinishedCount(), 2);
        QTRY_COMPARE(queue.unfinishedCount(), 0);
        QVERIFY(worked.load() != std::thread::id());
        QVERIFY(worked.load() != std::this_thread::get_id());
    }

    // Latest only: a newer task replaces those before it.

    void aNewerOneStopsTheOneUnderWay()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::latch begun(1);
        bool wasStopped = false, oldReplied = false, newReplied = false;
        queue.run([&](const std::stop_token &stop) {
            begun.count_down();
            waitForStop(stop);
            wasStopped = true;
            return [&] { oldReplied = true; };
        });
        begun.wait();
        queue.run([&](const std::stop_token &) { return [&] { newReplied = true; }; });
        QTRY_VERIFY(newReplied);
        QVERIFY(wasStopped);
        QVERIFY(!oldReplied);
    }

    void aNewerOneStopsThoseBeforeItWithoutWaiting()
    {
        WaitingQueue<Queueing::LatestOnly> queue(kThreadForEachTask);
        std::latch gate(1);
        std::atomic<int> stopped = 0;
        for (int i = 0; i < 3; ++i) {
            std::latch begun(1);
            queue.run([&](const std::stop_token &stop) {
                begun.count_down();
                waitForStop(stop);
                gate.wait(); // slow to heed it
                ++stopped;
            });
            begun.wait();
        }
        QCOMPARE(queue.unfinishedCount(), 3);
        QCOMPARE(stopped.load(), 0);
        queue.stop();
        gate.count_down();
        QTRY_COMPARE(queue.unfinishedCount(), 0);
        QCOMPARE(stopped.load(), 3);
    }

    void theLatestIsLeftInPeace()
    {
        WaitingQueue<Queueing::LatestOnly> queue(kThreadForEachTask);
        std::latch begun(1), gate(1);
        std::atomic<bool> wasStopped = true;
        queue.run(waitForStop);
        queue.run([&](const std::stop_token &stop) {
            begun.count_down();
            gate.wait();
            wasStopped = stop.stop_requested();
        });
        begun.wait();
        gate.count_down();
        QTRY_COMPARE(queue.unfinishedCount(), 0);
        QVERIFY(!wasStopped);
    }

    void aTaskThatHangsHoldsUpNoLaterOneWithAThreadForEach()
    {
        AbandoningQueue<Queueing::LatestOnly> queue(kThreadForEachTask);
        std::latch begun(1), gate(1);
        bool oldReplied = false, newReplied = false;
        queue.run([&](const std::stop_token &) {
            begun.count_down();
            gate.wait();
            return [&] { oldReplied = true; };
        });
        begun.wait();
        queue.run([&](const std::stop_token &) { return [&] { newReplied = true; }; });
        QTRY_VERIFY(newReplied);
        gate.count_down();
        QTRY_COMPARE(queue.unfinishedCount(), 0); // it counts until its reply arrives
        QVERIFY(!oldReplied);
    }

    void ofThoseThatWaitOnlyTheLatestIsDone()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::latch begun(1), gate(1);
        std::atomic<int> done = 0;
        queue.run([&](const std::stop_token &) {
            begun.count_down();
            gate.wait();
        });
        begun.wait();
        int replied = 0;
        for (int i = 1; i <= 5; ++i) {
            queue.run([&, i](const std::stop_token &) {
                ++done;
                return [&replied, i] { replied = i; };
            });
        }
        QCOMPARE(queue.unfinishedCount(), 2);
        gate.count_down();
        QTRY_COMPARE(replied, 5);
        QCOMPARE(done.load(), 1);
        QCOMPARE(queue.unfinishedCount(), 0);
    }

    void worksOnOneThreadAtATime()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::atomic<int> underWay = 0, most = 0;
        int replied = 0;
        const auto work = [&](const std::stop_token &) {
            most = std::max(most.load(), ++underWay);
            std::this_thread::yield();
            --underWay;
            return [&] { ++replied; };
        };
        for (int i = 1; i <= 50; ++i) {
            queue.run(work);
            if (i % 2 == 0)
                QTRY_COMPARE(replied, i / 2);
        }
        QCOMPARE(most.load(), 1);
    }

    // Replies that are no longer wanted.

    void aReplyOnItsWayIsDroppedForANewerTask()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::latch workIsDone(1);
        bool oldReplied = false, newReplied = false;
        std::latch begun(1);
        queue.run([&](const std::stop_token &) {
            begun.count_down();
            return [&] { oldReplied = true; };
        });
        begun.wait();
        // The thread takes this up only when the first reply has been sent.
        queue.run([&](const std::stop_token &) {
            workIsDone.count_down();
            return [&] { newReplied = true; };
        });
        workIsDone.wait();
        QTRY_VERIFY(newReplied);
        QVERIFY(!oldReplied);
    }

    void aReplyOnItsWayIsDroppedByAStop()
    {
        AbandoningQueue<Queueing::LatestOnly> queue(kThreadForEachTask);
        bool isReplied = false;
        std::latch begun(1);
        queue.run([&](const std::stop_token &) {
            begun.count_down();
            return [&] { isReplied = true; };
        });
        begun.wait();
        queue.stop();
        QTRY_COMPARE(queue.unfinishedCount(), 0);
        QVERIFY(!isReplied);
    }

    void nothingIsRepliedAfterAStop()
    {
        AbandoningQueue<Queueing::LatestOnly> queue;
        std::latch begun(1), gate(1);
        bool isReplied = false, isLaterReplied = false;
        queue.run([&](const std::stop_token &) {
            begun.count_down();
            gate.wait();
            return [&] { isReplied = true; };
        });
        begun.wait();
        queue.stop();
        gate.count_down();
        queue.run([&](const std::stop_token &) { return [&] { isLaterReplied = true; }; });
        QTRY_VERIFY(isLaterReplied);
        QVERIFY(!isReplied);
    }

    // The end of the owner.

    void abandonsWhatHangs()
    {
        std::latch begun(1), gate(1);
        bool wasStopped = false, isNextDone = false, isReplied = false;
        std::atomic<bool> isOver = false;
        {
            AbandoningQueue<Queueing::All> queue;
            queue.run([&](const std::stop_token &stop) {
                begun.count_down();
                gate.wait(); // like a call to a dead disk
                wasStopped = stop.stop_requested();
                isOver = true;
                return [&] { isReplied = true; };
            });
            begun.wait();
            queue.run([&](const std::stop_token &) { isNextDone = true; });
        }
        QVERIFY(!isOver);
        gate.count_down(); // else this would never be reached
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
        QVERIFY(isOver && wasStopped);
        QVERIFY(!isNextDone);
        QVERIFY(!isReplied);
    }

    void tellsWhatRunsToStopAndWaitsForIt()
    {
        std::atomic<int> ended = 0;
        {
            std::latch begun(2);
            WaitingQueue<Queueing::All> queue(2);
            for (int i = 0; i < 2; ++i) {
                queue.run([&](const std::stop_token &stop) {
                    begun.count_down();
                    waitForStop(stop);
                    ++ended;
                });
            }
            begun.wait();
        }
        QCOMPARE(ended.load(), 2);
    }

    void forgetsTasksThatWaitAtItsEnd()
    {
        std::atomic<bool> hasRun = false;
        {
            std::latch begun(1);
            WaitingQueue<Queueing::All> queue;
            queue.run([&](const std::stop_token &stop) {
                begun.count_down();
                waitForStop(stop);
            });
            begun.wait();
            queue.run([&](const std::stop_token &) { hasRun = true; });
        }
        QVERIFY(!hasRun);
    }

    void waitsForWhatItsTasksHoldOnTo()
    {
        for (int round = 0; round < 100; ++round) {
            std::weak_ptr<int> watched;
            {
                std::latch begun(1);
                WaitingQueue<Queueing::All> queue;
                auto held = std::make_shared<int>(round);
                watched = held;
                queue.run([held = std::move(held), &begun](const std::stop_token &) {
                    begun.count_down();
                });
                begun.wait();
            }
            QVERIFY(watched.expired());
        }
    }
};

VANTOR_TEST_MAIN(BackgroundQueueTest)
#include "tst_BackgroundQueue.moc"
