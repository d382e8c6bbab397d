#include "platform/sheet/DestructivePressGuard.h"

#include "platform/look/PanelButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QStyleHints>
#include <algorithm>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kGlance{250}; // the least time in which a question is seen

/// The wait is counted in these steps, so that it stops while the program is held up: a press that
/// has been waiting meanwhile is delivered before the wait is over.
constexpr milliseconds kStep{50};

milliseconds doubleClick()
{
    return milliseconds(QGuiApplication::styleHints()->mouseDoubleClickInterval());
}

bool isPressedBy(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Space || event.key() == Qt::Key_Select;
}

} // namespace

DestructivePressGuard::DestructivePressGuard(QWidget &host, QWidget &overlay)
    : QObject(&overlay), m_host(host), m_overlay(overlay)
{
    m_timer.setInterval(kStep);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] { pass(kStep); });
    qApp->installEventFilter(this);
}

void DestructivePressGuard::sheetMoves()
{
    m_wait.reset();
    m_timer.stop();
}

void DestructivePressGuard::sheetStands()
{
    // The first step may come a little early, and "longer than" is meant.
    m_wait = doubleClick() + kGlance + kStep;
    m_timer.start();
}

void DestructivePressGuard::pass(milliseconds time)
{
    if (!m_wait)
        return;
    *m_wait -= time;
    if (takesPresses())
        m_timer.stop();
}

/// Whoever goes on pressing does not read: after a press that was not taken, as long as a double
/// click takes has to pass without another one.
void DestructivePressGuard::hold()
{
    if (!m_wait)
        return;
    m_wait = std::max(*m_wait, doubleClick() + kStep);
    m_timer.start();
}

bool DestructivePressGuard::destroys(const QObject *watched) const
{
    const auto *const button = qobject_cast<const PanelButton *>(watched);
    return button && button->look() == PanelButtonLook::Destructive &&
           m_overlay.isAncestorOf(button);
}

bool DestructivePressGuard::refuses(bool isMeant)
{
    if (isMeant && takesPresses())
        return false;
    hold();
    return true;
}

/// A press beside the button may be the first half of a double click on it.
bool DestructivePressGuard::refusesMouse(QObject *watched, QEvent::Type type)
{
    if (destroys(watched))
        return refuses(type == QEvent::MouseButtonPress);
    const auto *const widget = qobject_cast<QWidget *>(watched);
    if (widget && widget->window() == &m_host && !takesPresses())
        hold();
    return false;
}

bool DestructivePressGuard::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return refusesMouse(watched, event->type());
    case QEvent::KeyPress: {
        const auto &key = static_cast<const QKeyEvent &>(*event);
        return isPressedBy(key) && destroys(watched) && refuses(!key.isAutoRepeat());
    }
    case QEvent::ShortcutOverride:
        m_keyRepeats = static_cast<const QKeyEvent &>(*event).isAutoRepeat();
        return false;
    case QEvent::Shortcut:
        return destroys(watched) && refuses(!m_keyRepeats);
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::WindowActivate:
        // The sheet lies elsewhere now, or the user comes back to it.
        if (watched == &m_host && m_wait)
            sheetStands();
        return false;
    default:
        return false;
    }
}
