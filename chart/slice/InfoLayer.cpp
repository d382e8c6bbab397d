#include "chart/slice/InfoLayer.h"

#include "platform/look/Images.h"
#include "platform/look/OwnThreadPainting.h"
#include "slices/record/Info.h"
#include "slices/record/SizeText.h"
#include "slices/record/SliceCatalogue.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QThread>
#include <array>
#include <cmath>

namespace {

constexpr auto kPlaceholderImage = "image";
constexpr QSize kImageSize(54, 54);
constexpr int kNameFontSize = 16;
constexpr int kSizeFontSize = 15;
constexpr qsizetype kUnitLength = 3; // a blank and two letters

// Edges relative to the middle point, y growing upwards.
constexpr double kImageBottom = -10;
constexpr double kNameTop = -5;
constexpr double kNameBottom = -25;
constexpr double kSizeBottom = -43;

constexpr QColor kTextColor(255, 255, 255);
/// A soft dark halo, strongest below, keeps light letters and icons readable on light slices.
constexpr double kHalo = 2;
struct HaloStep
{
    QPointF offset;
    int alpha = 0; ///< of 255
};
constexpr std::array kHaloSteps{
    HaloStep{{0, 1}, 55},  HaloStep{{-1, 0}, 14},     HaloStep{{1, 0}, 14},
    HaloStep{{0, -1}, 10}, HaloStep{{-1, 1}, 16},     HaloStep{{1, 1}, 16},
    HaloStep{{0, 2}, 16},  HaloStep{{-0.5, 0.5}, 14}, HaloStep{{0.5, 0.5}, 14}};

constexpr HaloStep kIconShade{{0, 1}, 70};

QRectF centredFrame(double width, double bottom, double top)
{
    return {-width / 2, bottom, width, top - bottom};
}

WeightedText nameRuns(const QString &name)
{
    return {{name, Typeface::Light}};
}

double widthOf(const WeightedText &runs, int fontSize)
{
    double width = 0;
    for (const WeightedRun &run : runs)
        width += QFontMetricsF(interfaceFont(run.face, fontSize)).horizontalAdvance(run.text);
    return std::ceil(width);
}

double lineHeight(int fontSize)
{
    return QFontMetricsF(interfaceFont(Typeface::Regular, fontSize)).height();
}

void drawRuns(QPainter &painter, QPointF baseline, const WeightedText &runs, int fontSize)
{
    baseline = baseline.toPoint(); // letters are sharp on whole pixels
    for (const WeightedRun &run : runs) {
        const QFont font = interfaceFont(run.face, fontSize);
        painter.setFont(font);
        for (const HaloStep &step : kHaloSteps) {
            painter.setPen(QColor(0, 0, 0, step.alpha));
            painter.drawText(baseline + step.offset, run.text);
        }
        painter.setPen(kTextColor);
        painter.drawText(baseline, run.text);
        baseline.rx() += QFontMetricsF(font).horizontalAdvance(run.text);
    }
}

void drawIcon(QPainter &painter, QPointF corner, const QPixmap &icon)
{
    if (icon.isNull())
        return;
    QPixmap shade = icon;
    {
        QPainter blackener(&shade);
        blackener.setCompositionMode(QPainter::CompositionMode_SourceIn);
        blackener.fillRect(QRect(QPoint(), kImageSize), Qt::black);
    }
    // A shade below the icon only: a halo all around would look like dirt through the half
    // transparent parts of the icon.
    painter.setOpacity(QColor(0, 0, 0, kIconShade.alpha).alphaF());
    painter.drawPixmap(corner + kIconShade.offset, shade);
    painter.setOpacity(1);
    painter.drawPixmap(corner, icon);
}

} // namespace

std::shared_ptr<SizeQueue> makeSizeQueue()
{
    return std::make_shared<SizeQueue>(static_cast<unsigned>(QThread::idealThreadCount()),
                                       ThreadPriority::BehindTheWindow);
}

InfoLayer::InfoLayer(std::function<void()> changed, std::shared_ptr<SizeQueue> queue)
    : m_changed(std::move(changed)), m_queue(std::move(queue))
{
    m_content.image = QLatin1String(kPlaceholderImage);
    m_bounds = neededBounds();
}

void InfoLayer::setInfo(std::shared_ptr<Info> info)
{
    const Content before = m_content;
    if (info != m_info)
        m_content.size.clear();
    m_info = std::move(info);
    m_content.image = m_info ? m_info->image() : QString();
    m_content.isIconAlone = m_info && m_info->name().isEmpty();
    if (!m_content.isIconAlone)
        m_content.name = m_info ? m_info->name() : QString();
    if (m_content != before)
        contentChanged();
    askForSize();
}

