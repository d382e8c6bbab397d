#pragma once

#include "platform/sheet/Sheet.h"

#include <QAction>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

/// A window with a menu, a shortcut and two buttons, over which sheets come up.
struct SheetHost
{
    SheetHost()
    {
        auto *const page = new QWidget(&window);
        window.setCentralWidget(page);
        window.resize(600, 500);
        behind = new QPushButton(QStringLiteral("&Behind"), page);
        behind->setGeometry(20, 300, 120, 30);
        other = new QPushButton(QStringLiteral("Other"), page);
        other->setGeometry(200, 300, 120, 30);
        QMenu *const menu = window.menuBar()->addMenu(QStringLiteral("&File"));
        action = menu->addAction(QStringLiteral("Act"));
        action->setShortcut(QKeySequence(QStringLiteral("Ctrl+K")));
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
    }

    QMainWindow window;
    QPushButton *behind = nullptr;
    QPushButton *other = nullptr;
    QAction *action = nullptr;
};

/// A panel with two fields, a plain button and a default button.
struct SheetPanel
{
    SheetPanel()
    {
        panel.resize(300, 160);
        panel.setWindowTitle(QStringLiteral("A question"));
        first = new QLineEdit(&panel);
        first->setGeometry(20, 20, 200, 26);
        second = new QLineEdit(&panel);
        second->setGeometry(20, 60, 200, 26);
        plain = new QPushButton(QStringLiteral("&Plain"), &panel);
        plain->setGeometry(20, 110, 100, 30);
        standard = new QPushButton(QStringLiteral("Standard"), &panel);
        standard->setGeometry(140, 110, 100, 30);
        standard->setDefault(true);
    }

    QWidget panel;
    QLineEdit *first = nullptr;
    QLineEdit *second = nullptr;
    QPushButton *plain = nullptr;
    QPushButton *standard = nullptr;
};
