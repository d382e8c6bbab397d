#pragma once

#include <QRect>
#include <optional>

class QWidget;

/// Moves or resizes a frameless window with the pointer. The window system does it where it can;
/// elsewhere the window follows the pointer by itself. Main thread.
class WindowDrag final
{
public:
    explicit WindowDrag(QWidget &window) : m_window(window) {}

    /// The pointer took hold at a position on the screen: of these edges, or of no edge to move the
    /// window.
    void press(QPoint pointer, Qt::Edges edges);
    /// The pointer is at this position now. The first points of its way do not count, because they
    /// are part of a click.
    void follow(QPoint pointer);
    void release() { m_hold.reset(); }

private:
    struct Hold
    {
        QPoint pointer;
        QRect geometry; ///< the window's, at the press
        Qt::Edges edges;
        bool isUnderWay = false;
    };

    bool isLeftToTheSystem() const;

    QWidget &m_window;
    std::optional<Hold> m_hold;
};
