#include "platform/threads/LatestJob.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <atomic>
#include <latch>
#include <thread>

class LatestJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksElsewhereAndAnswersHere()
    {
        LatestJob job;
        std::thread::id worked, answered;
        job.run([&](const std::stop_token &) {
            worked = std::this_thread::get_id();
            return [&] { answered = std::this_thread::get_id(); };
        });
        QTRY_COMPARE(answered, std::this_thread::get_id());
        QVERIFY(worked != std::thread::id() && worked != answered);
    }

    void aNewerOneStopsTheOneUnderWay()
    {
        LatestJob job;
        std::latch begun(1);
        bool wasStopped = false, oldAnswered = false, newAnswered = false;
        job.run([&](const std::stop_token &stop) {
            begun.count_down();
            while (!stop.stop_requested())
                std::this_thread::yield();
            wasStopped = true;
            return [&] { oldAnswered = true; };
        });
        begun.wait();
        job.run([&](const std::stop_token &) { return [&] { newAnswered = true; }; });
        QTRY_VERIFY(newAnswered);
        QVERIFY(wasStopped);
        QVERIFY(!oldAnswered);
    }

    void ofThoseThatWaitOnlyTheLatestIsDone()
    {
        LatestJob job;
        std::latch begun(1), gate(1);
        std::atomic<int> done = 0;
        job.run([&](const std::stop_token &) -> LatestJob::Answer {
            begun.count_down();
            gate.wait();
            return {};
        });
        begun.wait();
        int answered = 0;
        for (int i = 1; i <= 5; ++i) {
            job.run([&, i](const std::stop_token &) {
                ++done;
                return [&answered, i] { answered = i; };
            });
        }
        gate.count_down();
        QTRY_COMPARE(answered, 5);
        QCOMPARE(done.load(), 1);
    }

    void anAnswerOnItsWayIsHeldBack()
    {
        LatestJob job;
        std::latch workIsDone(1);
        bool oldAnswered = false, newAnswered = false;
        job.run([&](const std::stop_token &) { return [&] { oldAnswered = true; }; });
        // The thread takes this up only when the first answer has been sent.
        const auto second = [&](const std::stop_token &) -> LatestJob::Answer {
            workIsDone.count_down();
            return [&] { newAnswered = true; };
        };
        job.run(second);
        workIsDone.wait();
        QTRY_VERIFY(newAnswered);
        QVERIFY(!oldAnswered);
    }

    void nothingIsAnsweredAfterAStop()
    {
        LatestJob job;
        std::latch begun(1), gate(1);
        bool isAnswered = false, isLaterAnswered = false;
        job.run([&](const std::stop_token &) {
            begun.count_down();
            gate.wait();
            return [&] { isAnswered = true; };
        });
        begun.wait();
        job.stop();
        gate.count_down();
        job.run([&](const std::stop_token &) { return [&] { isLaterAnswered = true; }; });
        QTRY_VERIFY(isLaterAnswered);
        QVERIFY(!isAnswered);
    }

    void diesAtOnceAtWork()
    {
        std::latch begun(1), gate(1);
        bool wasStopped = false, isNextDone = false, isAnswered = false;
        std::atomic<bool> isOver = false;
        {
            LatestJob job;
            job.run([&](const std::stop_token &stop) {
                begun.count_down();
                gate.wait(); // as a call does to a disk that is dead
                wasStopped = stop.stop_requested();
                isOver = true;
                return [&] { isAnswered = true; };
            });
            begun.wait();
            job.run([&](const std::stop_token &) -> LatestJob::Answer {
                isNextDone = true;
                return {};
            });
        }
        QVERIFY(!isOver);
        gate.count_down(); // else this would never be reached
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
        QVERIFY(isOver && wasStopped);
        QVERIFY(!isNextDone);
        QVERIFY(!isAnswered);
    }

    void worksOnOneThreadAtATime()
    {
        LatestJob job;
        std::atomic<int> underWay = 0, most = 0;
        int answered = 0;
        const auto work = [&](const std::stop_token &) {
            most = std::max(most.load(), ++underWay);
            std::this_thread::yield();
            --underWay;
            return [&] { ++answered; };
        };
        for (int i = 1; i <= 50; ++i) {
            job.run(work);
            if (i % 2 == 0)
                QTRY_COMPARE(answered, i / 2);
        }
        QCOMPARE(most.load(), 1);
    }
};

VANTOR_TEST_MAIN(LatestJobTest)
#include "tst_LatestJob.moc"
