#include "tests/support/run/GuiTestMain.h"
#include "widgets/ThinScrollBar.h"

#include <QTimer>

class TestThinScrollBar final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isSlim();
    void paintsItsHandleOnly();
    void paintsNothingWhenThereIsNothingToScroll();
    void darkensWhileItIsHeld();
    void hasNoMenu();
};

namespace {

/// The area in which something was painted on white.
QRect paintedPart(ThinScrollBar &bar)
{
    bar.resize(12, 200);
    QImage image(bar.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    bar.render(&image, {}, {}, QWidget::DrawChildren);
    QRegion painted;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != QColor(Qt::white))
                painted += QRect(x, y, 1, 1);
    return painted.boundingRect();
}

} // namespace

void TestThinScrollBar::isSlim()
{
    QCOMPARE(ThinScrollBar(Qt::Vertical).sizeHint().width(), 12);
    QCOMPARE(ThinScrollBar(Qt::Horizontal).sizeHint().height(), 12);
}

void TestThinScrollBar::paintsItsHandleOnly()
{
    ThinScrollBar bar(Qt::Vertical);
    bar.setRange(0, 100);
    bar.setPageStep(100);
    const QRect atTop = paintedPart(bar);
    QCOMPARE(atTop.left(), 3);
    QCOMPARE(atTop.width(), 6);
    QVERIFY(atTop.height() > 60 && atTop.height() < 110);
    bar.setValue(100);
    const QRect atBottom = paintedPart(bar);
    QCOMPARE(atBottom.height(), atTop.height());
    QVERIFY(atBottom.top() > atTop.top() + 60);
}

void TestThinScrollBar::paintsNothingWhenThereIsNothingToScroll()
{
    ThinScrollBar bar(Qt::Vertical);
    bar.setRange(0, 0);
    QVERIFY(paintedPart(bar).isEmpty());
}

void TestThinScrollBar::darkensWhileItIsHeld()
{
    ThinScrollBar bar(Qt::Vertical);
    bar.setRange(0, 100);
    bar.setPageStep(100);
    bar.resize(12, 200);
    const QPoint onHandle = paintedPart(bar).center();
    const QColor before = bar.grab().toImage().pixelColor(onHandle);
    bar.setSliderDown(true);
    QVERIFY(bar.grab().toImage().pixelColor(onHandle).lightness() < before.lightness());
}

/// The toolkit's own menu of a scroll bar holds up whoever opens it until it is closed.
void TestThinScrollBar::hasNoMenu()
{
    ThinScrollBar bar(Qt::Vertical);
    bar.setRange(0, 100);
    bar.show();
    bool hadMenu = false;
    QTimer::singleShot(0, &bar, [&hadMenu] {
        hadMenu = QApplication::activePopupWidget() != nullptr;
        if (hadMenu)
            QApplication::activePopupWidget()->close();
    });
    QTest::mousePress(bar.windowHandle(), Qt::RightButton, {}, {6, 6});
    QTest::mouseRelease(bar.windowHandle(), Qt::RightButton, {}, {6, 6});
    QVERIFY(!hadMenu);
}

VANTOR_GUI_TEST_MAIN(TestThinScrollBar)
#include "tst_ThinScrollBar.moc"
