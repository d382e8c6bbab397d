#include "tests/soak/monkey/WindowMonkey.h"

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <array>
#include <chrono>

namespace {

constexpr int kActsToRemember = 40;
/// Longer than an event takes that does not wait for anybody.
constexpr std::chrono::milliseconds kPatience{500};

const std::array kKeys{Qt::Key_Tab,    Qt::Key_Backtab,  Qt::Key_Space,  Qt::Key_Return,
                       Qt::Key_Enter,  Qt::Key_Escape,   Qt::Key_Left,   Qt::Key_Right,
                       Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Home,   Qt::Key_End,
                       Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Delete, Qt::Key_Backspace,
                       Qt::Key_Menu,   Qt::Key_F2,       Qt::Key_F5,     Qt::Key_F10,
                       Qt::Key_A,      Qt::Key_D,        Qt::Key_Slash};

struct Shortcut
{
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};
const std::array<Shortcut, 10> kShortcuts{{{Qt::Key_Comma, Qt::ControlModifier},
                                           {Qt::Key_Left, Qt::AltModifier},
                                           {Qt::Key_A, Qt::ControlModifier},
                                           {Qt::Key_C, Qt::ControlModifier},
                                           {Qt::Key_V, Qt::ControlModifier},
                                           {Qt::Key_W, Qt::ControlModifier},
                                           {Qt::Key_Z, Qt::ControlModifier},
                                           {Qt::Key_Space, Qt::ShiftModifier},
                                           {Qt::Key_D, Qt::AltModifier},
                                           {Qt::Key_Q, Qt::ControlModifier}}};

QWidget *widgetOf(const QWindow &window)
{
    const QWidgetList all = QApplication::topLevelWidgets();
    const auto found = std::find_if(all.begin(), all.end(), [&](const QWidget *widget) {
        return widget->windowHandle() == &window;
    });
    return found == all.end() ? nullptr : *found;
}

QString named(const QWindow &window)
{
    const QWidget *widget = widgetOf(window);
    return widget ? QLatin1String(widget->metaObject()->className()) : QLatin1String("?");
}

/// One event for each movement of the key: the window may go with any of them.
void strike(QWindow &window, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const char letter = modifiers.testFlag(Qt::ControlModifier) ? '\0' : QTest::keyToAscii(key);
    const QString text = letter == '\0' ? QString() : QString(QLatin1Char(letter));
    const QPointer<QWindow> there(&window);
    for (const bool isDown : {true, false}) {
        if (there)
            QTest::simulateEvent(&window, isDown, key, modifiers, text, false);
    }
}

QString text(QPoint place)
{
    return QStringLiteral("%1,%2").arg(place.x()).arg(place.y());
}

/// An object and all that is around it, from the inside out.
QString placeOf(const QObject *object)
{
    QStringList classes;
    for (; object; object = object->parent())
        classes.append(QString::fromLatin1(object->metaObject()->className()));
    return classes.isEmpty() ? QStringLiteral("nobody") : classes.join(QStringLiteral(" in "));
}

} // namespace

WindowMonkey::WindowMonkey(quint32 seed) : m_random(seed)
{
}

WindowMonkey::~WindowMonkey() = default;

int WindowMonkey::below(qsizetype limit)
{
    return static_cast<int>(m_random() % static_cast<quint32>(std::max<qsizetype>(limit, 1)));
}

void WindowMonkey::note(const QString &act)
{
    m_lastActs.append(act);
    if (m_lastActs.size() > kActsToRemember)
        m_lastActs.removeFirst();
}

bool WindowMonkey::act()
{
    struct Habit
    {
        int share;
        void (WindowMonkey::*act)(QWindow &window);
    };
    static constexpr std::array<Habit, 12> kHabits{{{220, &WindowMonkey::move},
                                                    {85, &WindowMonkey::press},
                                                    {85, &WindowMonkey::release},
                                                    {210, &WindowMonkey::click},
                                                    {50, &WindowMonkey::doubleClick},
                                                    {50, &WindowMonkey::wheel},
                                                    {230, &WindowMonkey::key},
                                                    {25, &WindowMonkey::shortcut},
                                                    {15, &WindowMonkey::resize},
                                                    {8, &WindowMonkey::shift},
                                                    {20, &WindowMonkey::changeFocus},
                                                    {2, &WindowMonkey::close}}};
    constexpr int kAllShares = 1000;
    QWindow *const window = pickWindow();
    if (!window)
        return false;
    int left = below(kAllShares);
    const auto habit = std::find_if(kHabits.begin(), kHabits.end(),
                                    [&](const Habit &each) { return (left -= each.share) < 0; });
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, &watchdog, [this] { closePopups(); });
    watchdog.start(kPatience);
    (this->*habit->act)(*window);
    watchdog.stop();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return true;
}

/// Whoever waits for a popup goes on when it is closed.
void WindowMonkey::closePopups()
{
    if (QThread::currentThread()->loopLevel() == 0)
        return; // the event alone takes long
    ++m_nestedLoops;
    while (QWidget *const popup = QApplication::activePopupWidget()) {
        note(QStringLiteral("held up by a popup of %1").arg(placeOf(popup->parent())));
        popup->close();
    }
}

void WindowMonkey::letGo()
{
    if (QWindow *const window = pickWindow()) {
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            QTest::mouseRelease(window, button, {}, {1, 1});
    }
}

