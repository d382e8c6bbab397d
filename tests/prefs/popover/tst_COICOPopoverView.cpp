#include "prefs/popover/COICOPopoverView.h"
#include "tests/support/run/GuiTestMain.h"

class TestCOICOPopoverView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isFlatWithoutAColour();
    void fadesFromItsColourAboveToTheControlBackgroundBelow_data();
    void fadesFromItsColourAboveToTheControlBackgroundBelow();
    void hasRoundCorners();
    void repaintsInANewColour();
};

namespace {

constexpr QSize kSize(80, 60);

/// The view on nothing.
QImage pictureOf(COICOPopoverView &view, double scale = 1)
{
    view.resize(kSize);
    QImage image(kSize * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

bool isNear(const QColor &a, const QColor &b, int tolerance)
{
    return std::abs(a.red() - b.red()) <= tolerance &&
           std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

} // namespace

void TestCOICOPopoverView::isFlatWithoutAColour()
{
    COICOPopoverView view;
    const QImage image = pictureOf(view);
    const QColor background = view.palette().color(QPalette::Base);
    QCOMPARE(view.backgroundColour(), background);
    for (int y = 0; y < kSize.height(); ++y)
        QCOMPARE(image.pixelColor(40, y), background);
}

void TestCOICOPopoverView::fadesFromItsColourAboveToTheControlBackgroundBelow_data()
{
    QTest::addColumn<double>("scale");
    QTest::addRow("1x") << 1.0;
    QTest::addRow("2x") << 2.0;
}

void TestCOICOPopoverView::fadesFromItsColourAboveToTheControlBackgroundBelow()
{
    QFETCH(double, scale);
    const QColor green(93, 183, 26);
    COICOPopoverView view;
    view.setBackgroundColour(green);
    const QImage image = pictureOf(view, scale);
    const int x = image.width() / 2;
    QVERIFY(isNear(image.pixelColor(x, 0), green, 4));
    QVERIFY(isNear(image.pixelColor(x, image.height() - 1), Qt::white, 4));
    QVERIFY(isNear(image.pixelColor(x, image.height() / 2), QColor(174, 219, 141), 4));
    for (int y = 1; y < image.height(); ++y)
        QVERIFY(image.pixelColor(x, y).red() >= image.pixelColor(x, y - 1).red());
}

void TestCOICOPopoverView::hasRoundCorners()
{
    COICOPopoverView view;
    const QImage image = pictureOf(view);
    for (const QPoint corner : {QPoint(0, 0), QPoint(79, 0), QPoint(0, 59), QPoint(79, 59)})
        QVERIFY(image.pixelColor(corner).alpha() < 30);
    QCOMPARE(image.pixelColor(5, 0).alpha(), 255);
    QCOMPARE(image.pixelColor(0, 5).alpha(), 255);
}

void TestCOICOPopoverView::repaintsInANewColour()
{
    COICOPopoverView view;
    pictureOf(view);
    view.setProperty("backgroundColour", QColor(Qt::red));
    QVERIFY(isNear(pictureOf(view).pixelColor(40, 0), Qt::red, 6));
}

VANTOR_GUI_TEST_MAIN(TestCOICOPopoverView)
#include "tst_COICOPopoverView.moc"
