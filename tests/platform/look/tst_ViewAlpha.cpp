#include "platform/look/ViewAlpha.h"
#include "tests/support/run/GuiTestMain.h"

#include <QPointer>
#include <QProxyStyle>
#include <QVariantAnimation>
#include <memory>

using namespace std::chrono_literals;

namespace {

/// A style of a desktop whose user wants no animations.
class StillStyle final : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override
    {
        return hint == SH_Widget_Animation_Duration
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

/// A black square that holds another one, on a white background.
struct Scene
{
    Scene()
    {
        fill(window, Qt::white);
        fill(outer, Qt::black);
        fill(inner, Qt::white);
        window.resize(60, 60);
        outer.setGeometry(10, 10, 40, 40);
        inner.setGeometry(10, 10, 20, 20);
        window.show();
    }

    static void fill(QWidget &widget, const QColor &color)
    {
        widget.setAutoFillBackground(true);
        widget.setPalette(QPalette(color));
    }

    /// Draws over a colour that nothing else has; it shows wherever the background was not painted.
    QImage picture()
    {
        QImage image(window.size(), QImage::Format_RGB32);
        image.fill(Qt::magenta);
        window.render(&image);
        return image;
    }
    int outerGray() { return qGray(picture().pixel(15, 15)); }
    int innerGray() { return qGray(picture().pixel(30, 30)); }

    QWidget window;
    QWidget outer{&window};
    QWidget inner{&outer};
};

/// White (255) shines through black as much as the opacity allows.
int grayUnder(double opacity)
{
    return qRound(255 * (1 - opacity));
}

/// The running fade of a widget.
QVariantAnimation *fadeOf(const QWidget &widget)
{
    return widget.findChild<QVariantAnimation *>();
}

bool isNear(int gray, int expected)
{
    return qAbs(gray - expected) <= 2;
}

} // namespace

class TestViewAlpha final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isOneUntilTold();
    void showsWhatLiesBelow_data();
    void showsWhatLiesBelow();
    void multipliesWhenNested_data();
    void multipliesWhenNested();
    void leavesNeighboursAlone();
    void drawsNothingAtZero();
    void fadesToTheVeryNumber_data();
    void fadesToTheVeryNumber();
    void endsWhereTheLastFadeWanted();
    void startsFromWhatIsOnScreen();
    void endsAFadeWhenSetAtOnce();
    void fadesAtOnceWithoutADuration();
    void fadesAtOnceWhereAnimationsAreOff();
    void outlivesItsWidget();
};

/// The stock effect warns about painters when effects are nested.
void TestViewAlpha::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("QPainter")));
}

void TestViewAlpha::isOneUntilTold()
{
    const QWidget widget;
    QCOMPARE(alphaValue(widget), 1.0);
}

void TestViewAlpha::showsWhatLiesBelow_data()
{
    QTest::addColumn<double>("alpha");
    for (const double alpha : {0.0, 0.25, 0.5, 0.999, 1.0})
        QTest::addRow("%g", alpha) << alpha;
}

void TestViewAlpha::showsWhatLiesBelow()
{
    QFETCH(double, alpha);
    Scene scene;
    setAlphaValue(scene.outer, alpha);
    QCOMPARE(alphaValue(scene.outer), alpha);
    QVERIFY2(isNear(scene.outerGray(), grayUnder(alpha)),
             qPrintable(QString::number(scene.outerGray())));
    QCOMPARE(qGray(scene.picture().pixel(5, 5)), 255);
}

void TestViewAlpha::multipliesWhenNested_data()
{
    QTest::addColumn<double>("outer");
    QTest::addColumn<double>("inner");
    for (const double outer : {0.0, 0.5, 0.8, 1.0}) {
        for (const double inner : {0.0, 0.5, 0.8, 1.0})
            QTest::addRow("%g in %g", inner, outer) << outer << inner;
    }
}

/// The inner square is black here, and the outer one has no background of its own.
void TestViewAlpha::multipliesWhenNested()
{
    QFETCH(double, outer);
    QFETCH(double, inner);
    Scene scene;
    scene.outer.setAutoFillBackground(false);
    Scene::fill(scene.inner, Qt::black);
    setAlphaValue(scene.outer, outer);
    setAlphaValue(scene.inner, inner);
    const int gray = scene.innerGray();
    QVERIFY2(isNear(gray, grayUnder(outer * inner)), qPrintable(QString::number(gray)));
}