/// Mostly the window in which the user works.
QWindow *WindowMonkey::pickWindow()
{
    QList<QWindow *> shown;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        const QWidget *widget = widgetOf(*window);
        if (window->isVisible() && widget && widget != m_elsewhere.get())
            shown.append(window);
    }
    QWindow *const focus = QGuiApplication::focusWindow();
    const bool isUsual = below(4) > 0;
    if (isUsual && shown.contains(focus))
        return focus;
    return shown.isEmpty() ? nullptr : shown[below(shown.size())];
}

/// Mostly inside something that can be seen there.
QPoint WindowMonkey::pickPlace(const QWindow &window)
{
    const QRect all(QPoint(), window.size());
    QRect target = all;
    if (const QWidget *const widget = widgetOf(window); widget && below(4) > 0) {
        QList<QWidget *> seen = widget->findChildren<QWidget *>();
        seen.removeIf(
            [&](const QWidget *child) { return !child->isVisible() || child->window() != widget; });
        if (!seen.isEmpty()) {
            const QWidget *const child = seen[below(seen.size())];
            target = QRect(child->mapTo(widget, QPoint()), child->size()).intersected(all);
        }
    }
    if (target.isEmpty())
        target = all;
    return target.topLeft() + QPoint(below(target.width()), below(target.height()));
}

Qt::MouseButton WindowMonkey::pickButton()
{
    constexpr int kRight = 2;
    const int kind = below(20);
    if (kind == 0)
        return Qt::MiddleButton;
    return kind <= kRight ? Qt::RightButton : Qt::LeftButton;
}

Qt::KeyboardModifiers WindowMonkey::pickModifiers()
{
    const int kind = below(12);
    if (kind == 0)
        return Qt::ShiftModifier;
    return kind == 1 ? Qt::ControlModifier : Qt::NoModifier;
}

void WindowMonkey::move(QWindow &window)
{
    const QPoint place = pickPlace(window);
    note(QStringLiteral("move to %1 in %2").arg(text(place), named(window)));
    QTest::mouseMove(&window, place);
}

void WindowMonkey::press(QWindow &window)
{
    const QPoint place = pickPlace(window);
    note(QStringLiteral("press at %1 in %2").arg(text(place), named(window)));
    QTest::mousePress(&window, pickButton(), pickModifiers(), place);
}

void WindowMonkey::release(QWindow &window)
{
    const QPoint place = pickPlace(window);
    note(QStringLiteral("release at %1 in %2").arg(text(place), named(window)));
    QTest::mouseRelease(&window, pickButton(), pickModifiers(), place);
}

void WindowMonkey::click(QWindow &window)
{
    const QPoint place = pickPlace(window);
    note(QStringLiteral("click at %1 in %2").arg(text(place), named(window)));
    QTest::mouseClick(&window, pickButton(), pickModifiers(), place);
}

void WindowMonkey::doubleClick(QWindow &window)
{
    const QPoint place = pickPlace(window);
    note(QStringLiteral("double click at %1 in %2").arg(text(place), named(window)));
    const QPointer<QWindow> there(&window);
    QTest::mouseDClick(&window, Qt::LeftButton, {}, place);
    if (there)
        QTest::mouseRelease(&window, Qt::LeftButton, {}, {1, 1});
}

void WindowMonkey::wheel(QWindow &window)
{
    constexpr int kNotch = 120;
    const QPoint place = pickPlace(window);
    const QPoint angle(0, below(2) == 0 ? kNotch : -kNotch);
    note(QStringLiteral("wheel at %1 in %2").arg(text(place), named(window)));
    QWheelEvent event(place, window.mapToGlobal(place), {}, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window, &event);
}

void WindowMonkey::key(QWindow &window)
{
    const Qt::Key key = kKeys.at(below(kKeys.size()));
    note(QStringLiteral("key %1 in %2").arg(int(key), 0, 16).arg(named(window)));
    strike(window, key, pickModifiers());
}

void WindowMonkey::shortcut(QWindow &window)
{
    const Shortcut shortcut = kShortcuts.at(below(kShortcuts.size()));
    note(QStringLiteral("shortcut %1 in %2").arg(int(shortcut.key), 0, 16).arg(named(window)));
    strike(window, shortcut.key, shortcut.modifiers);
}

void WindowMonkey::resize(QWindow &window)
{
    constexpr int kMost = 1200;
    QWidget *const widget = widgetOf(window);
    const QSize size(1 + below(kMost), 1 + below(kMost));
    note(QStringLiteral("resize %1 to %2,%3")
             .arg(named(window))
             .arg(size.width())
             .arg(size.height()));
    widget->resize(size);
}

void WindowMonkey::shift(QWindow &window)
{
    constexpr int kMost = 600;
    note(QStringLiteral("shift %1").arg(named(window)));
    widgetOf(window)->move(below(kMost), below(kMost));
}

/// To another program and back, or to another window.
void WindowMonkey::changeFocus(QWindow &window)
{
    note(QStringLiteral("change the focus from %1").arg(named(window)));
    if (!m_elsewhere)
        m_elsewhere = std::make_unique<QWidget>();
    const bool isAway = below(2) == 0;
    m_elsewhere->setVisible(isAway);
    (isAway ? m_elsewhere.get() : widgetOf(window))->activateWindow();
}

/// As the button of a window's frame does.
void WindowMonkey::close(QWindow &window)
{
    note(QStringLiteral("close %1").arg(named(window)));
    window.close();
}
