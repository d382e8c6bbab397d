#include "app/settings/UserDefaults.h"
#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/InterfaceClasses.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/largefiles/search/Gate.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/InterfaceClasses.h"

#include <QLabel>
#include <QTextDocumentFragment>

namespace {

/// The sheet over a window while the search stands at a gate in "Pictures", with two files found
/// and one folder that may not be read.
struct HeldSheet
{
    HeldSheet()
        : access(folder.path()),
          defaults(QFile::decodeName(folder.path("settings")), hostSystemCalls()),
          controller(loader, {defaults, gate.calls, access, workspace,
                              HomeLayout::withLibrary(
                                  FileUrl::fromPath(folder.path(), FileUrlKind::Folder))})
    {
        registerWidgetClasses(loader);
        registerLargeFilesClasses(loader);
        for (const char *name : {"Movies", "Movies/locked", "Pictures"})
            folder.makeFolder(name);
        folder.makeFile("Movies/summer.mkv", 300'000'000);
        folder.makeFile("Movies/disk.iso", 200'000'000);
        folder.makeFile("Pictures/scan.tiff", 250'000'000);
        host.window.resize(860, 680);
        controller.refreshData();
        presentSheet(
            host.window, *controller.window(), [this](int) { isDone = true; },
            [this] { controller.cancel(); });
        gate.awaitArrival();
    }
    ~HeldSheet() { gate.open(); }

    QLabel &label(const char *name) const
    {
        return *controller.tableView()->window()->findChild<QLabel *>(QLatin1String(name));
    }
    QString status() const { return label("statusLabel").text(); }
    int rowCount() { return controller.array().rowCount(); }

    Gate gate{"scan.tiff", "locked"};
    ScratchFolder folder;
    FolderAccess access;
    InterfaceLoader loader;
    UserDefaults defaults;
    Workspace workspace;
    SheetHost host;
    LargeFilesWindowController controller;
    bool isDone = false;
};

} // namespace

/// The sheet while its search is under way.
class SearchingSheetTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsAndSaysWhereItIs()
    {
        HeldSheet sheet;
        QTRY_COMPARE(sheet.rowCount(), 2);
        QTRY_COMPARE(sheet.status(),
                     QStringLiteral("Searching Pictures…  ·  1 place could not be read"));
        const QLabel &label = sheet.label("statusLabel");
        const QString details = label.accessibleDescription();
        QVERIFY(details.endsWith(QStringLiteral("/Movies/locked")));
        QCOMPARE(QTextDocumentFragment::fromHtml(label.toolTip()).toPlainText(), details);
        sheet.gate.open();
        QTRY_COMPARE(sheet.status(),
                     QStringLiteral("3 files over 100 MB  ·  1 place could not be read"));
        QCOMPARE(sheet.controller.array().fileAt(1).name(), QStringLiteral("scan.tiff"));
    }

    void tellsWhatThereIsToDoOnceThereAreRows()
    {
        HeldSheet sheet;
        QTRY_COMPARE(sheet.rowCount(), 2);
        QVERIFY(sheet.label("imageView").text().startsWith(QStringLiteral("Click a size")));
        sheet.controller.tableView()->selectRow(0);
        QCOMPARE(sheet.label("imageView").text(), QString());
        sheet.controller.deleteData();
        QCOMPARE(sheet.label("imageView").text(), QString());
        QVERIFY(sheet.label("imageView").pixmap().isNull());
    }

    void mayBeUsedMeanwhile()
    {
        HeldSheet sheet;
        QTRY_COMPARE(sheet.rowCount(), 2);
        sheet.controller.tableView()->selectRow(1);
        sheet.controller.addButtonPressed(1);
        sheet.gate.open();
        QTRY_COMPARE(sheet.rowCount(), 3);
        // A row came in between: selection and pick stay with the file.
        QCOMPARE(sheet.controller.tableView()->selectedRows(), QList<int>{2});
        QVERIFY(sheet.controller.array().fileAt(2).isAdded());
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
    }

    void closesAndStopsTheSearchWithoutWaitingForIt()
    {
        HeldSheet sheet;
        QTRY_COMPARE(sheet.rowCount(), 2);
        // The search stands at the gate until it is opened below.
        QTest::keyClick(sheet.host.window.windowHandle(), Qt::Key_Escape);
        QVERIFY(!sheet.controller.search().isRunning());
        QVERIFY(sheet.controller.search().isAtWork());
        sheet.gate.open();
        QTRY_VERIFY(!sheet.controller.search().isAtWork());
        QTRY_VERIFY(sheet.isDone);
        QCOMPARE(sheet.rowCount(), 2); // the search looked at nothing behind the gate
    }
};

VANTOR_GUI_TEST_MAIN(SearchingSheetTest)
#include "tst_SearchingSheet.moc"
