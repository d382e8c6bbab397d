#pragma once

#include "app/navigation/WindowController.h"
#include "largefiles/search/CurrentSizeReader.h"
#include "largefiles/search/LargeFileList.h"
#include "largefiles/search/SearchJob.h"
#include "largefiles/sheet/FileIconNames.h"
#include "largefiles/sheet/QuickLookTableView.h"
#include "largefiles/sheet/SearchStatus.h"
#include "largefiles/sheet/SelectionPicture.h"
#include "largefiles/sheet/SelectionPreview.h"

class FileTableCellView;
class QAbstractButton;

class SystemCalls;

class TextButton;
class UserDefaults;
class Workspace;

/// The sheet in which the user picks large files: the list that a search fills, each row with a
/// button that picks it, a picture of the selected file beside it, and the picked total on the add
/// button. Picks stay from one opening to the next until the sheet is cancelled or deleteData().
///
/// To show it: refreshData(), then presentSheet(host, *window(), completion, [this] { cancel(); }).
/// The outcome is what selectedURLs() says in the completion. Made once and shown again. Main
/// thread only; all file work is done on other threads.
class LargeFilesWindowController final : public WindowController
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        const SystemCalls &calls;
        FileAccess &access;
        Workspace &workspace;
        /// The granted folder and where everything is in it; taken when the controller is made.
        HomeLayout home;
    };

    LargeFilesWindowController(const InterfaceLoader &loader, Services services,
                               QObject *parent = nullptr);
    ~LargeFilesWindowController() override;

    /// Searches again, off the main thread; what is listed and picked stays. Call it before each
    /// opening.
    void refreshData();
    /// Empties the list, and with it the picks.
    void deleteData();

    /// The picked files, in list order.
    FileUrls selectedURLs() const { return m_array.selectedURLs(); }
    /// The picked total, "Zero KB" for none: the present sizes, as far as they have been read.
    QString sizeString() const { return m_array.sizeString(); }
    /// What of it a cleaning would free, in bytes: files that may not be deleted count 0.
    qint64 deletableSize() const { return m_array.deletableSize(); }

    LargeFileList &array() { return m_array; }
    const SearchJob &search() const { return m_search; }
    QuickLookTableView *tableView() const { return m_tableView; }
    FileTableCellView *cellView() const { return m_cellView; }
    QLabel *imageView() const { return m_picture.label(); }
    TextButton *addButton() const { return m_addButton; }
    TextButton *cancelButton() const { return m_cancelButton; }
    /// Null until it was first asked for.
    PreviewPanel *previewPanel() const { return m_preview.panel(); }

public Q_SLOTS:
    /// A row's size button: picks the file, or drops it.
    void addButtonPressed(int row);
    /// Ends the sheet; the cancel button drops all picks before.
    void dismissPanel(QAbstractButton *sender);
    /// Does what the cancel button does.
    void cancel();
    /// The menu's action: shows the file of the menu's row in the file manager.
    void showInFinder();

Q_SIGNALS:
    /// The picture beside the list shows the selected file, or nothing.
    void thumbnailShown();

protected:
    void windowDidLoad() override;

private:
    void connectTable();
    void connectButtons();
    void connectSearch();
    void makeMenu();
    void reloadLabels();
    void showTotal();
    void showStatus();
    void toggleSelectedRows();
    void tableViewSelectionDidChange();
    QString hint() const;

    Services m_services;
    const FileUrls m_searchURLs;
    CurrentSizeReader m_currentSizes;
    LargeFileList m_array;
    SearchJob m_search;
    SearchStatus m_status;
    FileIconNames m_icons;
    SelectionPicture m_picture;
    SelectionPreview m_preview;
    QuickLookTableView *m_tableView = nullptr;
    FileTableCellView *m_cellView = nullptr;
    QLabel *m_statusLabel = nullptr;
    TextButton *m_addButton = nullptr;
    TextButton *m_cancelButton = nullptr;
    QMenu *m_menu = nullptr;
};
