// Measures the processor time of one frame of a page's fade, at a given scale, for both ways of
// drawing an opacity. The pie on the page moves meanwhile, as it does when a page comes in.
//     vantor-fade-bench [scale]

#include "chart/PieChart.h"
#include "platform/look/Fonts.h"
#include "platform/look/ViewAlpha.h"
#include "slices/record/Info.h"

#include <QApplication>
#include <QLabel>
#include <QStyleFactory>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr int kFrames = 120;
constexpr int kSlices = 8;
constexpr QSize kPage(900, 700);
constexpr QRect kPieFrame(220, 110, 460, 460);
constexpr int kCircle = 360;
constexpr int kSaturation = 160;
constexpr int kLight = 220;
constexpr int kDark = 180;
constexpr int kSizes = 3;
constexpr int kFramesOfATurn = 40;
constexpr MediaTime kFrameStep{1.0 / 60};

constexpr int kLabels = 26; // in two columns beside the pie
constexpr int kFontSize = 14;
constexpr QPoint kFirstLabel(20, 20);
constexpr QPoint kNextColumn(720, 0);
constexpr QPoint kNextRow(0, 50);

constexpr double kMillisecond = 1e-3;
constexpr std::size_t kHundred = 100;
constexpr std::size_t kHighPercentile = 95;

/// Slices of sizes that change places at each turn.
class Slices final : public PieChartDataSource
{
public:
    void turn() { ++m_turns; }

    int numberOfSlicesInPieChart(PieChart &) override { return kSlices; }
    std::shared_ptr<Info> infoForSliceAtIndex(PieChart &, int index) override
    {
        return m_infos.at(static_cast<std::size_t>(index));
    }
    double valueForSliceAtIndex(PieChart &, int index) override
    {
        return 1 + (index + m_turns) % kSizes;
    }
    std::optional<QColor> colorForSliceAtIndex(PieChart &, int index) override
    {
        return QColor::fromHsv(index * kCircle / kSlices, kSaturation, kLight);
    }
    std::optional<QColor> secondaryColorForSliceAtIndex(PieChart &, int index) override
    {
        return QColor::fromHsv(index * kCircle / kSlices, kSaturation, kDark);
    }

private:
    int m_turns = 0;
    std::vector<std::shared_ptr<Info>> m_infos =
        std::vector(kSlices, std::make_shared<Info>(QStringLiteral("Downloads"), std::nullopt,
                                                    std::nullopt, QStringLiteral("12.3 MB")));
};

/// The real pie, with a clock of its own: it moves with each frame, and never comes to rest.
class Pie final
{
public:
    explicit Pie(QWidget *page) : m_chart(kPieFrame, page)
    {
        m_chart.setClock([this] { return m_time; });
        m_chart.setDataSource(&m_slices);
        m_chart.reloadData();
        m_time += MediaTime(1);
        m_chart.updateTimerFired();
    }

    void move()
    {
        if (m_frame++ % kFramesOfATurn == 0) {
            m_slices.turn();
            m_chart.reloadData();
        }
        m_time += kFrameStep;
        m_chart.updateTimerFired();
    }

private:
    int m_frame = 0;
    MediaTime m_time{0};
    Slices m_slices;
    PieChart m_chart;
};

void fill(QWidget &page)
{
    for (int i = 0; i < kLabels; ++i) {
        auto *const label = new QLabel(QStringLiteral("Label %1, 12.3 MB").arg(i), &page);
        label->setFont(interfaceFont(Typeface::Light, kFontSize));
        label->move(kFirstLabel + kNextColumn * (i % 2) + kNextRow * (i / 2));
    }
}

template <typename Step> void measure(const char *what, QWidget &window, Pie &pie, Step step)
{
    std::vector<double> times;
    for (int frame = 0; frame < kFrames; ++frame) {
        step(static_cast<double>(frame % 100) / 100);
        pie.move();
        const std::clock_t begin = std::clock();
        QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
        const auto ticks = static_cast<double>(std::clock() - begin);
        times.push_back(ticks / CLOCKS_PER_SEC / kMillisecond);
    }
    std::sort(times.begin(), times.end());
    std::printf("%-28s median %6.2f ms   95 %% %6.2f ms\n", what, times[times.size() / 2],
                times[times.size() * kHighPercentile / kHundred]);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_SCALE_FACTOR", argc > 1 ? argv[1] : "2");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));

    QWidget window;
    window.resize(kPage);
    QWidget page(&window);
    page.resize(kPage);
    Pie pie(&page);
    fill(page);
    window.show();
    QCoreApplication::processEvents();

    measure("the pie alone", window, pie, [](double) {});
    measure("the whole page", window, pie, [&page](double) { page.update(); });
    setAlphaDrawing(page, AlphaDrawing::Veil);
    measure("fading behind a veil", window, pie, [&page](double a) { setAlphaValue(page, a); });
    setAlphaDrawing(page, AlphaDrawing::Picture);
    measure("fading as a picture", window, pie, [&page](double a) { setAlphaValue(page, a); });
    return 0;
}
