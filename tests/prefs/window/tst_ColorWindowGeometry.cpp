#include "prefs/window/ColorWindowGeometry.h"
#include "tests/support/run/TestMain.h"

class TestColorWindowGeometry final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesThePartsOfAFrame_data();
    void placesThePartsOfAFrame();
    void placesTheMinimiseButtonFromAnAbsentCloseButton();
    void turnsRectanglesUpsideDown();
};

void TestColorWindowGeometry::placesThePartsOfAFrame_data()
{
    QTest::addColumn<QSizeF>("frame");
    QTest::addColumn<QRectF>("content");
    QTest::addColumn<QRectF>("close");
    QTest::addColumn<QRectF>("minimize");
    QTest::addColumn<QRectF>("title");
    QTest::addRow("600 x 400") << QSizeF(600, 400) << QRectF(5, 5, 590, 375)
                               << QRectF(9, 381, 14, 14) << QRectF(29, 381, 12, 14)
                               << QRectF(50, 373, 500, 22);
    QTest::addRow("700 x 560") << QSizeF(700, 560) << QRectF(5, 5, 690, 535)
                               << QRectF(9, 541, 14, 14) << QRectF(29, 541, 12, 14)
                               << QRectF(50, 533, 600, 22);
}

void TestColorWindowGeometry::placesThePartsOfAFrame()
{
    QFETCH(QSizeF, frame);
    const auto geometry = ColorWindowGeometry::make(frame, {14, 14}, {12, 14});
    QTEST(geometry.content, "content");
    QTEST(geometry.closeButton, "close");
    QTEST(geometry.minimizeButton, "minimize");
    QTEST(geometry.titleField, "title");
}

void TestColorWindowGeometry::placesTheMinimiseButtonFromAnAbsentCloseButton()
{
    const auto geometry = ColorWindowGeometry::make({600, 400}, {0, 0}, {12, 14});
    QCOMPARE(geometry.minimizeButton, QRectF(15, 395, 12, 14));
}

void TestColorWindowGeometry::turnsRectanglesUpsideDown()
{
    QCOMPARE(flipped({5, 5, 590, 375}, 400), QRect(5, 20, 590, 375));
    QCOMPARE(flipped({50, 373, 500, 22}, 400), QRect(50, 5, 500, 22));
    QCOMPARE(flipped({9, 381, 14, 14}, 400), QRect(9, 5, 14, 14));
}

VANTOR_TEST_MAIN(TestColorWindowGeometry)
#include "tst_ColorWindowGeometry.moc"
