#include "platform/sheet/SheetSlide.h"

#include "platform/sheet/SheetOverlay.h"

#include <QGraphicsEffect>
#include <QPainter>
#include <QTimer>

namespace {

/// Leaves its widget out of all pictures.
class Unseen final : public QGraphicsEffect
{
public:
    explicit Unseen(QWidget *parent) : QGraphicsEffect(parent) {}

protected:
    void draw(QPainter *) override {}
};

QPixmap pictureWithout(QWidget &window, QWidget &child)
{
    child.setGraphicsEffect(new Unseen(&child));
    QPixmap picture = window.grab();
    child.setGraphicsEffect(nullptr);
    return picture;
}

} // namespace

SheetSlide::SheetSlide(SheetOverlay &overlay, double from, double to,
                       std::chrono::milliseconds duration)
    : QWidget(&overlay), m_overlay(overlay)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setGeometry(overlay.rect());
    m_behind = pictureWithout(*overlay.window(), overlay);
    if (from > 0)
        takeSheetPicture();
    m_animation.setStartValue(from);
    m_animation.setEndValue(to);
    m_animation.setDuration(static_cast<int>(duration.count()));
    m_animation.setEasingCurve(from < to ? QEasingCurve::OutCubic : QEasingCurve::InCubic);
    connect(&m_animation, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&m_animation, &QVariantAnimation::finished, this, &SheetSlide::finished);
    show();
    // A panel that came up just now is laid out by the events that wait.
    QTimer::singleShot(0, this, &SheetSlide::start);
}

void SheetSlide::start()
{
    if (m_sheet.isNull())
        takeSheetPicture();
    m_animation.start();
}

void SheetSlide::takeSheetPicture()
{
    m_sheet = QPixmap(m_overlay.frame().size() * devicePixelRatioF());
    m_sheet.setDevicePixelRatio(devicePixelRatioF());
    m_sheet.fill(Qt::transparent);
    m_overlay.frame().render(&m_sheet, {}, {}, QWidget::DrawChildren);
}

void SheetSlide::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawPixmap(0, 0, m_behind);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    m_overlay.paintBackdrop(painter, shown());
    const QWidget &frame = m_overlay.frame();
    painter.setClipRect(rect().adjusted(0, frame.y(), 0, 0));
    painter.drawPixmap(QPointF(frame.x(), frame.y() - (1 - shown()) * frame.height()), m_sheet);
}
