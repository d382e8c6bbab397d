// Measures what a frame of the pie costs in software rendering: medians of whole repaints of a
// window that shows nothing else. On a busy machine read the processor time; on one processor,
// where nothing can be handed to another one:
//
//   perf stat -e context-switches taskset -c 2 vantor-paint-bench --scale 3
//
//   vantor-paint-bench [--size points] [--scale factor] [--frames count] [--save folder]
//
// --save keeps a picture of each scene, to look at.

#include "chart/PieChart.h"
#include "platform/look/Images.h"
#include "platform/threads/BackgroundThreads.h"
#include "slices/record/Info.h"
#include "widgets/ImageButton.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPalette>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>

namespace {

struct Content
{
    const char *name = "";
    const char *size = "";
    QColor primary;
    QColor secondary;
};

const std::array kContents{
    Content{"Trash", "1.24 GB", QColor(93, 183, 26), QColor(103, 166, 56)},
    Content{"Large Files", "Click to select", QColor(237, 215, 98), QColor(206, 179, 36)},
    Content{"Cache", "823.4 MB", QColor(167, 118, 235), QColor(135, 100, 183)},
    Content{"App Logs", "12.1 MB", QColor(93, 156, 236), QColor(46, 126, 227)},
    Content{"Old iOS", "Empty", QColor(112, 210, 48), QColor(123, 186, 82)},
    Content{"Downloads", "24.18 GB", QColor(242, 175, 37), QColor(237, 160, 29)},
    Content{"Mail Downloads", "310 KB", QColor(215, 112, 173), QColor(220, 86, 165)},
    Content{"Browser Data", "96 bytes", QColor(62, 173, 228), QColor(18, 164, 236)},
};
constexpr QColor kGround(240, 240, 240);
/// The first slice that is off by default; the large files are off as well.
constexpr int kFirstOff = 5;
/// In seconds: the time in an animation at which frames are taken, and the time from one to the
/// next.
constexpr double kAmidst = 0.2;
constexpr double kFrameStep = 0.001;
constexpr double kMillisecond = 1e-3;
constexpr double kNanosecond = 1e-9;
constexpr std::chrono::minutes kPatience(1); // for sizes that are texts
constexpr QColor kOffPrimary(134, 134, 134);
constexpr QColor kOffSecondary(110, 110, 110);
constexpr QColor kHovered(250, 250, 250);

/// Eight slices of the same size, some of them grey, or of many sizes.
class Slices final : public PieChartDataSource, public PieChartDelegate
{
public:
    Slices()
    {
        for (const Content &content : kContents)
            m_infos.push_back(std::make_shared<Info>(QString::fromLatin1(content.name),
                                                     std::nullopt, std::nullopt,
                                                     QString::fromLatin1(content.size)));
    }

    bool hasGrey = false;
    bool isUneven = false;
    int hoveredSlice = -1;

    int numberOfSlicesInPieChart(PieChart &) override { return static_cast<int>(kContents.size()); }

    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &, int index) override
    {
        return m_infos[static_cast<std::size_t>(index)];
    }

    double valueForSliceAtIndex(PieChart &, int index) override
    {
        return isUneven ? 1 + index % 3 : 1;
    }

    std::optional<QColor> colorForSliceAtIndex(PieChart &, int index) override
    {
        if (index == hoveredSlice)
            return kHovered;
        return isGrey(index) ? kOffPrimary : kContents[static_cast<std::size_t>(index)].primary;
    }

    std::optional<QColor> secondaryColorForSliceAtIndex(PieChart &, int index) override
    {
        return isGrey(index) ? kOffSecondary : kContents[static_cast<std::size_t>(index)].secondary;
    }

    bool canSelectSliceAtIndex(PieChart &, int) override { return true; }

private:
    bool isGrey(int index) const { return hasGrey && (index == 1 || index >= kFirstOff); }

    std::vector<std::shared_ptr<Info>> m_infos;
};

