#include "prefs/Popover.h"

#include "platform/Compositing.h"
#include "platform/ViewAlpha.h"
#include "prefs/COICOPopoverView.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScreen>

namespace {

constexpr int kShadowReach = 16;
constexpr int kShadowStrokes = 14;
constexpr double kShadowDrop = 3;
constexpr std::chrono::milliseconds kFade{120};
constexpr QColor kShadowColour(0, 0, 0, 3);
constexpr QColor kEdgeColour(0, 0, 0, 30);

/// The room that a popover may take: its window's, as far as it is on the screen. A window that is
/// smaller than the popover lends it the screen.
QRect boundsFor(QSize body, const QWidget &window)
{
    const QRect screen = window.screen()->availableGeometry();
    const QRect own(window.mapToGlobal(QPoint()), window.size());
    const QRect seen = own & screen;
    const bool isTooSmall = seen.width() < body.width() || seen.height() < body.height();
    return isTooSmall ? screen : seen;
}

/// Many faint strokes of growing width, ever fewer further out: dark at the outline, gone at the
/// reach.
void paintShadow(QPainter &painter, const QPainterPath &outline)
{
    painter.save();
    painter.translate(0, kShadowDrop);
    for (int stroke = 1; stroke <= kShadowStrokes; ++stroke) {
        const double part = static_cast<double>(stroke) / kShadowStrokes;
        const double width = 2 * (kShadowReach - kShadowDrop) * part * part;
        painter.strokePath(outline,
                           QPen(kShadowColour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.restore();
}

void closeOpenPopover()
{
    if (auto *open = qobject_cast<Popover *>(QApplication::activePopupWidget()))
        open->close();
}

} // namespace

Popover::Popover(std::unique_ptr<COICOPopoverView> content, QWidget *window)
    : QWidget(window, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      m_content(content.release()),
      m_isBlended(isCompositing())
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground, m_isBlended);
    m_content->setParent(this);
}

void Popover::showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge)
{
    closeOpenPopover();
    const QRect anchor(view.mapToGlobal(rect.topLeft()), rect.size());
    const QRect bounds = boundsFor(m_content->size(), *view.window());
    place(PopoverPlacement::make(anchor, m_content->size(), bounds, preferredEdge));
    closeWith(view);
    setAlphaValue(*this, 0);
    show();
    animateAlphaValue(*this, 1, kFade);
}

void Popover::place(const PopoverPlacement &onScreen)
{
    const int margin = m_isBlended ? kShadowReach : 0;
    const QRect frame = onScreen.outline().boundingRect().toAlignedRect().adjusted(-margin, -margin,
                                                                                   margin, margin);
    m_placement = onScreen;
    m_placement.body.translate(-frame.topLeft());
    m_placement.tip -= frame.topLeft();
    setGeometry(frame);
    m_content->move(m_placement.body.topLeft().toPoint());
    if (!m_isBlended)
        setMask(m_placement.outline().toFillPolygon().toPolygon());
}

void Popover::closeWith(QWidget &view)
{
    connect(&view, &QObject::destroyed, this, &QWidget::close);
    // Not with the view itself: a button that follows the pointer hides when the pointer leaves for
    // the popover.
    m_page = view.parentWidget();
    if (m_page)
        m_page->installEventFilter(this);
    view.window()->installEventFilter(this);
}

bool Popover::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Hide:
        close();
        break;
    case QEvent::Close:
    case QEvent::Move:
    case QEvent::Resize:
        if (watched != m_page || m_page->isWindow())
            close();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void Popover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath outline = m_placement.outline();
    if (m_isBlended)
        paintShadow(painter, outline);
    painter.strokePath(outline, QPen(kEdgeColour, 2));
    painter.fillPath(outline, m_content->fill(m_placement.body));
}
