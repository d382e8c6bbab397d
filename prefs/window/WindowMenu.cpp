#include "prefs/window/WindowMenu.h"

#include <QMenuBar>

namespace {

constexpr int kGap = 4;

/// Everything in a bar's menus and their submenus that can be triggered.
QList<QAction *> commandsOf(const QMenuBar &bar)
{
    QList<QAction *> commands;
    QList<const QWidget *> menus{&bar};
    while (!menus.isEmpty()) {
        for (QAction *action : menus.takeFirst()->actions()) {
            if (action->menu())
                menus.append(action->menu());
            else if (!action->isSeparator())
                commands.append(action);
        }
    }
    return commands;
}

} // namespace

WindowMenu::WindowMenu(QMenuBar *bar, QWidget *window) : QMenu(window), m_bar(bar)
{
    bar->setParent(this);
    bar->hide();
    window->addActions(commandsOf(*bar));
}

void WindowMenu::popUpBelow(const QWidget &view)
{
    fill();
    const QPoint corner(view.width() - sizeHint().width(), view.height() + kGap);
    popup(view.mapToGlobal(corner));
}

void WindowMenu::fill()
{
    clear();
    for (const QAction *entry : m_bar->actions()) {
        if (!entry->isVisible() || !entry->menu())
            continue;
        addSeparator();
        addActions(entry->menu()->actions());
    }
}