double median(std::vector<double> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// The pie in a window of its own, with a clock that stands still.
class Scene final
{
public:
    Scene(int size, QString folder, int frames) : m_folder(std::move(folder)), m_frames(frames)
    {
        m_window.setPalette(QPalette(kGround));
        m_window.resize(size, size);
        m_chart.resize(size, size);
        m_chart.setDataSource(&m_slices);
        m_chart.setDelegate(&m_slices);
        m_chart.setClock([this] { return m_time; });
        m_window.show();
        QCoreApplication::processEvents(); // nothing is painted before the window is exposed
    }

    void run()
    {
        m_chart.reloadData();
        letSizesArrive();
        measure("growing, flat", kAmidst);
        m_time += MediaTime(1);
        m_chart.updateTimerFired();
        measure("settled", 0);
        m_slices.hasGrey = true;
        m_chart.reloadData();
        m_time += MediaTime(1);
        m_chart.updateTimerFired();
        measure("settled, some grey", 0);
        m_slices.isUneven = true;
        m_chart.reloadData();
        measure("moving, gradients", kAmidst);
        m_time += MediaTime(1);
        m_chart.updateTimerFired();
        measureHover();
        m_chart.interaction().focusSlice(0);
        measure("settled, focus ring", 0);
        m_slices.isUneven = false;
        m_chart.reloadData();
        measure("moving, focus ring", kAmidst);
    }

private:
    static void letSizesArrive()
    {
        if (!waitForBackgroundThreads(kPatience))
            qFatal("the sizes do not arrive");
        QCoreApplication::sendPostedEvents();
    }

    /// The buttons that come up under the pointer, on a slice whose look changes with it.
    void measureHover()
    {
        ImageButton button(&m_chart);
        button.setImageName(QStringLiteral("infoButton"));
        button.resize(button.sizeHint());
        button.show();
        int frame = 0;
        measure("settled, hover", 0, [&] {
            m_slices.hoveredSlice = frame++ % static_cast<int>(kContents.size());
            m_chart.reloadGradients();
            button.move(m_chart.sliceRect(m_slices.hoveredSlice).center());
        });
        m_slices.hoveredSlice = -1;
        m_chart.reloadGradients();
    }

    /// Each frame is a little later than the one before; `at` is seconds into the animation.
    void measure(
        const char *name, double at, const std::function<void()> &change = [] {})
    {
        std::vector<double> times;
        std::vector<double> processorTimes;
        m_time += MediaTime(at);
        for (int i = 0; i < m_frames; ++i) {
            if (at > 0)
                m_time += MediaTime(kFrameStep);
            QElapsedTimer timer;
            timer.start();
            const std::clock_t processorBegin = std::clock();
            if (at > 0)
                m_chart.updateTimerFired();
            change();
            m_window.repaint();
            const auto ticks = static_cast<double>(std::clock() - processorBegin);
            processorTimes.push_back(ticks / CLOCKS_PER_SEC / kMillisecond);
            times.push_back(static_cast<double>(timer.nsecsElapsed()) * kNanosecond / kMillisecond);
        }
        std::printf("%-20s %6.2f ms, %6.2f ms of the processor\n", name, median(times),
                    median(processorTimes));
        if (!m_folder.isEmpty())
            m_window.grab().save(
                QDir(m_folder).filePath(QStringLiteral("%1.png").arg(QLatin1String(name))));
    }

    QString m_folder;
    int m_frames;
    MediaTime m_time{0};
    Slices m_slices;
    QWidget m_window;
    PieChart m_chart{&m_window};
};

} // namespace

int main(int argc, char **argv)
{
    QCommandLineParser parser;
    parser.addOptions(
        {{QStringLiteral("size"), {}, QStringLiteral("points"), QStringLiteral("700")},
         {QStringLiteral("scale"), {}, QStringLiteral("factor"), QStringLiteral("2")},
         {QStringLiteral("frames"), {}, QStringLiteral("count"), QStringLiteral("100")},
         {QStringLiteral("save"), {}, QStringLiteral("folder"), {}}});
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    parser.process(arguments);
    qputenv("QT_SCALE_FACTOR", parser.value(QStringLiteral("scale")).toLatin1());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Scene(parser.value(QStringLiteral("size")).toInt(), parser.value(QStringLiteral("save")),
          parser.value(QStringLiteral("frames")).toInt())
        .run();
    return 0;
}
