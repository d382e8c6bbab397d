#include "tests/support/run/GuiTestMain.h"
#include "widgets/ColorView.h"

class TestColorView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNearlyOpaqueWhiteWithoutColor();
    void paintsItsColor();
    void repaintsAtOnceWhenTheColorIsSet();
    void takesItsColorFromAnInterfaceDescription();
};

namespace {

QColor middleOver(ColorView &view, const QColor &ground)
{
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(ground);
    view.render(&image, {}, {}, QWidget::RenderFlags());
    return image.pixelColor(image.rect().center());
}

/// Counts how often the view is painted.
class PaintCounter final : public QObject
{
public:
    explicit PaintCounter(QWidget &view) { view.installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

void TestColorView::isNearlyOpaqueWhiteWithoutColor()
{
    ColorView view(QRect(0, 0, 20, 20));
    QVERIFY(!view.color().isValid());
    // 95 of 100 parts white over black.
    QCOMPARE(middleOver(view, Qt::black).red(), 242);
    QCOMPARE(middleOver(view, Qt::white), QColor(Qt::white));
}

void TestColorView::paintsItsColor()
{
    ColorView view(QRect(0, 0, 20, 20));
    view.setColor(QColor(74, 174, 51));
    QCOMPARE(middleOver(view, Qt::black), QColor(74, 174, 51));
    view.setColor(QColor());
    QCOMPARE(middleOver(view, Qt::black).red(), 242);
}

void TestColorView::repaintsAtOnceWhenTheColorIsSet()
{
    ColorView view(QRect(0, 0, 20, 20));
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCoreApplication::processEvents();
    const PaintCounter paints(view);
    view.setColor(Qt::red);
    QTRY_COMPARE(paints.count, 1);
}

void TestColorView::takesItsColorFromAnInterfaceDescription()
{
    ColorView view;
    QVERIFY(view.setProperty("color", QColor(Qt::blue)));
    QCOMPARE(view.color(), QColor(Qt::blue));
}

VANTOR_GUI_TEST_MAIN(TestColorView)
#include "tst_ColorView.moc"
