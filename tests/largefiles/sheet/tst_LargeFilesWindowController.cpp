#include "app/settings/UserDefaults.h"
#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/InterfaceClasses.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/InterfaceClasses.h"

#include <QAccessible>
#include <QAction>
#include <QContextMenuEvent>
#include <QLabel>
#include <QSignalSpy>

namespace {

class QuietWorkspace final : public Workspace
{
public:
    bool openUrl(const QUrl &) override { return false; }
    void activateFileViewerSelectingUrls(const FileUrls &urls) override { revealed << urls; }

    QList<FileUrls> revealed;
};

/// The sheet over a window, with three files found.
struct Sheet
{
    Sheet()
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

} // namespace

class LargeFilesWindowControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSheetListsWhatTheSearchFinds()
    {
        const Sheet sheet;
        QCOMPARE(sheet.controller.tableView()->model()->rowCount(), 3);
        QCOMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
        QCOMPARE(sheet.controller.cancelButton()->attributedTitle().firstRun()->color,
                 QColor(0, 122, 255));
        const auto *status = sheet.host.window.findChild<QLabel *>(QStringLiteral("statusLabel"));
        QCOMPARE(status->text(), QStringLiteral("3 files over 100 MB"));
    }

    void aSizeButtonPicksItsRowAndLeavesTheSelection()
    {
        Sheet sheet;
        sheet.pressButtonOf(1);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        QCOMPARE(sheet.controller.selectedURLs().first().lastPathComponent(),
                 QByteArray("disk.iso"));
        QVERIFY(sheet.controller.tableView()->selectedRows().isEmpty());
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add 200 MB"));
        const TextRun &style = *sheet.controller.addButton()->attributedTitle().firstRun();
        QCOMPARE(style.color, QColor(65, 204, 89));
        QCOMPARE(style.font.pixelSize() > 0 ? style.font.pixelSize() : style.font.pointSize(), 18);
        sheet.pressButtonOf(1);
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
    }

    void aHeldButtonLooksPressedAndMayBeLeft()
    {
        Sheet sheet;
        QWidget *const view = sheet.controller.tableView()->viewport();
        const QImage before = view->grab().toImage();
        QTest::mousePress(view, Qt::LeftButton, {}, sheet.buttonOf(0));
        QVERIFY(view->grab().toImage() != before);
        QTest::mouseRelease(view, Qt::LeftButton, {}, QPoint(5, 5));
        QCOMPARE(view->grab().toImage(), before);
        QVERIFY(sheet.controller.selectedURLs().isEmpty());
    }

    void aVanishedFileCountsNothing()
    {
        Sheet sheet;
        QVERIFY(QFile::remove(QFile::decodeName(sheet.folder.path("Movies/disk.iso"))));
        sheet.pressButtonOf(1);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
    }

    void cancelMakesEveryButtonBlueAgain()
    {
        Sheet sheet;
        QList<QImage> blue;
        for (const int row : {0, 1, 2}) {
            blue.append(sheet.pictureOfButton(row));
            sheet.controller.addButtonPressed(row);
            QVERIFY(sheet.pictureOfButton(row) != blue.constLast());
        }
        sheet.controller.cancel();
        QTRY_VERIFY(sheet.isDone);
        for (const int row : {0, 1, 2})
            QCOMPARE(sheet.pictureOfButton(row), blue.at(row));
    }

    void thePreviewLeavesTheSheetItsKeys()
    {
        Sheet sheet;
        const QuickLookTableView &table = *sheet.controller.tableView();
        const auto press = [&](Qt::Key key) {
            QTest::keyClick(sheet.host.window.windowHandle(), key);
        };
        press(Qt::Key_Down);
        press(Qt::Key_Space);
        QVERIFY(sheet.controller.previewPanel()->isVisible());
        press(Qt::Key_Down);
        QCOMPARE(table.selectedRows(), QList<int>{1});
        press(Qt::Key_Return);
        QVERIFY(sheet.controller.array().fileAt(1).isAdded());
        QVERIFY(sheet.controller.previewPanel()->isVisible());
        press(Qt::Key_Escape);
        QVERIFY(!sheet.controller.previewPanel()->isVisible());
        sheet.controller.previewPanel()->reloadData(); // which is no longer the sheet's to fill
        QCOMPARE(sheet.controller.previewPanel()->currentPreviewItemIndex(), -1);
        QVERIFY(table.hasFocus());
        QVERIFY(!sheet.isDone);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        press(Qt::Key_Escape);
        QTRY_VERIFY(sheet.isDone);
        QVERIFY(sheet.controller.selectedURLs().isEmpty());
    }

    void cancelDropsThreePicks()
    {
        Sheet sheet;
        for (const int row : {0, 1, 2})
            sheet.pressButtonOf(row);
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add 650 MB"));
        QTest::keyClick(sheet.controller.tableView(), Qt::Key_Escape);
        QTRY_VERIFY(sheet.isDone);
        QVERIFY(sheet.controller.selectedURLs().isEmpty());
        QCOMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
        for (const int row : {0, 1, 2})
            QVERIFY(!sheet.controller.array().fileAt(row).isAdded());
    }

