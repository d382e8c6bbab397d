#include "tests/chart/FakeSlices.h"
#include "tests/chart/SlowFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QThread>
#include <QThreadPool>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kWhileNoOtherStarts = 100; ///< milliseconds
const int kProcessors = QThread::idealThreadCount();

} // namespace

/// How a pie lets the sizes of its slices be measured.
class TestPieChartSizes final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void measuresNoMoreSlicesAtATimeThanThereAreProcessors();
    void leavesTheToolkitsThreadsToThePainting();
    void measuresBehindTheWindow();
    void paintsWhileEveryProcessorMeasures();
    void waitsForNoMeasureAtItsEnd();
    void measuresNoMoreAfterItsEnd();

private:
    static std::unique_ptr<HeldChart> chartOf(SlowFolder &folder, int slices);
    static void awaitAllProcessors(SlowFolder &folder);
};

/// A pie that has asked for all its sizes.
std::unique_ptr<HeldChart> TestPieChartSizes::chartOf(SlowFolder &folder, int slices)
{
    auto held = std::make_unique<HeldChart>();
    held->page.setValues(std::vector<double>(static_cast<std::size_t>(slices), 1));
    for (FakeSlice &slice : held->page.slices)
        slice.info = folder.info(QStringLiteral("Cache"));
    held->chart.reloadData();
    return held;
}

void TestPieChartSizes::awaitAllProcessors(SlowFolder &folder)
{
    for (int i = 0; i < kProcessors; ++i)
        folder.awaitStart();
}

void TestPieChartSizes::measuresNoMoreSlicesAtATimeThanThereAreProcessors()
{
    SlowFolder folder;
    const auto held = chartOf(folder, kProcessors + 2);
    awaitAllProcessors(folder);
    QVERIFY(!folder.startsWithin(kWhileNoOtherStarts));
    folder.allow();
    for (const auto &layer : held->chart.sliceLayers())
        QTRY_COMPARE(layer->infoLayer()->sizeString(), QStringLiteral("1.24 GB"));
    QCOMPARE(folder.measured.load(), kProcessors + 2);
}

/// Painting gives parts of its work to the toolkit's own thread pool and waits for them.
void TestPieChartSizes::leavesTheToolkitsThreadsToThePainting()
{
    SlowFolder folder;
    const auto held = chartOf(folder, kProcessors);
    awaitAllProcessors(folder);
    QCOMPARE(QThreadPool::globalInstance()->activeThreadCount(), 0);
}

void TestPieChartSizes::measuresBehindTheWindow()
{
    const auto niceness = [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); };
    const int ofTheWindow = niceness();
    std::atomic<int> ofTheMeasure = -1;
    const auto queue = makeSizeQueue();
    queue->run([&, niceness](const std::stop_token &) { ofTheMeasure = niceness(); });
    QTRY_VERIFY(!queue->isBusy());
    QCOMPARE(ofTheMeasure.load(), std::max(ofTheWindow, 10));
}

/// No measure ends before the test does: a lock that one of them held would be held for good.
void TestPieChartSizes::paintsWhileEveryProcessorMeasures()
{
    SlowFolder folder;
    const auto held = chartOf(folder, kProcessors);
    awaitAllProcessors(folder);
    held->settle();
    PieChart &chart = held->chart;
    QWidget &window = *chart.window();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSize larger = chart.size() + QSize(40, 40);
    for (const QSize size : {chart.size(), larger}) {
        chart.resize(size);
        const QImage picture = chart.grab().toImage();
        QImage empty = picture;
        empty.fill(picture.pixelColor(0, 0));
        QVERIFY(picture != empty);
    }
    QVERIFY(window.close());
    QCOMPARE(folder.measured.load(), kProcessors);
}

void TestPieChartSizes::waitsForNoMeasureAtItsEnd()
{
    SlowFolder folder;
    auto held = chartOf(folder, kProcessors);
    awaitAllProcessors(folder);
    held.reset(); // else this would never return
    QCOMPARE(folder.measured.load(), kProcessors);
}

void TestPieChartSizes::measuresNoMoreAfterItsEnd()
{
    SlowFolder folder;
    auto held = chartOf(folder, kProcessors + 2);
    awaitAllProcessors(folder);
    held.reset();
    folder.allow();
    awaitBackgroundThreads();
    QCOMPARE(folder.measured.load(), kProcessors);
}

VANTOR_GUI_TEST_MAIN(TestPieChartSizes)
#include "tst_PieChartSizes.moc"
