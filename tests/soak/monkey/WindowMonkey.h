#pragma once

#include <QPoint>
#include <QStringList>
#include <random>

class QWidget;
class QWindow;

/// Somebody who plays with mouse and keyboard and with the frames of the windows: sends random
/// events to the windows of this process that are shown, where the window system would send them.
/// The same seed makes the same choices in the same windows. Main thread only.
class WindowMonkey final
{
public:
    explicit WindowMonkey(quint32 seed);
    ~WindowMonkey();
    WindowMonkey(const WindowMonkey &) = delete;
    WindowMonkey &operator=(const WindowMonkey &) = delete;

    /// Sends one event and lets the program react. False when no window is shown.
    bool act();
    /// Lets all buttons of the mouse go.
    void letGo();

    /// A random number from 0 to below `limit`.
    int below(qsizetype limit);
    /// How often an event did not come back at once, because somebody ran an event loop for it.
    int nestedLoops() const { return m_nestedLoops; }
    /// What it did last, for people.
    QStringList lastActs() const { return m_lastActs; }

private:
    void note(const QString &act);
    QWindow *pickWindow();
    QPoint pickPlace(const QWindow &window);
    Qt::MouseButton pickButton();
    Qt::KeyboardModifiers pickModifiers();

    void move(QWindow &window);
    void press(QWindow &window);
    void release(QWindow &window);
    void click(QWindow &window);
    void doubleClick(QWindow &window);
    void wheel(QWindow &window);
    void key(QWindow &window);
    void shortcut(QWindow &window);
    void resize(QWindow &window);
    void shift(QWindow &window);
    void changeFocus(QWindow &window);
    void close(QWindow &window);

    void closePopups();

    std::mt19937 m_random;
    int m_nestedLoops = 0;
    QStringList m_lastActs;
    std::unique_ptr<QWidget> m_elsewhere; ///< stands for another program's window
};
