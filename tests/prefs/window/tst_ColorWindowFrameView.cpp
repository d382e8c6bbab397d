#include "prefs/window/ColorWindowFrameView.h"
#include "tests/support/run/GuiTestMain.h"

class TestColorWindowFrameView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNearlyOpaqueWhite();
    void isOpaqueWhereWindowsAreNotBlended();
    void hasRoundCornersUntilItFillsTheScreen_data();
    void hasRoundCornersUntilItFillsTheScreen();
    void clearsWhatLayBeneath();
    void showsItsEdge();
};

namespace {

QImage pictureOf(ColorWindowFrameView &view, double scale = 1, const QColor &beneath = {})
{
    view.resize(100, 60);
    QImage image(view.size() * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(beneath.isValid() ? beneath : QColor(Qt::transparent));
    view.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

} // namespace

void TestColorWindowFrameView::isNearlyOpaqueWhite()
{
    ColorWindowFrameView view;
    const QColor middle = pictureOf(view).pixelColor(50, 30);
    QCOMPARE(middle.rgb(), QColor(Qt::white).rgb());
    QCOMPARE(middle.alpha(), qRound(0.95 * 255));
}

void TestColorWindowFrameView::isOpaqueWhereWindowsAreNotBlended()
{
    ColorWindowFrameView view;
    view.setIsBlended(false);
    const QImage image = pictureOf(view);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixelColor(x, y).alpha(), 255);
    QCOMPARE(image.pixelColor(50, 30), QColor(Qt::white));
}

void TestColorWindowFrameView::hasRoundCornersUntilItFillsTheScreen_data()
{
    QTest::addColumn<double>("scale");
    QTest::addRow("1x") << 1.0;
    QTest::addRow("2x") << 2.0;
}

void TestColorWindowFrameView::hasRoundCornersUntilItFillsTheScreen()
{
    QFETCH(double, scale);
    ColorWindowFrameView view;
    QImage image = pictureOf(view, scale);
    const int right = image.width() - 1;
    const int bottom = image.height() - 1;
    const QList<QPoint> corners{{0, 0}, {right, 0}, {0, bottom}, {right, bottom}};
    for (const QPoint &corner : corners)
        QVERIFY(image.pixelColor(corner).alpha() < 40);
    QVERIFY(image.pixelColor(qRound(5 * scale), 0).alpha() > 230); // the radius is 5
    view.setCorners(FrameCorners::Square);
    image = pictureOf(view, scale);
    for (const QPoint &corner : corners)
        QCOMPARE(image.pixelColor(corner).alpha(), qRound(0.95 * 255));
}

void TestColorWindowFrameView::clearsWhatLayBeneath()
{
    ColorWindowFrameView view;
    const QImage image = pictureOf(view, 1, Qt::red);
    QVERIFY(image.pixelColor(0, 0).alpha() < 40);
    QCOMPARE(image.pixelColor(50, 30).alpha(), qRound(0.95 * 255));
}

void TestColorWindowFrameView::showsItsEdge()
{
    ColorWindowFrameView view;
    const QImage image = pictureOf(view);
    QVERIFY(image.pixelColor(50, 0).lightness() < image.pixelColor(50, 1).lightness());
    QVERIFY(image.pixelColor(50, 0).lightness() > 200);
}

VANTOR_GUI_TEST_MAIN(TestColorWindowFrameView)
#include "tst_ColorWindowFrameView.moc"
