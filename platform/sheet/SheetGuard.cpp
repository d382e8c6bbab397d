#include "platform/sheet/SheetGuard.h"

#include <QAction>
#include <QApplication>

SheetGuard::SheetGuard(QWidget &host, QWidget &overlay)
    : QObject(&overlay), m_host(host), m_overlay(overlay)
{
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { keepFocusInside(now); });
}

bool SheetGuard::eventFilter(QObject *watched, QEvent *event)
{
    noteFocusBehind();
    switch (event->type()) {
    case QEvent::Close:
        if (watched != &m_host)
            return false;
        event->ignore();
        return true;
    case QEvent::ShortcutOverride:
        if (m_isGivingKeyBack) {
            event->accept(); // no shortcut this time
            return true;
        }
        m_lastKey.reset(static_cast<QKeyEvent *>(event)->clone());
        return false;
    case QEvent::Shortcut:
        if (mayHaveShortcut(watched))
            return false;
        giveKeyBack();
        return true;
    default:
        return false;
    }
}

bool SheetGuard::mayHaveShortcut(QObject *receiver) const
{
    if (!m_host.isActiveWindow())
        return true;
    return !m_isLocked && placeOfReceiver(receiver) == Place::Inside;
}

/// A key that is a shortcut behind the sheet may mean something else in the sheet, like the space
/// bar on a button. The sheet gets the key as if there were no shortcut.
void SheetGuard::giveKeyBack()
{
    QWidget *const focus = m_host.focusWidget();
    if (m_isLocked || !m_lastKey || !focus || placeOf(focus) != Place::Inside)
        return;
    QKeyEvent key(QEvent::KeyPress, m_lastKey->key(), m_lastKey->modifiers(), m_lastKey->text(),
                  m_lastKey->isAutoRepeat());
    m_isGivingKeyBack = true;
    QCoreApplication::sendEvent(focus, &key);
    m_isGivingKeyBack = false;
}

SheetGuard::Place SheetGuard::placeOf(const QObject *object) const
{
    for (; object; object = object->parent()) {
        if (object == &m_overlay)
            return Place::Inside;
        if (object == &m_host)
            return Place::Behind;
    }
    return Place::Elsewhere;
}

/// An action has the place of the widgets that show it.
SheetGuard::Place SheetGuard::placeOfReceiver(QObject *receiver) const
{
    Place place = placeOf(receiver);
    if (const auto *const action = qobject_cast<QAction *>(receiver)) {
        for (const QObject *shownBy : action->associatedObjects()) {
            if (placeOf(shownBy) == Place::Inside)
                place = Place::Inside;
        }
    }
    return place;
}

/// In a window that is not active, a widget gets the focus without any signal. This is noticed only
/// when the next widget gets it.
void SheetGuard::noteFocusBehind()
{
    QWidget *const focus = m_host.focusWidget();
    if (focus && focus != m_refusedFocus && placeOf(focus) == Place::Behind)
        m_refusedFocus = focus;
}

void SheetGuard::keepFocusInside(QWidget *now)
{
    if (!now || now->window() != &m_host)
        return;
    if (placeOf(now) == Place::Inside) {
        m_focusInside = now;
        return;
    }
    m_refusedFocus = now;
    QWidget *const back = m_focusInside ? m_focusInside.data() : &m_overlay;
    back->setFocus(Qt::OtherFocusReason);
}
