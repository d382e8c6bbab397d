// Measures what one frame of a page's fade costs on the main thread, at a given scale, for both
// ways of drawing an opacity. The pie on the page moves meanwhile, as it does when a page comes in.
//     vantor-fade-bench [scale]

#include "platform/look/Fonts.h"
#include "platform/look/ViewAlpha.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QStyleFactory>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kFrames = 120;
constexpr int kSlices = 8;
constexpr QSize kPage(900, 700);
constexpr QRect kPieFrame(220, 110, 460, 460);
constexpr int kPieMargin = 20;
constexpr int kHole = 90;
constexpr double kCircle = 360;
constexpr double kBorder = 1.5;
constexpr int kLighter = 120; // per cent, at the centre

constexpr int kLabels = 26; // in two columns beside the pie
constexpr int kFontSize = 14;
constexpr QPoint kFirstLabel(20, 20);
constexpr QPoint kNextColumn(720, 0);
constexpr QPoint kNextRow(0, 50);

constexpr double kNanosecondsPerMillisecond = 1e6;
constexpr std::size_t kHundred = 100;
constexpr std::size_t kHighPercentile = 95;

/// As much work as the real pie: gradients, smooth edges, a soft shadow, a turn every frame.
class Pie final : public QWidget
{
public:
    using QWidget::QWidget;

    void turn()
    {
        m_angle += 3;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF circle =
            QRectF(rect()).adjusted(kPieMargin, kPieMargin, -kPieMargin, -kPieMargin);
        for (int slice = 0; slice < kSlices; ++slice) {
            QPainterPath path(circle.center());
            path.arcTo(circle, m_angle + slice * kCircle / kSlices, kCircle / kSlices);
            QPainterPath hole;
            hole.addEllipse(circle.center(), kHole, kHole);
            QRadialGradient gradient(circle.center(), circle.width() / 2);
            const QColor colour =
                QColor::fromHsv(static_cast<int>(slice * kCircle / kSlices), 160, 220);
            gradient.setColorAt(0, colour.lighter(kLighter));
            gradient.setColorAt(1, colour);
            painter.setPen(QPen(Qt::white, kBorder));
            painter.setBrush(gradient);
            painter.drawPath(path.subtracted(hole));
        }
    }

private:
    double m_angle = 0;
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
        pie.turn();
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / kNanosecondsPerMillisecond);
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
    pie.setGeometry(kPieFrame);
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
