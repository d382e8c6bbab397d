#include "platform/threads/BackgroundQueue.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <linux/ioprio.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

struct Place
{
    int niceness = 0;
    bool waitsForTheDisk = false;

    bool operator==(const Place &) const = default;
};

/// Where the calling thread stands in the queues of the system.
Place place()
{
    const auto thread = static_cast<id_t>(gettid());
    const long io = syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, thread);
    return {getpriority(PRIO_PROCESS, thread), IOPRIO_PRIO_CLASS(io) == IOPRIO_CLASS_IDLE};
}

Place placeOfAHelper()
{
    Place found;
    std::jthread([&found] { found = place(); }).join();
    return found;
}

} // namespace

class TestThreadPriority final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesATaskAndItsHelpers_data();
    void placesATaskAndItsHelpers();
};

void TestThreadPriority::placesATaskAndItsHelpers_data()
{
    QTest::addColumn<ThreadPriority>("priority");
    QTest::addColumn<bool>("isBehind");
    QTest::addRow("usual") << ThreadPriority::Usual << false;
    QTest::addRow("behind the window") << ThreadPriority::BehindTheWindow << true;
}

void TestThreadPriority::placesATaskAndItsHelpers()
{
    QFETCH(ThreadPriority, priority);
    QFETCH(bool, isBehind);
    const Place main = place();
    Place task, helper;
    BackgroundQueue<OwnersEnd::Wait, Queueing::All> queue(1, priority);
    queue.run([&](const std::stop_token &) {
        task = place();
        helper = placeOfAHelper();
    });
    QTRY_VERIFY(!queue.isBusy());
    const Place behind{std::max(main.niceness, 10), true};
    QCOMPARE(task == behind, isBehind);
    QCOMPARE(task == main, !isBehind);
    QVERIFY(helper == task);
    QVERIFY(place() == main);
}

VANTOR_TEST_MAIN(TestThreadPriority)
#include "tst_ThreadPriority.moc"