    void addKeepsThePicks()
    {
        Sheet sheet;
        sheet.pressButtonOf(2);
        QTest::mouseClick(sheet.controller.addButton(), Qt::LeftButton);
        QTRY_VERIFY(sheet.isDone);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        sheet.controller.deleteData();
        QVERIFY(sheet.controller.selectedURLs().isEmpty());
        QCOMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
    }

    void enterPicksTheSelectedRows()
    {
        Sheet sheet;
        sheet.pressButtonOf(0);
        sheet.controller.tableView()->selectAll();
        QTest::keyClick(sheet.controller.tableView(), Qt::Key_Return);
        QCOMPARE(sheet.controller.selectedURLs().size(), 3);
        QTest::keyClick(sheet.controller.tableView(), Qt::Key_Return);
        QCOMPARE(sheet.controller.selectedURLs().size(), 0);
        QVERIFY(!sheet.isDone);
    }

    void manyRowsArePickedAtOnce()
    {
        Sheet sheet;
        LargeFileList &array = sheet.controller.array();
        for (int i = 0; i < 1000; ++i)
            array.insert(File(FileUrl::fromPath(
                sheet.folder.path("Movies/gone" + QByteArray::number(i)), FileUrlKind::File)));
        sheet.controller.addButtonPressed(0);
        const QSignalSpy total(&array, &LargeFileList::sizeStringChanged);
        QTest::keyClick(sheet.controller.tableView(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(sheet.controller.tableView(), Qt::Key_Return);
        QCOMPARE(total.size(), 1);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1003);
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add 650 MB"));
    }

    void theSelectedFileIsShownAndNothingWithoutOne()
    {
        Sheet sheet;
        QSignalSpy shown(&sheet.controller, &LargeFilesWindowController::thumbnailShown);
        sheet.controller.tableView()->selectRow(0);
        QVERIFY(shown.wait());
        QCOMPARE(sheet.controller.imageView()->pixmap().size(), QSize(220, 220));
        const auto spoken = [&] {
            return QAccessible::queryAccessibleInterface(sheet.controller.imageView())
                ->text(QAccessible::Name);
        };
        QCOMPARE(spoken(), QStringLiteral("Picture of summer.mkv"));
        sheet.controller.tableView()->clearSelection();
        QVERIFY(spoken().startsWith(QStringLiteral("Click a size")));
        QVERIFY(sheet.controller.imageView()->pixmap().isNull());
        sheet.controller.tableView()->selectRow(1);
        sheet.controller.deleteData();
        QVERIFY(sheet.controller.imageView()->pixmap().isNull());
    }

    void theMenuIsThatOfTheRowUnderThePointer()
    {
        Sheet sheet;
        QuickLookTableView &table = *sheet.controller.tableView();
        table.selectRow(0);
        QTest::mouseClick(table.viewport(), Qt::RightButton, {}, QPoint(40, 60));
        QCOMPARE(table.selectedRows(), QList<int>{0});
        QMenu *const menu = table.menuForEvent(QPoint(40, 60));
        QCOMPARE(menu, table.menu());
        QCOMPARE(menu->actions().first()->data().value<QPersistentModelIndex>().row(), 1);
        menu->actions().first()->trigger();
        QCOMPARE(sheet.workspace.revealed.size(), 1);
        QCOMPARE(sheet.workspace.revealed.first().first().lastPathComponent(),
                 QByteArray("disk.iso"));
        QVERIFY(!table.menuForEvent(QPoint(40, 300)));
    }

    void theFirstArrowKeyTakesTheFirstRow()
    {
        const Sheet sheet; // whose list was full before it got the focus
        for (int row = 0; row < 2; ++row) {
            QTest::keyClick(sheet.controller.tableView(), Qt::Key_Down);
            QCOMPARE(sheet.controller.tableView()->selectedRows(), QList<int>{row});
        }
    }

    void tabGoesFromTheListToCancelToAdd()
    {
        const Sheet sheet;
        const QList<QWidget *> order{sheet.controller.tableView(), sheet.controller.cancelButton(),
                                     sheet.controller.addButton()};
        for (int step = 1; step <= 6; ++step) {
            QTest::keyClick(sheet.host.window.windowHandle(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), order[step % 3]);
        }
        for (int step = 2; step >= 0; --step) {
            QTest::keyClick(sheet.host.window.windowHandle(), Qt::Key_Backtab);
            QCOMPARE(QApplication::focusWidget(), order[step]);
        }
    }

    void aRowSaysNameAndSizeAndWhetherItIsPicked()
    {
        Sheet sheet;
        QAccessibleInterface *const table =
            QAccessible::queryAccessibleInterface(sheet.controller.tableView());
        QVERIFY(table && table->tableInterface());
        const auto rowText = [&](int row) {
            return table->tableInterface()->cellAt(row, 0)->text(QAccessible::Name);
        };
        QCOMPARE(rowText(1), QStringLiteral("disk.iso, 200 MB"));
        sheet.controller.addButtonPressed(1);
        QCOMPARE(rowText(1), QStringLiteral("disk.iso, 200 MB, picked"));
        QCOMPARE(rowText(0), QStringLiteral("summer.mkv, 300 MB"));
    }
};

VANTOR_GUI_TEST_MAIN(LargeFilesWindowControllerTest)
#include "tst_LargeFilesWindowController.moc"
