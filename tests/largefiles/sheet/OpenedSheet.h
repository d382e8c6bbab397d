#pragma once

#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/InterfaceClasses.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/SheetHost.h"
#include "widgets/InterfaceClasses.h"

#include <QSignalSpy>

/// Shows nothing, and remembers what it should have shown.
class QuietWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl &) override { return false; }
    void activateFileViewerSelectingUrls(const FileUrls &urls) override { revealed << urls; }

    QList<FileUrls> revealed;
};

/// The sheet over a window, with three files found.
struct OpenedSheet
{
    OpenedSheet()
        : access(folder.path()),
          defaults(QFile::decodeName(folder.path("settings")), hostSystemCalls()),
          controller(loader, {defaults, hostSystemCalls(), access, workspace,
                              HomeLayout::withLibrary(
                                  FileUrl::fromPath(folder.path(), FileUrlKind::Folder))})
    {
        registerWidgetClasses(loader);
        registerLargeFilesClasses(loader);
        folder.makeFolder("Movies");
        host.window.resize(860, 680);
        for (const auto &[name, size] : files)
            folder.makeFile(name, size);
        controller.refreshData();
        QSignalSpy finished(const_cast<SearchJob *>(&controller.search()), &SearchJob::finished);
        finished.wait();
        presentSheet(
            host.window, *controller.window(), [this](int) { isDone = true; },
            [this] { controller.cancel(); });
        if (!QTest::qWaitFor([this] { return controller.tableView()->hasFocus(); }))
            qFatal("no focus");
    }

    void press(Qt::Key key) { QTest::keyClick(host.window.windowHandle(), key); }
    QPoint buttonOf(int row) const
    {
        const QuickLookTableView &table = *controller.tableView();
        return FileTableCellView::addButtonRect(table.visualRect(table.model()->index(row, 0)))
            .center();
    }
    void pressButtonOf(int row) const
    {
        QTest::mouseClick(controller.tableView()->viewport(), Qt::LeftButton, {}, buttonOf(row));
    }
    QImage pictureOfButton(int row) const
    {
        const QuickLookTableView &table = *controller.tableView();
        return table.viewport()
            ->grab(FileTableCellView::addButtonRect(table.visualRect(table.model()->index(row, 0))))
            .toImage();
    }
    QString addTitle() const { return controller.addButton()->attributedTitle().string(); }

    const QList<std::pair<QByteArray, off_t>> files{{"Movies/summer.mkv", 300'000'000},
                                                    {"Movies/disk.iso", 200'000'000},
                                                    {"Movies/log.txt", 150'000'000}};
    ScratchFolder folder;
    FolderAccess access;
    InterfaceLoader loader;
    UserDefaults defaults;
    QuietWorkspace workspace;
    SheetHost host;
    LargeFilesWindowController controller;
    bool isDone = false;
};
