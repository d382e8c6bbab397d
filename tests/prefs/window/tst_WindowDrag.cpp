#include "prefs/window/WindowDrag.h"
#include "tests/support/run/GuiTestMain.h"

/// The test's window system leaves moving and resizing to the window itself.
class TestWindowDrag final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsThePointer_data();
    void followsThePointer();
    void doesNothingForAClick();
    void doesNothingWithoutAPress();
    void staysWithinTheWindowsLimits();
};

void TestWindowDrag::followsThePointer_data()
{
    QTest::addColumn<Qt::Edges>("edges");
    QTest::addColumn<QRect>("geometry");
    QTest::addRow("background") << Qt::Edges() << QRect(130, 120, 400, 300);
    QTest::addRow("right") << Qt::Edges(Qt::RightEdge) << QRect(100, 100, 430, 300);
    QTest::addRow("bottom") << Qt::Edges(Qt::BottomEdge) << QRect(100, 100, 400, 320);
    QTest::addRow("left") << Qt::Edges(Qt::LeftEdge) << QRect(130, 100, 370, 300);
    QTest::addRow("top") << Qt::Edges(Qt::TopEdge) << QRect(100, 120, 400, 280);
    QTest::addRow("upper left") << (Qt::LeftEdge | Qt::TopEdge) << QRect(130, 120, 370, 280);
    QTest::addRow("lower right") << (Qt::RightEdge | Qt::BottomEdge) << QRect(100, 100, 430, 320);
}

void TestWindowDrag::followsThePointer()
{
    QFETCH(Qt::Edges, edges);
    QWidget window;
    window.setGeometry(100, 100, 400, 300);
    WindowDrag drag(window);
    drag.press({500, 200}, edges);
    drag.follow({515, 210});
    drag.follow({530, 220});
    QTEST(window.geometry(), "geometry");
    drag.release();
    drag.follow({600, 300});
    QTEST(window.geometry(), "geometry");
}

void TestWindowDrag::doesNothingForAClick()
{
    QWidget window;
    window.setGeometry(100, 100, 400, 300);
    WindowDrag drag(window);
    drag.press({200, 200}, {});
    drag.follow({201, 201});
    QCOMPARE(window.pos(), QPoint(100, 100));
}

void TestWindowDrag::doesNothingWithoutAPress()
{
    QWidget window;
    window.setGeometry(100, 100, 400, 300);
    WindowDrag drag(window);
    drag.follow({600, 600});
    QCOMPARE(window.pos(), QPoint(100, 100));
}

void TestWindowDrag::staysWithinTheWindowsLimits()
{
    QWidget window;
    window.setGeometry(100, 100, 400, 300);
    window.setMinimumSize(350, 250);
    window.setMaximumSize(450, 350);
    WindowDrag drag(window);
    drag.press({100, 100}, Qt::LeftEdge | Qt::TopEdge);
    drag.follow({400, 400});
    QCOMPARE(window.geometry(), QRect(150, 150, 350, 250));
    drag.follow({-400, -400});
    QCOMPARE(window.geometry(), QRect(50, 50, 450, 350));
}

VANTOR_GUI_TEST_MAIN(TestWindowDrag)
#include "tst_WindowDrag.moc"
