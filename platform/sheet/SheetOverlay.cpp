#include "platform/sheet/SheetOverlay.h"

#include "platform/look/ViewAlpha.h"
#include "platform/sheet/PointerClearance.h"
#include "platform/sheet/SheetDrop.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr std::chrono::milliseconds kSlide{220};
constexpr int kMargin = 12; // between the sheet and the host's left, right and lower edges
constexpr double kDimming = 0.22;

/// Input that must not go on to the window behind, whatever the panel made of it.
bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::KeyRelease:
    case QEvent::ToolTip:
    case QEvent::WhatsThis:
    case QEvent::StatusTip:
        return true;
    default:
        return false;
    }
}

bool takesTab(const QWidget &widget)
{
    return widget.isVisible() && widget.isEnabled() && widget.focusProxy() == nullptr &&
           (widget.focusPolicy() & Qt::TabFocus) != 0;
}

} // namespace

SheetOverlay::SheetOverlay(QWidget &host, QWidget &panel, std::function<void()> cancel)
    : QWidget(&host),
      m_host(host),
      m_panel(&panel),
      m_formerParent(panel.parentWidget()),
      m_formerFocus(host.focusWidget()),
      m_wantedFocus(panel.focusWidget()),
      m_hadOwnSize(panel.testAttribute(Qt::WA_Resized)),
      m_wantedSize(m_hadOwnSize ? panel.size() : panel.sizeHint()),
      m_cancel(std::move(cancel)),
      m_frame(new SheetFrame(this)),
      m_guard(new SheetGuard(host, *this)),
      m_presses(new DestructivePressGuard(host, *this))
{
    setAcceptDrops(true); // and refuses all drops, or they would fall through
    host.installEventFilter(this);
    adoptPanel();
    layOut();
}

SheetOverlay::~SheetOverlay()
{
    // The panel is only lent: it does not die with the window that showed it.
    if (m_panel && isAncestorOf(m_panel))
        m_panel->setParent(nullptr);
}

void SheetOverlay::adoptPanel()
{
    m_panel->setParent(m_frame);
    m_frame->setPalette(m_panel->palette());
    m_frame->setAccessibleName(m_panel->accessibleName().isEmpty() ? m_panel->windowTitle()
                                                                   : m_panel->accessibleName());
    m_frame->setAccessibleDescription(m_panel->accessibleDescription());
    m_panel->show();
}

void SheetOverlay::layOut()
{
    setGeometry(m_host.contentsRect()); // not over the window's own shadow
    const int drop = sheetDrop(m_host);
    const QSize room = size() - QSize(2 * kMargin, drop + kMargin) +
                       QSize(2 * SheetFrame::kShadow, SheetFrame::kShadow);
    QSize frame = SheetFrame::sizeAround(m_wantedSize).boundedTo(room);
    placeFrame(frame);
    if (!m_panel)
        return;
    const QPoint pointer = m_panel->mapFromGlobal(QCursor::pos());
    frame.rheight() += pointerClearance(*m_panel, pointer, room.height() - frame.height());
    placeFrame(frame);
}

void SheetOverlay::placeFrame(QSize size)
{
    m_frame->setGeometry(QRect(QPoint((width() - size.width()) / 2, sheetDrop(m_host)), size));
    if (m_panel)
        m_panel->setGeometry(m_frame->panelRect());
}

void SheetOverlay::slideIn()
{
    show();
    raise();
    takeFocus();
    if (!slide(0, 1))
        m_presses->sheetStands();
}

void SheetOverlay::slideOut()
{
    m_isSlidingOut = true;
    m_presses->sheetMoves();
    m_guard->lock();
    setFocus(Qt::OtherFocusReason);
    if (!slide(m_slide ? m_slide->shown() : 1, 0))
        QMetaObject::invokeMethod(this, &SheetOverlay::endSlide, Qt::QueuedConnection);
}

void SheetOverlay::dropSlide()
{
    delete m_slide;
    m_slide = nullptr;
}

/// Moves the sheet; false when nothing of the movement could be seen.
bool SheetOverlay::slide(double from, double to)
{
    dropSlide();
    const auto duration = animationDuration(m_host, kSlide);
    if (duration.count() <= 0 || !m_host.isVisible())
        return false;
    const auto paint = [this](QPainter &painter, double shown) { paintBackdrop(painter, shown); };
    m_slide = new SheetSlide({*this, *m_frame, paint}, {from, to, duration});
    connect(m_slide, &SheetSlide::finished, this, &SheetOverlay::endSlide);
    return true;
}

void SheetOverlay::endSlide()
{
    if (m_slide) {
        m_slide->hide();
        m_slide->deleteLater();
    }
    if (m_isSlidingOut)
        Q_EMIT slidOut();
    else
        m_presses->sheetStands();
}

/// The widget that had the focus before. If it cannot have it, for example on a page that has left
/// in the meantime, the widget that asked for the focus last.
QWidget *SheetOverlay::nextFocus() const
{
    for (QWidget *widget : {m_formerFocus.data(), m_guard->refusedFocus()}) {
        if (widget && widget->isVisible() && widget->isEnabled())
            return widget;
    }
    return nullptr;
}

void SheetOverlay::release()
{
    QWidget *const next = nextFocus();
    delete m_guard;
    if (m_panel) {
        m_panel->hide();
        m_panel->setParent(m_formerParent);
        m_panel->resize(m_wantedSize);
        m_panel->setAttribute(Qt::WA_Resized, m_hadOwnSize);
    }
    clearFocus(); // otherwise it would go to the next widget in the window
    hide();
    if (next)
        next->setFocus(Qt::OtherFocusReason);
}

void SheetOverlay::takeFocus()
{
    setFocus(Qt::OtherFocusReason);
    if (m_wantedFocus && m_wantedFocus->isVisible())
        m_wantedFocus->setFocus(Qt::OtherFocusReason);
    else
        focusNextPrevChild(true);
}

bool SheetOverlay::event(QEvent *event)
{
    if (isInput(event->type())) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::DragEnter) {
        event->ignore();
        return true;
    }
    return QWidget::event(event);
}

bool SheetOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_host && event->type() == QEvent::Resize) {
        layOut();
        if (m_slide) // its pictures are of the former size
            endSlide();
    }
    return QWidget::eventFilter(watched, event);
}

bool SheetOverlay::focusNextPrevChild(bool next)
{
    QWidget *const from = focusWidget() ? focusWidget() : this;
    for (QWidget *to = from;;) {
        to = next ? to->nextInFocusChain() : to->previousInFocusChain();
        if (to == from)
            return true;
        if (isAncestorOf(to) && takesTab(*to)) {
            to->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
}

void SheetOverlay::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    // A key that was down before answers no question.
    if (m_isSlidingOut || event->isAutoRepeat())
        return;
    if (event->key() == Qt::Key_Escape)
        m_cancel();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        pressDefaultButton();
}

void SheetOverlay::pressDefaultButton()
{
    for (QPushButton *button : m_frame->findChildren<QPushButton *>()) {
        if (button->isDefault() && button->isVisible() && button->isEnabled()) {
            button->click();
            return;
        }
    }
}

void SheetOverlay::paintBackdrop(QPainter &painter, double shown) const
{
    painter.fillRect(rect(), QColor::fromRgbF(0, 0, 0, static_cast<float>(kDimming * shown)));
}

void SheetOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    // A window with rounded corners is dimmed inside its corners only.
    if (m_host.testAttribute(Qt::WA_TranslucentBackground))
        painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    paintBackdrop(painter, 1);
}
