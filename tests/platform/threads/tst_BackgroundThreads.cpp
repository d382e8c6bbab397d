#include "platform/threads/BackgroundThreads.h"

#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QTest>
#include <atomic>
#include <latch>
#include <memory>
#include <thread>

using namespace std::chrono_literals;

class BackgroundThreadsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksBesideTheCaller()
    {
        std::atomic<std::thread::id> worked;
        startBackgroundThread([&] { worked = std::this_thread::get_id(); });
        QVERIFY(waitForBackgroundThreads(60s));
        QVERIFY(worked.load() != std::thread::id());
        QVERIFY(worked.load() != std::this_thread::get_id());
    }

    void oneThatHangsHoldsUpNoOther()
    {
        std::latch gate(1), isDone(1);
        startBackgroundThread([&] { gate.wait(); });
        startBackgroundThread([&] { isDone.count_down(); });
        isDone.wait();
        gate.count_down();
        QVERIFY(waitForBackgroundThreads(60s));
    }

    void tellsOfOneThatDoesNotEndInTime()
    {
        std::latch gate(1);
        startBackgroundThread([&] { gate.wait(); });
        QVERIFY(!waitForBackgroundThreads(1ms));
        gate.count_down();
        QVERIFY(waitForBackgroundThreads(60s));
    }

    void waitsForWhatTheWorkHoldsOnTo()
    {
        for (int round = 0; round < 100; ++round) {
            const auto held = std::make_shared<int>(round);
            const std::weak_ptr<int> watched = held;
            startBackgroundThread([held] {});
            QVERIFY(waitForBackgroundThreads(60s));
            QCOMPARE(watched.use_count(), 1);
        }
    }

    void keepsNoThreadThatHasEnded()
    {
        const auto threads = [] {
            return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::AllDirs).size();
        };
        QVERIFY(waitForBackgroundThreads(60s));
        const auto before = threads();
        for (int round = 0; round < 20; ++round)
            startBackgroundThread([] {});
        QVERIFY(waitForBackgroundThreads(60s));
        QCOMPARE(threads(), before);
    }
};

VANTOR_TEST_MAIN(BackgroundThreadsTest)
#include "tst_BackgroundThreads.moc"
