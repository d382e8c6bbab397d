#include "tests/support/run/GuiTestMain.h"
#include "widgets/LegendView.h"

namespace {

QImage grabbed(LegendView &view)
{
    view.setPalette(QPalette(Qt::white));
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// First and last column with a coloured pixel, and with a pixel that is only grey.
struct Columns
{
    int firstColored = -1;
    int firstGray = -1;
    int last = -1;
};

Columns columnsOf(const QImage &picture)
{
    Columns columns;
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            const QColor dot = picture.pixelColor(x, y);
            if (dot.lightness() > 200)
                continue;
            int &first = dot.saturation() > 90 ? columns.firstColored : columns.firstGray;
            if (first < 0)
                first = x;
            columns.last = x;
        }
    }
    return columns;
}

} // namespace

class TestLegendView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsAColoredAndAGrayMark();
    void standsInTheMiddle();
    void fitsIntoItsHint();
    void readsItsMeaningOut();
};

void TestLegendView::showsAColoredAndAGrayMark()
{
    LegendView view;
    view.resize(view.sizeHint());
    const Columns columns = columnsOf(grabbed(view));
    QVERIFY(columns.firstColored >= 0);
    QVERIFY(columns.firstColored < columns.firstGray);
}

void TestLegendView::standsInTheMiddle()
{
    LegendView view;
    view.resize(600, 40);
    const QImage picture = grabbed(view);
    const Columns columns = columnsOf(picture);
    const double middle = (columns.firstColored + columns.last) / 2.0;
    QVERIFY2(qAbs(middle - picture.width() / 2.0) <= 3, qPrintable(QString::number(middle)));
}

void TestLegendView::fitsIntoItsHint()
{
    LegendView view;
    view.resize(view.sizeHint());
    const Columns tight = columnsOf(grabbed(view));
    view.resize(600, 40);
    const Columns wide = columnsOf(grabbed(view));
    QVERIFY(qAbs((tight.last - tight.firstColored) - (wide.last - wide.firstColored)) <= 1);
    QVERIFY(view.sizeHint().height() >= 16);
}

void TestLegendView::readsItsMeaningOut()
{
    const LegendView view;
    QCOMPARE(view.accessibleName(),
             QStringLiteral("Coloured slices: Selected, will be cleaned. Grey slices: Not "
                            "selected."));
}

VANTOR_GUI_TEST_MAIN(TestLegendView)
#include "tst_LegendView.moc"
