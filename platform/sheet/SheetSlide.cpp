#include "platform/sheet/SheetSlide.h"

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

SheetSlide::SheetSlide(SlidingSheet sheet, const SheetMovement &movement)
    : QWidget(&sheet.overlay), m_sheet(std::move(sheet))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setGeometry(m_sheet.overlay.rect());
    m_behind = pictureWithout(*window(), m_sheet.overlay);
    if (movement.from > 0)
        takeSheetPicture();
    m_animation.setStartValue(movement.from);
    m_animation.setEndValue(movement.to);
    m_animation.setDuration(static_cast<int>(movement.duration.count()));
    m_animation.setEasingCurve(movement.from < movement.to ? QEasingCurve::OutCubic
                                                           : QEasingCurve::InCubic);
    connect(&m_animation, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&m_animation, &QVariantAnimation::finished, this, &SheetSlide::finished);
    show();
    // Events that still wait lay out a panel that came up just now.
    QTimer::singleShot(0, this, &SheetSlide::start);
}

void SheetSlide::start()
{
    if (m_picture.isNull())
        takeSheetPicture();
    m_animation.start();
}

void SheetSlide::takeSheetPicture()
{
    m_picture = QPixmap(m_sheet.frame.size() * devicePixelRatioF());
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    m_picture.fill(Qt::transparent);
    m_sheet.frame.render(&m_picture, {}, {}, QWidget::DrawChildren);
}

void SheetSlide::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawPixmap(0, 0, m_behind);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    m_sheet.paintBackdrop(painter, shown());
    const QWidget &frame = m_sheet.frame;
    painter.setClipRect(rect().adjusted(0, frame.y(), 0, 0));
    painter.drawPixmap(QPointF(frame.x(), frame.y() - (1 - shown()) * frame.height()), m_picture);
}
