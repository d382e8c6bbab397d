#include "prefs/popover/PopoverGeometry.h"
#include "tests/support/run/GuiTestMain.h"

class TestPopoverGeometry final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void widensTheTextAndAddsMargins_data();
    void widensTheTextAndAddsMargins();
    void takesThePreferredEdgeWhereThereIsRoom_data();
    void takesThePreferredEdgeWhereThereIsRoom();
    void turnsToAnEdgeWithRoom_data();
    void turnsToAnEdgeWithRoom();
    void staysInsideTheBounds_data();
    void staysInsideTheBounds();
    void pointsAtTheAnchorsMiddle();
    void keepsTheArrowOffTheCorners();
    void joinsBodyAndArrow();
};

void TestPopoverGeometry::widensTheTextAndAddsMargins_data()
{
    QTest::addColumn<QSizeF>("text");
    QTest::addColumn<double>("width");
    QTest::addRow("nothing") << QSizeF(0, 0) << 0.0;
    QTest::addRow("one word") << QSizeF(10, 16) << 10 * (1 + 25.0 / 12);
    QTest::addRow("a line") << QSizeF(100, 16) << 100 * (1 + 25.0 / 102);
    QTest::addRow("full lines") << QSizeF(200, 64) << 200 * (1 + 25.0 / 202);
}

void TestPopoverGeometry::widensTheTextAndAddsMargins()
{
    QFETCH(QSizeF, text);
    QFETCH(double, width);
    const PopoverGeometry geometry = PopoverGeometry::forText(text);
    QCOMPARE(geometry.textFrame, QRectF(15, 15, width, text.height()));
    QCOMPARE(geometry.contentSize, QSizeF(width + 30, text.height() + 30));
    const double roughly = text.width() == 10    ? 30.8
                           : text.width() == 100 ? 124.5
                           : text.width() == 200 ? 224.75
                                                 : 0;
    QVERIFY(std::abs(geometry.textFrame.width() - roughly) < 0.05);
}

void TestPopoverGeometry::takesThePreferredEdgeWhereThereIsRoom_data()
{
    QTest::addColumn<Qt::Edge>("edge");
    QTest::addColumn<QRectF>("body");
    QTest::addColumn<QPointF>("tip");
    QTest::addRow("below") << Qt::BottomEdge << QRectF(250, 329, 100, 60) << QPointF(300, 320);
    QTest::addRow("above") << Qt::TopEdge << QRectF(250, 211, 100, 60) << QPointF(300, 280);
    QTest::addRow("left") << Qt::LeftEdge << QRectF(171, 270, 100, 60) << QPointF(280, 300);
    QTest::addRow("right") << Qt::RightEdge << QRectF(329, 270, 100, 60) << QPointF(320, 300);
}

void TestPopoverGeometry::takesThePreferredEdgeWhereThereIsRoom()
{
    QFETCH(Qt::Edge, edge);
    const auto placement = PopoverPlacement::make(QRectF(280, 280, 40, 40), QSize(100, 60),
                                                  QRectF(0, 0, 600, 600), edge);
    QCOMPARE(placement.edge, edge);
    QTEST(placement.body, "body");
    QTEST(placement.tip, "tip");
}

void TestPopoverGeometry::turnsToAnEdgeWithRoom_data()
{
    QTest::addColumn<QRectF>("anchor");
    QTest::addColumn<Qt::Edge>("preferred");
    QTest::addColumn<Qt::Edge>("edge");
    QTest::addRow("bottom is full") << QRectF(90, 180, 20, 20) << Qt::BottomEdge << Qt::TopEdge;
    QTest::addRow("top is full") << QRectF(90, 0, 20, 20) << Qt::TopEdge << Qt::BottomEdge;
    QTest::addRow("left is full") << QRectF(0, 90, 20, 20) << Qt::LeftEdge << Qt::RightEdge;
    QTest::addRow("right is full") << QRectF(180, 90, 20, 20) << Qt::RightEdge << Qt::LeftEdge;
    QTest::addRow("neither below nor above")
        << QRectF(0, 50, 20, 100) << Qt::BottomEdge << Qt::RightEdge;
    QTest::addRow("only left of it") << QRectF(150, 50, 40, 100) << Qt::BottomEdge << Qt::LeftEdge;
    QTest::addRow("nowhere, most to the right")
        << QRectF(40, 0, 60, 200) << Qt::BottomEdge << Qt::RightEdge;
}

void TestPopoverGeometry::turnsToAnEdgeWithRoom()
{
    QFETCH(QRectF, anchor);
    QFETCH(Qt::Edge, preferred);
    const auto placement =
        PopoverPlacement::make(anchor, QSize(120, 60), QRectF(0, 0, 200, 200), preferred);
    QTEST(placement.edge, "edge");
}

void TestPopoverGeometry::staysInsideTheBounds_data()
{
    QTest::addColumn<QPointF>("anchor");
    for (int x : {0, 5, 150, 290, 300})
        for (int y : {0, 5, 150, 290, 300})
            QTest::addRow("%d,%d", x, y) << QPointF(x, y);
}

void TestPopoverGeometry::staysInsideTheBounds()
{
    QFETCH(QPointF, anchor);
    const QRectF bounds(0, 0, 300, 300);
    for (const Qt::Edge edge : {Qt::TopEdge, Qt::BottomEdge, Qt::LeftEdge, Qt::RightEdge}) {
        const auto placement =
            PopoverPlacement::make(QRectF(anchor, QSizeF(1, 1)), QSize(120, 60), bounds, edge);
        QVERIFY(bounds.contains(placement.body));
    }
}

void TestPopoverGeometry::pointsAtTheAnchorsMiddle()
{
    // Near the left border the body moves, the tip stays.
    const auto placement = PopoverPlacement::make(QRectF(20, 20, 20, 20), QSize(200, 60),
                                                  QRectF(0, 0, 600, 600), Qt::BottomEdge);
    QCOMPARE(placement.body.left(), 0.0);
    QCOMPARE(placement.tip, QPointF(30, 40));
}

void TestPopoverGeometry::keepsTheArrowOffTheCorners()
{
    const auto placement = PopoverPlacement::make(QRectF(0, 20, 4, 4), QSize(200, 60),
                                                  QRectF(0, 0, 600, 600), Qt::BottomEdge);
    QVERIFY(placement.tip.x() >= placement.body.left() + 5);
    QVERIFY(placement.outline().contains(placement.body.center()));
}

void TestPopoverGeometry::joinsBodyAndArrow()
{
    const auto placement = PopoverPlacement::make(QRectF(280, 280, 40, 40), QSize(100, 60),
                                                  QRectF(0, 0, 600, 600), Qt::BottomEdge);
    const QPainterPath outline = placement.outline();
    QCOMPARE(outline.boundingRect().toAlignedRect(), QRect(250, 320, 100, 69));
    QVERIFY(outline.contains(QPointF(300, 325)));
    QVERIFY(outline.contains(QPointF(300, 330)));
    QVERIFY(!outline.contains(QPointF(260, 325)));
    QVERIFY(!outline.contains(QPointF(250.5, 329.5))); // the corner is round
}

VANTOR_GUI_TEST_MAIN(TestPopoverGeometry)
#include "tst_PopoverGeometry.moc"
