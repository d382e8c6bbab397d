#pragma once

#include "app/AppDelegate.h"
#include "slices/record/SliceCatalogue.h"

#include <QPixmap>
#include <functional>

class LargeFilesWindowController;
class Popover;
class ViewController;

/// A user at the real window: finds where things are, moves the mouse there, presses keys, and
/// waits for the result as a person does. Every step returns whether it was completed.
class Journey final
{
public:
    explicit Journey(AppDelegate &application);

    ColorWindow &window() const { return m_application.mainWindowController().window(); }
    MainWindowController &controller() const { return m_application.mainWindowController(); }

    /// Waits until the page is shown, has come in completely, and its pie stands still.
    bool waitForPage(ViewController &page);

    /// Presses the home button and types the folder into the panel.
    bool chooseHome(const QByteArray &path);
    bool pressStart();

    /// Clicks the slice where it is painted, and waits for it to change.
    bool clickSlice(SliceKind kind);
    /// Clicks the slice and does not wait for a result.
    void tapSlice(SliceKind kind);
    /// Moves the pointer over the slice.
    bool hoverSlice(SliceKind kind);
    /// Presses the button that explains the slice under the pointer; null when no popover opens.
    /// The popover stays until it is closed, and is completely shown.
    Popover *openPopover();
    bool waitForMeasures();
    /// Waits until a sheet is completely out.
    bool waitForSheet();
    /// Waits for the tutorial, ticks its box and presses OK.
    bool declineTutorial();
    /// Presses the clean button and answers the confirmation with this button.
    bool pressClean(const QString &answer);
    bool scanAgain();

    /// Clicks "Large Files" and waits until its sheet is completely out.
    bool openLargeFiles();
    /// Waits until the sheet shows that the search is over.
    bool waitForSearch();
    /// Clicks the size button of the sheet's row, which removes the file from the choice if it is
    /// chosen.
    bool clickSizeButton(int row);
    /// Ends the sheet with its add or its cancel button.
    bool pressInLargeFiles(QWidget &button);
    LargeFilesWindowController &largeFiles() const;

    /// Presses a key; the widget with the focus gets it.
    void press(Qt::Key key);

    QPixmap picture() const;

private:
    bool clickButton(QWidget &button);
    QPoint middleOfSlice(int index) const;

    AppDelegate &m_application;
};
