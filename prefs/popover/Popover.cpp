#include "prefs/popover/Popover.h"

#include "platform/desktop/Compositing.h"
#include "platform/look/ViewAlpha.h"
#include "prefs/popover/COICOPopoverView.h"
#include "prefs/popover/PopoverFrameView.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>

namespace {

constexpr std::chrono::milliseconds kFade{120};

/// The room that a popover may take: its window's, as far as it is on the screen. When the window
/// is smaller than the popover, the room is that of the screen.
QRect boundsFor(QSize body, const QWidget &window)
{
    const QRect screen = window.screen()->availableGeometry();
    const QRect own = window.contentsRect().translated(window.mapToGlobal(QPoint()));
    const QRect seen = own & screen;
    const bool isTooSmall = seen.width() < body.width() || seen.height() < body.height();
    return isTooSmall ? screen : seen;
}

void closeOpenPopover()
{
    if (auto *open = qobject_cast<Popover *>(QApplication::activePopupWidget()))
        open->close();
}

} // namespace

Popover::Popover(std::unique_ptr<COICOPopoverView> content, QWidget *window)
    : QWidget(window, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      m_isBlended(isCompositing()),
      m_frameView(new PopoverFrameView(std::move(content), this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground, m_isBlended);
    m_frameView->setHasShadow(m_isBlended);
}

COICOPopoverView &Popover::content() const
{
    return m_frameView->content();
}

const PopoverPlacement &Popover::placement() const
{
    return m_frameView->placement();
}

void Popover::showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge)
{
    closeOpenPopover();
    const QSize body = content().size();
    const QRect anchor(view.mapToGlobal(rect.topLeft()), rect.size());
    const QRect bounds = boundsFor(body, *view.window());
    place(PopoverPlacement::make(anchor, body, bounds, preferredEdge));
    closeWith(view);
    if (m_isBlended)
        setAlphaValue(*m_frameView, 0);
    show();
    if (m_isBlended)
        animateAlphaValue(*m_frameView, 1, kFade);
}

void Popover::place(const PopoverPlacement &onScreen)
{
    const QPoint corner = m_frameView->place(onScreen);
    setGeometry(QRect(corner, m_frameView->size()));
    if (!m_isBlended)
        setMask(m_frameView->shape().toFillPolygon().toPolygon());
}

void Popover::closeWith(QWidget &view)
{
    connect(&view, &QObject::destroyed, this, &QWidget::close);
    // The popover does not close when the view itself hides: a button that follows the pointer
    // hides when the pointer leaves it for the popover.
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
