#include "platform/threads/LooseThreads.h"

#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QTest>
#include <atomic>
#include <latch>
#include <memory>
#include <thread>

using namespace std::chrono_literals;

class LooseThreadsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksBesideTheCaller()
    {
        std::atomic<std::thread::id> worked;
        runLoose([&] { worked = std::this_thread::get_id(); });
        QVERIFY(waitForLooseThreads(60s));
        QVERIFY(worked.load() != std::thread::id());
        QVERIFY(worked.load() != std::this_thread::get_id());
    }

    void oneThatHangsHoldsUpNoOther()
    {
        std::latch gate(1), isDone(1);
        runLoose([&] { gate.wait(); });
        runLoose([&] { isDone.count_down(); });
        isDone.wait();
        gate.count_down();
        QVERIFY(waitForLooseThreads(60s));
    }

    void tellsOfOneThatDoesNotEndInTime()
    {
        std::latch gate(1);
        runLoose([&] { gate.wait(); });
        QVERIFY(!waitForLooseThreads(1ms));
        gate.count_down();
        QVERIFY(waitForLooseThreads(60s));
    }

    void waitsForWhatTheWorkHoldsOnTo()
    {
        for (int round = 0; round < 100; ++round) {
            const auto held = std::make_shared<int>(round);
            const std::weak_ptr<int> watched = held;
            runLoose([held] {});
            QVERIFY(waitForLooseThreads(60s));
            QCOMPARE(watched.use_count(), 1);
        }
    }

    void keepsNoThreadThatHasEnded()
    {
        const auto threads = [] {
            return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::AllDirs).size();
        };
        QVERIFY(waitForLooseThreads(60s));
        const auto before = threads();
        for (int round = 0; round < 20; ++round)
            runLoose([] {});
        QVERIFY(waitForLooseThreads(60s));
        QCOMPARE(threads(), before);
    }
};

VANTOR_TEST_MAIN(LooseThreadsTest)
#include "tst_LooseThreads.moc"
