#pragma once

#include "tests/support/page/Journey.h"

class ColorWindow;
class ExcludedFilesView;
class PreferencesWindowController;
class QMenu;

/// The user at the preferences: opens them from the main window's menu, and works in them with
/// mouse and keyboard. Every step returns whether it was completed.
class PreferencesJourney final
{
public:
    PreferencesJourney(AppDelegate &application, Journey &journey)
        : m_application(application), m_journey(journey)
    {
    }

    /// Presses the menu's button and then its command, and waits until the home folder that is
    /// granted, if any, is known there.
    bool open();
    /// Closes them with Escape.
    bool close();

    /// Presses Add, types the path into the panel, and waits for the new row.
    bool add(const QByteArray &path);
    /// Does what a file manager does when these are dropped on the table. Does not wait for rows.
    bool drop(const QList<QByteArray> &paths);
    bool waitForRows(int count);
    /// Waits until nothing is being measured any more.
    bool waitForSizes();
    /// Clicks the first of these rows, and the others with the control key held.
    void select(const QList<int> &rows);
    bool pressRemove();
    void pressKey(Qt::Key key);

    /// The texts of a column, from top to bottom.
    QStringList texts(int column);

    QWidget &window();
    ExcludedFilesView &table();
    QPixmap picture();

private:
    PreferencesWindowController &controller();
    bool clickButton(const char *name);

    AppDelegate &m_application;
    Journey &m_journey;
};
