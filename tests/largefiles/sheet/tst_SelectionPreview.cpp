#include "largefiles/sheet/SelectionPreview.h"
#include "platform/system/HostSystemCalls.h"

#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/search/LargeFileList.h"
#include "largefiles/sheet/QuickLookTableView.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QKeyEvent>

namespace {

/// A table of three files in a window, with a preview.
struct PreviewedTable
{
    PreviewedTable()
    {
        folder.makeFolder("Movies");
        for (const char *name : {"Movies/a", "Movies/b", "Movies/c"}) {
            folder.makeFile(name, 10);
            files.insert(File(FileUrl::fromPath(folder.path(name), FileUrlKind::File)));
        }
        window.resize(600, 500);
        table.setModel(&files);
        preview.setTable(table, window);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
        table.setFocus();
    }

    void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    bool isShown() const { return preview.panel() && preview.panel()->isVisible(); }

    ScratchFolder folder;
    FolderAccess access{folder.path()};
    LargeFileList files;
    QWidget window;
    QuickLookTableView table{&window};
    SelectionPreview preview{{hostSystemCalls(), access}, files};
};

} // namespace

class TestSelectionPreview final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOpenedAndClosedByTheSpaceBar();
    void showsTheSelectedFiles();
    void followsTheSelectionWhileItIsShown();
    void leavesThePanelWhenItIsClosed();
    void handsKeysAloneToTheTable();
    void bearsToBeClosedBeforeItWasOpened();
};

void TestSelectionPreview::isOpenedAndClosedByTheSpaceBar()
{
    PreviewedTable made;
    QVERIFY(!made.preview.panel());
    made.press(Qt::Key_Space);
    QVERIFY(made.isShown());
    QCOMPARE(made.preview.panel()->parentWidget(), &made.window);
    made.press(Qt::Key_Space);
    QVERIFY(!made.isShown());
}

void TestSelectionPreview::showsTheSelectedFiles()
{
    PreviewedTable made;
    made.press(Qt::Key_Space); // none
    PreviewPanel &panel = *made.preview.panel();
    QCOMPARE(made.preview.numberOfPreviewItemsInPreviewPanel(panel), 0);
    QVERIFY(!made.preview.previewItemAtIndex(panel, 0));
    made.table.setSelectionMode(QAbstractItemView::MultiSelection);
    made.table.selectRow(2);
    made.table.selectRow(0);
    QCOMPARE(made.preview.numberOfPreviewItemsInPreviewPanel(panel), 2);
    const auto itemAt = [&](int index) {
        const std::optional<File> item = made.preview.previewItemAtIndex(panel, index);
        return item ? item->fileURL().lastPathComponent() : QByteArray();
    };
    QCOMPARE(itemAt(0), QByteArray("a"));
    QCOMPARE(itemAt(1), QByteArray("c"));
    QCOMPARE(itemAt(2), QByteArray());
    QCOMPARE(itemAt(-1), QByteArray());
}

void TestSelectionPreview::followsTheSelectionWhileItIsShown()
{
    PreviewedTable made;
    made.press(Qt::Key_Space);
    PreviewPanel &panel = *made.preview.panel();
    QCOMPARE(panel.currentPreviewItemIndex(), -1);
    made.table.selectRow(1);
    made.preview.selectionDidChange();
    QCOMPARE(panel.currentPreviewItemIndex(), 0);
}

void TestSelectionPreview::leavesThePanelWhenItIsClosed()
{
    PreviewedTable made;
    made.table.selectRow(1);
    made.press(Qt::Key_Space);
    QCOMPARE(made.preview.panel()->currentPreviewItemIndex(), 0);
    made.preview.close();
    QVERIFY(!made.isShown());
    made.preview.panel()->reloadData(); // nothing fills it
    QCOMPARE(made.preview.panel()->currentPreviewItemIndex(), -1);
}

void TestSelectionPreview::handsKeysAloneToTheTable()
{
    PreviewedTable made;
    made.table.selectRow(0);
    made.press(Qt::Key_Space);
    PreviewPanel &panel = *made.preview.panel();
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QVERIFY(made.preview.handleEvent(panel, down));
    QCOMPARE(made.table.selectedRows(), QList<int>{1});
    QKeyEvent released(QEvent::KeyRelease, Qt::Key_Down, Qt::NoModifier);
    QVERIFY(!made.preview.handleEvent(panel, released));
}

void TestSelectionPreview::bearsToBeClosedBeforeItWasOpened()
{
    PreviewedTable made;
    made.preview.close();
    made.preview.selectionDidChange();
    QVERIFY(!made.preview.panel());
}

VANTOR_GUI_TEST_MAIN(TestSelectionPreview)
#include "tst_SelectionPreview.moc"
