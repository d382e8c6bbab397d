#include "platform/look/Images.h"
#include "platform/look/ViewAlpha.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/BackgroundView.h"

class TestBackgroundView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsItsBackgroundColor();
    void keepsItsCenter();
    void hasNoShadowViewBeforeItIsAskedFor();
    void putsTheShadowBelowItselfInItsParent();
    void centresTheShadowInTheParentThirtyPointsDown();
    void keepsTheShadowInPlaceWhenItMoves();
    void fadesTheShadowInAndOut();
    void endsWithTheLastRequestOfTwo();
    void showsNoShadowWithoutParent();
    void takesTheShadowAlongToAParent();
    void outlivesItsShadow();

private:
    static QWidget *shadowIn(const QWidget &parent);
};

QWidget *TestBackgroundView::shadowIn(const QWidget &parent)
{
    for (QObject *child : parent.children()) {
        if (child->isWidgetType() && !qobject_cast<BackgroundView *>(child))
            return static_cast<QWidget *>(child);
    }
    return nullptr;
}

void TestBackgroundView::paintsItsBackgroundColor()
{
    BackgroundView view(QRect(0, 0, 30, 30));
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    view.render(&image, {}, {}, QWidget::RenderFlags());
    QCOMPARE(image.pixelColor(15, 15), QColor(Qt::white));

    view.setBackgroundColor(QColor(10, 20, 30));
    QCOMPARE(view.backgroundColor(), QColor(10, 20, 30));
    view.render(&image, {}, {}, QWidget::RenderFlags());
    QCOMPARE(image.pixelColor(15, 15), QColor(10, 20, 30));
}

void TestBackgroundView::keepsItsCenter()
{
    BackgroundView view(QRect(0, 0, 30, 30));
    QCOMPARE(view.center(), QPointF());
    view.setCenter({12.5, 7});
    QCOMPARE(view.center(), QPointF(12.5, 7));
}

void TestBackgroundView::hasNoShadowViewBeforeItIsAskedFor()
{
    QWidget parent;
    const BackgroundView view(&parent);
    QVERIFY(!view.drawShadow());
    QVERIFY(!shadowIn(parent));
}

void TestBackgroundView::putsTheShadowBelowItselfInItsParent()
{
    QWidget parent;
    BackgroundView view(&parent);
    const QWidget *shadow = view.shadowView();
    QCOMPARE(shadow, shadowIn(parent));
    QCOMPARE(shadow, view.shadowView());
    QCOMPARE(alphaValue(*shadow), 0.0);
    QVERIFY(parent.children().indexOf(shadow) < parent.children().indexOf(&view));
}

void TestBackgroundView::centresTheShadowInTheParentThirtyPointsDown()
{
    QWidget parent;
    parent.resize(400, 300);
    BackgroundView view(QRect(50, 20, 200, 200), &parent);
    const QSize size = imageSize(QStringLiteral("shadow"));
    QVERIFY(!size.isEmpty());
    const QRect frame = view.shadowView()->geometry();
    QCOMPARE(frame.size(), size);
    QCOMPARE(frame.left(), 200 - size.width() / 2);
    QCOMPARE(frame.top() + frame.height(), 20 + 200 + 30);
}

void TestBackgroundView::keepsTheShadowInPlaceWhenItMoves()
{
    QWidget parent;
    parent.resize(400, 300);
    parent.show();
    BackgroundView view(QRect(50, 20, 200, 200), &parent);
    view.show();
    const QWidget *shadow = view.shadowView();
    view.setGeometry(0, 0, 300, 100);
    QCOMPARE(shadow->y() + shadow->height(), 130);
}

void TestBackgroundView::fadesTheShadowInAndOut()
{
    QWidget parent;
    BackgroundView view(&parent);
    view.setDrawShadow(true);
    QVERIFY(view.drawShadow());
    QVERIFY(alphaValue(*view.shadowView()) < 0.5); // not at once
    QVERIFY(isFading(*view.shadowView(), 1, std::chrono::seconds(1)));
    QTRY_COMPARE(alphaValue(*view.shadowView()), 1.0);
    view.setDrawShadow(false);
    QVERIFY(alphaValue(*view.shadowView()) > 0.5);
    QVERIFY(isFading(*view.shadowView(), 0, std::chrono::seconds(1)));
    QTRY_COMPARE(alphaValue(*view.shadowView()), 0.0);
}

void TestBackgroundView::endsWithTheLastRequestOfTwo()
{
    QWidget parent;
    BackgroundView view(&parent);
    view.setDrawShadow(true);
    QTRY_VERIFY(alphaValue(*view.shadowView()) > 0.1);
    view.setDrawShadow(false);
    QVERIFY(!view.drawShadow());
    QTRY_COMPARE(alphaValue(*view.shadowView()), 0.0);
    view.setDrawShadow(false);
    view.setDrawShadow(true);
    QTRY_COMPARE(alphaValue(*view.shadowView()), 1.0);
}

void TestBackgroundView::showsNoShadowWithoutParent()
{
    BackgroundView view(QRect(0, 0, 200, 200));
    view.show();
    view.setDrawShadow(true);
    const QWidget *shadow = view.shadowView();
    QCOMPARE(shadow->x(), -shadow->width() / 2);
    QVERIFY(!shadow->isVisible());
    QVERIFY(!shadow->isWindow());
}

void TestBackgroundView::takesTheShadowAlongToAParent()
{
    auto view = std::make_unique<BackgroundView>(QRect(0, 0, 200, 200));
    const QPointer<QWidget> shadow = view->shadowView();
    QWidget parent;
    parent.resize(500, 500);
    view->setParent(&parent);
    QCOMPARE(shadow->parentWidget(), &parent);
    QCOMPARE(shadow->x(), 250 - shadow->width() / 2);
    view.reset();
    QVERIFY(shadow); // the parent owns it now
}

void TestBackgroundView::outlivesItsShadow()
{
    QWidget parent;
    BackgroundView view(&parent);
    delete view.shadowView();
    view.setDrawShadow(true);
    QVERIFY(shadowIn(parent));
    QTRY_COMPARE(alphaValue(*view.shadowView()), 1.0);
}

VANTOR_GUI_TEST_MAIN(TestBackgroundView)
#include "tst_BackgroundView.moc"