void InfoLayer::askForSize()
{
    if (!m_info)
        return;
    // A reload hands over the same records again. While a record is still being measured, a second
    // measurement beside the first would take the same effort again and tell nothing new.
    m_askAgain = m_asked == m_info.get();
    if (m_askAgain)
        return;
    m_asked = m_info.get();
    m_queue->run([this, life = lifetime(), info = m_info](const std::stop_token &) mutable {
        const std::optional<QString> text = info->fileSizeString();
        // The record goes back with the reply: the last reference must not end on this thread.
        return [this, life, info = std::move(info), text] {
            if (!life.expired())
                sizeArrived(info.get(), text);
        };
    });
}

void InfoLayer::sizeArrived(const Info *info, const std::optional<QString> &text)
{
    if (m_asked == info)
        m_asked = nullptr;
    if (info != m_info.get())
        return;
    const WeightedText size =
        text ? attributedSizeString(*text).value_or(WeightedText{{*text, Typeface::Regular}})
             : WeightedText{};
    if (size != m_content.size) {
        m_content.size = size;
        contentChanged();
    }
    if (m_askAgain)
        askForSize();
}

void InfoLayer::contentChanged()
{
    const auto tell = [this] {
        if (m_changed)
            m_changed();
    };
    tell(); // the old area
    m_picture = {};
    m_bounds = neededBounds();
    tell(); // the new area
}

std::optional<WeightedText> InfoLayer::attributedSizeString(const QString &text)
{
    if (text.size() <= kUnitLength || text == kEmptySize || text == kClickToSelect)
        return std::nullopt;
    return WeightedText{{text.chopped(kUnitLength), Typeface::Regular},
                        {text.last(kUnitLength), Typeface::Medium}};
}

QString InfoLayer::sizeString() const
{
    QString text;
    for (const WeightedRun &run : m_content.size)
        text += run.text;
    return text;
}

QRectF InfoLayer::imageFrame() const
{
    const double bottom = m_content.isIconAlone ? -kImageSize.height() / 2.0 : kImageBottom;
    return centredFrame(kImageSize.width(), bottom, bottom + kImageSize.height());
}

QRectF InfoLayer::nameFrame() const
{
    return centredFrame(widthOf(nameRuns(m_content.name), kNameFontSize), kNameBottom, kNameTop);
}

QRectF InfoLayer::sizeFrame() const
{
    return centredFrame(widthOf(m_content.size, kSizeFontSize), kSizeBottom,
                        kSizeBottom + lineHeight(kSizeFontSize));
}

QRectF InfoLayer::neededBounds() const
{
    const QRectF parts =
        m_content.isIconAlone ? imageFrame() : imageFrame() | nameFrame() | sizeFrame();
    return parts.adjusted(-kHalo, -kHalo, kHalo, kHalo).toAlignedRect();
}

QPixmap InfoLayer::drawn(double scale) const
{
    const QRectF area = bounds();
    QPixmap picture((area.size() * scale).toSize());
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.translate(-area.left(), area.bottom()); // the middle is the origin from here on
    drawIcon(painter, {imageFrame().left(), -imageFrame().bottom()},
             imageNamed(m_content.image, scale, kImageSize));
    if (m_content.isIconAlone)
        return picture;
    const QFontMetricsF nameMetrics(interfaceFont(Typeface::Light, kNameFontSize));
    const QFontMetricsF sizeMetrics(interfaceFont(Typeface::Regular, kSizeFontSize));
    drawRuns(painter, {nameFrame().left(), -kNameTop + nameMetrics.ascent()},
             nameRuns(m_content.name), kNameFontSize);
    drawRuns(painter, {sizeFrame().left(), -kSizeBottom - sizeMetrics.descent()}, m_content.size,
             kSizeFontSize);
    return picture;
}

void InfoLayer::paint(QPainter &painter, QPointF middle, double opacity)
{
    if (m_isHidden || opacity <= 0)
        return;
    const QTransform device = painter.deviceTransform();
    if (m_picture.isNull() || m_pictureScale != device.m11()) {
        m_pictureScale = device.m11();
        m_picture = drawn(m_pictureScale);
    }
    const QRectF area = bounds();
    painter.setOpacity(opacity);
    copyToPixels(painter, middle + QPointF(area.left(), -area.bottom()), m_picture);
    painter.setOpacity(1);
}
