#include "largefiles/preview/PreviewCard.h"
#include "tests/largefiles/sheet/OpenedSheet.h"
#include "tests/support/run/GuiTestMain.h"

#include <QLabel>

namespace {

/// The sheet with its list in order of size: "summer.mkv", "disk.iso", "log.txt".
struct PreviewingSheet final : OpenedSheet
{
    PreviewPanel &panel() const { return *controller.previewPanel(); }
    bool isPreviewing() const { return controller.previewPanel() && panel().isVisible(); }
    QString previewed() const { return panel().findChild<PreviewCard *>()->title(); }
    QuickLookTableView &table() { return *controller.tableView(); }
    void selectRows(const QList<int> &rows)
    {
        table().clearSelection();
        for (const int row : rows)
            table().selectionModel()->select(table().model()->index(row, 0),
                                             QItemSelectionModel::Select);
    }
    /// The picture beside the list, once it was read.
    QImage pictureOfRow(int row)
    {
        QSignalSpy shown(&controller, &LargeFilesWindowController::thumbnailShown);
        table().selectRow(row);
        if (!shown.wait())
            qFatal("no picture");
        return controller.imageView()->pixmap().toImage();
    }
};

} // namespace

/// What the sheet shows of the selected files.
class LargeFilesPreviewTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSpaceBarShowsTheSelectedFileAndHidesIt()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(1);
        for (int round = 0; round < 2; ++round) {
            sheet.press(Qt::Key_Space);
            QVERIFY(sheet.isPreviewing());
            QCOMPARE(sheet.previewed(), QStringLiteral("disk.iso"));
            sheet.press(Qt::Key_Space);
            QVERIFY(!sheet.isPreviewing());
            QVERIFY(sheet.table().hasFocus());
        }
    }

    void theSpaceBarHidesItWithTheFocusInTheList()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(0);
        sheet.press(Qt::Key_Space);
        QVERIFY(sheet.isPreviewing());
        sheet.table().setFocus();
        sheet.press(Qt::Key_Space);
        QVERIFY(!sheet.isPreviewing());
    }

    void thePreviewFollowsTheArrowKeys()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(0);
        sheet.press(Qt::Key_Space);
        QCOMPARE(sheet.previewed(), QStringLiteral("summer.mkv"));
        sheet.press(Qt::Key_Down);
        QCOMPARE(sheet.table().selectedRows(), QList<int>{1});
        QCOMPARE(sheet.previewed(), QStringLiteral("disk.iso"));
        sheet.press(Qt::Key_Up);
        QCOMPARE(sheet.previewed(), QStringLiteral("summer.mkv"));
    }

    void severalSelectedFilesArePagedThrough()
    {
        PreviewingSheet sheet;
        sheet.selectRows({0, 2});
        sheet.press(Qt::Key_Space);
        QCOMPARE(sheet.previewed(), QStringLiteral("summer.mkv   1 of 2"));
        sheet.press(Qt::Key_Right);
        QCOMPARE(sheet.previewed(), QStringLiteral("log.txt   2 of 2"));
        sheet.press(Qt::Key_Left);
        QCOMPARE(sheet.previewed(), QStringLiteral("summer.mkv   1 of 2"));
    }

    void thePreviewIsEmptyWithoutASelection()
    {
        PreviewingSheet sheet;
        sheet.press(Qt::Key_Space);
        QVERIFY(sheet.isPreviewing());
        QCOMPARE(sheet.previewed(), QStringLiteral("Nothing is selected"));
    }

    void thePreviewGoesWithTheSheet()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(0);
        sheet.press(Qt::Key_Space);
        QVERIFY(sheet.isPreviewing());
        sheet.controller.cancel();
        QVERIFY(!sheet.isPreviewing());
    }

    void ofSeveralRowsTheLastOneReachedIsPictured()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(0);
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down})
            QTest::keyClick(&sheet.table(), key, Qt::ShiftModifier);
        QTest::keyClick(&sheet.table(), Qt::Key_Shift); // otherwise it would count as held for ever
        QCOMPARE(sheet.table().selectedRows(), QList<int>({0, 1, 2}));
        QCOMPARE(sheet.controller.imageView()->accessibleName(),
                 QStringLiteral("Picture of log.txt"));
    }

    void theFoldersNameStandsBelowThePicture()
    {
        PreviewingSheet sheet;
        sheet.table().selectRow(0);
        const auto &place = *sheet.host.window.findChild<QLabel *>(QStringLiteral("placeLabel"));
        QCOMPARE(place.text(), QStringLiteral("In Movies"));
        sheet.table().clearSelection();
        QCOMPARE(place.text(), QString());
    }

    void aPictureIsDrawnAsAPrintWithRoundCorners()
    {
        PreviewingSheet sheet;
        QImage red(300, 300, QImage::Format_RGB32);
        red.fill(Qt::red);
        const QByteArray path = sheet.folder.path("Movies/red.png");
        QVERIFY(red.save(QFile::decodeName(path)));
        sheet.controller.array().insert(File(FileUrl::fromPath(path, FileUrlKind::File)));
        const QImage picture = sheet.pictureOfRow(3);
        QCOMPARE(picture.pixelColor(picture.rect().center()), QColor(Qt::red));
        for (const QPoint corner : {picture.rect().topLeft(), picture.rect().bottomRight()})
            QVERIFY(picture.pixelColor(corner).alpha() < 64);
    }
};

VANTOR_GUI_TEST_MAIN(LargeFilesPreviewTest)
#include "tst_LargeFilesPreview.moc"
