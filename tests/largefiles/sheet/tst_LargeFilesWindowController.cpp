#include "platform/look/Fonts.h"
#include "tests/largefiles/sheet/OpenedSheet.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QAction>
#include <QContextMenuEvent>
#include <QLabel>

namespace {

/// The style of a title whose text comes later.
TextRun titleIn(int size, const QColor &colour)
{
    return {{}, interfaceFont(Typeface::Light, size), colour, Qt::AlignHCenter};
}

} // namespace

class LargeFilesWindowControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSheetListsWhatTheSearchFinds()
    {
        const OpenedSheet sheet;
        QCOMPARE(sheet.controller.tableView()->model()->rowCount(), 3);
        QCOMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
        QCOMPARE(sheet.controller.cancelButton()->attributedTitle().firstRun()->color,
                 QColor(0, 122, 255));
        const auto *status = sheet.host.window.findChild<QLabel *>(QStringLiteral("statusLabel"));
        QCOMPARE(status->text(), QStringLiteral("3 files over 100 MB"));
    }

    void itsTitlesAreInTheirColoursAndSizes()
    {
        const OpenedSheet sheet;
        const QColor blue(0, 122, 255);
        const QColor green(65, 204, 89);
        const LargeFilesWindowController &controller = sheet.controller;
        const FileTableCellView &row = *controller.cellView();
        QCOMPARE(row.unaddedAttributes(), titleIn(15, blue));
        QCOMPARE(row.addedAttributes(), titleIn(15, Qt::white));
        TextRun cancel = titleIn(18, blue);
        cancel.text = QStringLiteral("Cancel");
        QCOMPARE(controller.cancelButton()->attributedTitle(), AttributedText{cancel});
        TextRun add = titleIn(18, green);
        add.text = QStringLiteral("Add Zero KB");
        QCOMPARE(controller.addButton()->attributedTitle(), AttributedText{add});
    }

    void whatIsExcludedIsNotListed()
    {
        OpenedSheet sheet;
        sheet.controller.deleteData();
        sheet.defaults.setStrings(VNTExcludedPathsString, {QStringLiteral("disk.iso")});
        QSignalSpy finished(&sheet.controller.search(), &SearchJob::finished);
        sheet.controller.refreshData();
        QVERIFY(finished.wait());
        QCOMPARE(sheet.controller.array().rowCount(), 2);
        QCOMPARE(sheet.controller.array().fileAt(0).name(), QStringLiteral("summer.mkv"));
        QCOMPARE(sheet.controller.array().fileAt(1).name(), QStringLiteral("log.txt"));
    }

    void aSizeButtonPicksItsRowAndLeavesTheSelection()
    {
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        OpenedSheet sheet;
        QVERIFY(QFile::remove(QFile::decodeName(sheet.folder.path("Movies/disk.iso"))));
        sheet.pressButtonOf(1);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        QTRY_COMPARE(sheet.addTitle(), QStringLiteral("Add Zero KB"));
    }

    void cancelMakesEveryButtonBlueAgain()
    {
        OpenedSheet sheet;
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
        OpenedSheet sheet;
        const QuickLookTableView &table = *sheet.controller.tableView();
        sheet.press(Qt::Key_Down);
        sheet.press(Qt::Key_Space);
        QVERIFY(sheet.controller.previewPanel()->isVisible());
        sheet.press(Qt::Key_Down);
        QCOMPARE(table.selectedRows(), QList<int>{1});
        sheet.press(Qt::Key_Return);
        QVERIFY(sheet.controller.array().fileAt(1).isAdded());
        QVERIFY(sheet.controller.previewPanel()->isVisible());
        sheet.press(Qt::Key_Escape);
        QVERIFY(!sheet.controller.previewPanel()->isVisible());
        sheet.controller.previewPanel()->reloadData(); // which is no longer the sheet's to fill
        QCOMPARE(sheet.controller.previewPanel()->currentPreviewItemIndex(), -1);
        QVERIFY(table.hasFocus());
        QVERIFY(!sheet.isDone);
        QCOMPARE(sheet.controller.selectedURLs().size(), 1);
        sheet.press(Qt::Key_Escape);
        QTRY_VERIFY(sheet.isDone);
        QVERIFY(sheet.controller.selectedURLs().isEmpty());
    }

    void cancelDropsThreePicks()
    {
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        OpenedSheet sheet;
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
        const OpenedSheet sheet; // whose list was full before it got the focus
        for (int row = 0; row < 2; ++row) {
            QTest::keyClick(sheet.controller.tableView(), Qt::Key_Down);
            QCOMPARE(sheet.controller.tableView()->selectedRows(), QList<int>{row});
        }
    }

    void tabGoesFromTheListToCancelToAdd()
    {
        const OpenedSheet sheet;
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
        OpenedSheet sheet;
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
