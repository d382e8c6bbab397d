#include "largefiles/search/LargeFileList.h"
#include "largefiles/sheet/FileIconNames.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/QuickLookTableView.h"
#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "tests/support/run/GuiTestMain.h"

#include <QPainter>

namespace {

constexpr QColor kOfAdded(255, 0, 255);
constexpr QColor kOfUnadded(255, 128, 0);

TextRun titleIn(const QColor &colour)
{
    return {{}, interfaceFont(Typeface::Light, 15), colour, Qt::AlignHCenter};
}

/// A table of two files, the second of which is picked.
struct ShownRows
{
    ShownRows() : list(LargeFileList::ReadSizes()), view(new FileTableCellView(icons, &table))
    {
        view->setAddedAttributes(titleIn(kOfAdded));
        view->setUnaddedAttributes(titleIn(kOfUnadded));
        table.setItemDelegate(view);
        table.setModel(&list);
        add("/Movies/" + QByteArray("long name ").repeated(20) + "end.mkv", 300'000'000);
        add("/Movies/disk.iso", 200'000'000);
        list.setAdded({1}, true);
        table.resize(600, 200);
        table.show();
        if (!QTest::qWaitForWindowExposed(&table))
            qFatal("the table does not come up");
    }
    void add(const QByteArray &path, qint64 size)
    {
        File file(FileUrl::fromPath(path, FileUrlKind::File));
        file.setSize(size);
        file.setSizeString(QString::number(size / 1'000'000) + QStringLiteral(" MB"));
        list.insert(file);
    }
    QRect rectOf(int row) const { return table.visualRect(list.index(row)); }
    QImage grabbed(const QRect &rect) { return table.viewport()->grab(rect).toImage(); }
    QImage buttonOf(int row) { return grabbed(FileTableCellView::addButtonRect(rectOf(row))); }
    /// Between the icon and the button.
    QRect nameOf(int row) const
    {
        QRect rect = rectOf(row).adjusted(51, 0, 0, -1);
        rect.setRight(FileTableCellView::addButtonRect(rectOf(row)).left() - 12);
        return rect;
    }

    FileIconNames icons;
    LargeFileList list;
    QuickLookTableView table;
    FileTableCellView *view;
};

/// The pixels that have just the colour, or almost.
int countOf(const QColor &colour, const QImage &image)
{
    constexpr int kNear = 60;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (qAbs(pixel.red() - colour.red()) < kNear &&
                qAbs(pixel.green() - colour.green()) < kNear &&
                qAbs(pixel.blue() - colour.blue()) < kNear)
                ++count;
        }
    }
    return count;
}

} // namespace

class FileTableCellViewTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aButtonHasTheDrawingOfItsState_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("isPressed");
        QTest::addColumn<QString>("drawing");
        QTest::addRow("blue") << 0 << false << QStringLiteral("largeFilesSizeButtonBlue");
        QTest::addRow("blue, held")
            << 0 << true << QStringLiteral("largeFilesSizeButtonBlueMouseDown");
        QTest::addRow("picked") << 1 << false << QStringLiteral("largeFilesSizeButtonGreen");
        QTest::addRow("picked, held")
            << 1 << true << QStringLiteral("largeFilesSizeButtonGreenMouseDown");
    }
    void aButtonHasTheDrawingOfItsState()
    {
        QFETCH(int, row);
        QFETCH(bool, isPressed);
        QFETCH(QString, drawing);
        ShownRows rows;
        const QRect button = FileTableCellView::addButtonRect(rows.rectOf(row));
        if (isPressed)
            QTest::mousePress(rows.table.viewport(), Qt::LeftButton, {}, button.center());
        const QImage wanted = imageNamed(drawing, 1, button.size()).toImage();
        const QImage found = rows.buttonOf(row);
        // On the left of the title, and in the line around it.
        for (const QPoint place : {QPoint(6, 14), QPoint(50, 0)})
            QVERIFY(countOf(wanted.pixelColor(place), found.copy(QRect(place, QSize(1, 1)))) == 1);
        QCOMPARE(FileTableCellView::addButtonImageName(row == 1, isPressed), drawing);
    }

    void aButtonsTitleHasTheStyleOfItsState()
    {
        ShownRows rows;
        QVERIFY(countOf(kOfUnadded, rows.buttonOf(0)) > 10);
        QCOMPARE(countOf(kOfAdded, rows.buttonOf(0)), 0);
        QVERIFY(countOf(kOfAdded, rows.buttonOf(1)) > 10);
        QCOMPARE(countOf(kOfUnadded, rows.buttonOf(1)), 0);
        rows.list.toggle(0);
        QVERIFY(countOf(kOfAdded, rows.buttonOf(0)) > 10);
    }

    void aButtonSaysTheSizeOfItsFile()
    {
        ShownRows rows;
        const QRect button = FileTableCellView::addButtonRect(rows.rectOf(1));
        QPixmap wanted = imageNamed(QStringLiteral("largeFilesSizeButtonGreen"), 1, button.size());
        TextRun title = titleIn(kOfAdded);
        title.text = QStringLiteral("200 MB");
        QPainter painter(&wanted);
        AttributedText{title}.draw(painter, QRectF(10, 0, 80, 28));
        painter.end();
        // Except the corners, behind which the row is.
        const QRect inside(12, 2, 76, 24);
        QCOMPARE(rows.buttonOf(1).copy(inside).convertToFormat(QImage::Format_RGB32),
                 wanted.toImage().copy(inside).convertToFormat(QImage::Format_RGB32));
    }

    void aNameIsLargeAndLosesItsMiddleWhereItIsTooLong()
    {
        ShownRows rows;
        for (const int row : {0, 1}) {
            const QRect name = rows.nameOf(row);
            const QFont font = interfaceFont(Typeface::Light, 15);
            QImage wanted(name.size(), QImage::Format_RGB32);
            wanted.fill(rows.table.palette().color(QPalette::Base));
            QPainter painter(&wanted);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setFont(font);
            painter.setPen(rows.table.palette().color(QPalette::Text));
            painter.drawText(
                wanted.rect().adjusted(0, 0, 0, 1), Qt::AlignVCenter | Qt::TextSingleLine,
                painter.fontMetrics().elidedText(rows.list.index(row).data().toString(),
                                                 Qt::ElideMiddle, wanted.width()));
            painter.end();
            QCOMPARE(rows.grabbed(name).convertToFormat(QImage::Format_RGB32), wanted);
        }
    }
};

VANTOR_GUI_TEST_MAIN(FileTableCellViewTest)
#include "tst_FileTableCellView.moc"
