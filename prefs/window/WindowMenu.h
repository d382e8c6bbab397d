#pragma once

#include <QMenu>

class QMenuBar;

/// A menu bar's menus as one: their actions one below the other, a line between two menus. Main
/// thread.
class WindowMenu final : public QMenu
{
    Q_OBJECT

public:
    /// Takes the bar and hides it. Its actions' shortcuts work in the whole window from now on; the
    /// shortcuts of a hidden bar would not work otherwise.
    WindowMenu(QMenuBar *bar, QWidget *window);

    /// Opens with what the bar holds now, its right edge at the view's.
    void popUpBelow(const QWidget &view);

private:
    void fill();

    QMenuBar *m_bar;
};