void TestViewAlpha::leavesNeighboursAlone()
{
    Scene scene;
    scene.outer.setAutoFillBackground(false);
    QWidget second(&scene.outer);
    QWidget third(&scene.outer);
    scene.inner.setGeometry(0, 0, 10, 10);
    second.setGeometry(10, 0, 10, 10);
    third.setGeometry(20, 0, 10, 10);
    for (QWidget *square : {&scene.inner, &second, &third}) {
        Scene::fill(*square, Qt::black);
        square->show();
    }
    setAlphaValue(scene.outer, 0.8);
    setAlphaValue(scene.inner, 0.5);
    setAlphaValue(second, 0.5);
    const QImage picture = scene.picture();
    QVERIFY(isNear(qGray(picture.pixel(15, 15)), grayUnder(0.4)));
    QVERIFY(isNear(qGray(picture.pixel(25, 15)), grayUnder(0.4)));
    QVERIFY(isNear(qGray(picture.pixel(35, 15)), grayUnder(0.8)));
}

void TestViewAlpha::drawsNothingAtZero()
{
    Scene scene;
    const QImage before = [&scene] {
        scene.outer.hide();
        const QImage picture = scene.picture();
        scene.outer.show();
        return picture;
    }();
    QVERIFY(scene.picture() != before);
    setAlphaValue(scene.outer, 0);
    QCOMPARE(scene.picture(), before);
}

void TestViewAlpha::fadesToTheVeryNumber_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addRow("in") << 0.0 << 1.0;
    QTest::addRow("out") << 1.0 << 0.0;
    // 0.03 + (0.29 - 0.03) * 1 is not 0.29.
    QTest::addRow("odd numbers") << 0.03 << 0.29;
    QTest::addRow("nowhere") << 0.3 << 0.3;
}

void TestViewAlpha::fadesToTheVeryNumber()
{
    QFETCH(double, from);
    QFETCH(double, to);
    Scene scene;
    setAlphaValue(scene.outer, from);
    animateAlphaValue(scene.outer, to, 40ms);
    QCOMPARE(alphaValue(scene.outer), from);
    QTRY_VERIFY(!fadeOf(scene.outer));
    QVERIFY(alphaValue(scene.outer) == to); // not QCOMPARE, which lets nearly equal numbers pass
}

void TestViewAlpha::endsWhereTheLastFadeWanted()
{
    Scene scene;
    animateAlphaValue(scene.outer, 0, 200ms);
    animateAlphaValue(scene.outer, 1, 100ms);
    animateAlphaValue(scene.outer, 0.25, 50ms);
    QTRY_VERIFY(!fadeOf(scene.outer));
    QCOMPARE(alphaValue(scene.outer), 0.25);
}

void TestViewAlpha::startsFromWhatIsOnScreen()
{
    Scene scene;
    animateAlphaValue(scene.outer, 0, 400ms);
    QTRY_VERIFY(alphaValue(scene.outer) < 0.7);
    const double shown = alphaValue(scene.outer);
    animateAlphaValue(scene.outer, 1, 400ms);
    QCOMPARE(alphaValue(scene.outer), shown);
    QTRY_VERIFY(alphaValue(scene.outer) > shown);
    QTRY_COMPARE(alphaValue(scene.outer), 1.0);
}

void TestViewAlpha::endsAFadeWhenSetAtOnce()
{
    Scene scene;
    animateAlphaValue(scene.outer, 0, 30ms);
    setAlphaValue(scene.outer, 0.6);
    QTRY_VERIFY(!fadeOf(scene.outer));
    QCOMPARE(alphaValue(scene.outer), 0.6);
}

void TestViewAlpha::fadesAtOnceWithoutADuration()
{
    Scene scene;
    animateAlphaValue(scene.outer, 0.5, 300ms);
    animateAlphaValue(scene.outer, 0.2, 0ms);
    QCOMPARE(alphaValue(scene.outer), 0.2);
}

void TestViewAlpha::fadesAtOnceWhereAnimationsAreOff()
{
    StillStyle style;
    Scene scene;
    QCOMPARE(animationDuration(scene.outer, 300ms), 300ms);
    scene.outer.setStyle(&style);
    QCOMPARE(animationDuration(scene.outer, 300ms), 0ms);
    animateAlphaValue(scene.outer, 0.2, 300ms);
    QCOMPARE(alphaValue(scene.outer), 0.2);
}

void TestViewAlpha::outlivesItsWidget()
{
    auto widget = std::make_unique<QWidget>();
    animateAlphaValue(*widget, 0, 20ms);
    const QPointer<QVariantAnimation> animation = fadeOf(*widget);
    QVERIFY(animation);
    widget.reset();
    QVERIFY(!animation);
}

VANTOR_GUI_TEST_MAIN(TestViewAlpha)
#include "tst_ViewAlpha.moc"
