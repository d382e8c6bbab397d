#include "platform/threads/LatestTask.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <atomic>
#include <latch>

namespace {

void waitForStop(const std::stop_token &stop)
{
    while (!stop.stop_requested())
        std::this_thread::yield();
}

} // namespace

class LatestTaskTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsOnAThreadOfItsOwn()
    {
        LatestTask task;
        std::atomic<std::thread::id> worked;
        task.start([&](const std::stop_token &) { worked = std::this_thread::get_id(); });
        QCOMPARE(task.threadCount(), 1);
        QTRY_COMPARE(task.threadCount(), 0);
        QVERIFY(worked.load() != std::this_thread::get_id());
    }

    void aNewerTaskStopsThoseBeforeItWithoutWaiting()
    {
        LatestTask task;
        std::latch gate(1);
        std::atomic<int> stopped = 0;
        for (int i = 0; i < 3; ++i) {
            task.start([&](const std::stop_token &stop) {
                waitForStop(stop);
                gate.wait(); // slow to heed it
                ++stopped;
            });
        }
        QCOMPARE(task.threadCount(), 3);
        QCOMPARE(stopped.load(), 0);
        task.stop();
        gate.count_down();
        QTRY_COMPARE(task.threadCount(), 0);
        QCOMPARE(stopped.load(), 3);
    }

    void theLatestIsLeftInPeace()
    {
        LatestTask task;
        std::latch begun(1), gate(1);
        std::atomic<bool> wasStopped = true;
        task.start(waitForStop);
        task.start([&](const std::stop_token &stop) {
            begun.count_down();
            gate.wait();
            wasStopped = stop.stop_requested();
        });
        begun.wait();
        gate.count_down();
        QTRY_COMPARE(task.threadCount(), 0);
        QVERIFY(!wasStopped);
    }

    void answersOnTheOwnersThread()
    {
        LatestTask task;
        std::thread::id asked, answered;
        task.ask([&](const std::stop_token &) {
            asked = std::this_thread::get_id();
            return [&] { answered = std::this_thread::get_id(); };
        });
        QTRY_COMPARE(answered, std::this_thread::get_id());
        QVERIFY(asked != answered);
    }

    void aQuestionThatHangsHoldsUpNoLaterOne()
    {
        LatestTask task;
        std::latch gate(1);
        bool oldAnswered = false, newAnswered = false;
        task.ask([&](const std::stop_token &) {
            gate.wait();
            return [&] { oldAnswered = true; };
        });
        task.ask([&](const std::stop_token &) { return [&] { newAnswered = true; }; });
        QTRY_VERIFY(newAnswered);
        gate.count_down();
        QTRY_COMPARE(task.threadCount(), 0); // its end is told after its answer
        QVERIFY(!oldAnswered);
    }

    void anAnswerOnItsWayIsHeldBack()
    {
        LatestTask task;
        bool isAnswered = false;
        task.ask([&](const std::stop_token &) { return [&] { isAnswered = true; }; });
        task.stop();
        QTRY_COMPARE(task.threadCount(), 0);
        QVERIFY(!isAnswered);
    }

    void theDestructorWaitsForNoQuestion()
    {
        std::latch begun(1), gate(1);
        std::atomic<bool> wasStopped = false, isOver = false;
        bool isAnswered = false;
        {
            LatestTask task;
            task.ask([&](const std::stop_token &stop) {
                begun.count_down();
                gate.wait(); // as a call does to a disk that is dead
                wasStopped = stop.stop_requested();
                isOver = true;
                return [&] { isAnswered = true; };
            });
            begun.wait();
        }
        QVERIFY(!isOver);
        gate.count_down(); // else this would never be reached
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
        QVERIFY(isOver && wasStopped);
        QVERIFY(!isAnswered);
    }

    void theDestructorStopsWorkAndWaitsForIt()
    {
        std::atomic<int> ended = 0;
        {
            LatestTask task;
            for (int i = 0; i < 2; ++i) {
                task.start([&](const std::stop_token &stop) {
                    waitForStop(stop);
                    ++ended;
                });
            }
        }
        QCOMPARE(ended.load(), 2);
    }
};

VANTOR_TEST_MAIN(LatestTaskTest)
#include "tst_LatestTask.moc"
