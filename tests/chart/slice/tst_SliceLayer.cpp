#include "chart/slice/SliceLayer.h"
#include "tests/chart/slice/CountingDelegate.h"
#include "tests/support/run/GuiTestMain.h"

#include <cmath>
#include <numbers>

using std::numbers::pi;

namespace {

constexpr MediaTime kBegin(100);
constexpr MediaTime kDuration(1);

} // namespace

class TestSliceLayer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void animatesFromTheGivenValueWhenNeverShown();
    void animatesFromWhatIsOnScreenWhenShown();
    void setsTheModelAtOnceAndTheScreenByAndBy();
    void continuesFromTheScreenWhenInterrupted();
    void interruptsOnlyTheAnimationOfTheSameAngle();
    void finishesAnimationsThatAreOver();
    void keepsTheModelWhenAnimationsAreRemoved();
    void showsAnAngleThatIsSetWithoutAnimation();
    void printsItself();
    void hasNoPresentationBeforeItIsShown();
    void copiesAnglesAndLooksForPresentation();
    void fitsShapeAndGradientToItsGeometry();
    void isFilledByItsGradientOnlyWhereThatHasColors();
    void goesFromItsFirstColourToItsSecondUpThePlane();
    void showsItsLabelAccordingToItsWidth_data();
    void showsItsLabelAccordingToItsWidth();

private:
    CountingDelegate m_listener;
};

void TestSliceLayer::animatesFromTheGivenValueWhenNeverShown()
{
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::EndAngle, pi / 2, 2.0, m_listener);
    QCOMPARE(layer.arc().animationForKey(ArcKey::EndAngle)->fromValue(), pi / 2);
    QCOMPARE(layer.arc().animationForKey(ArcKey::EndAngle)->toValue(), 2.0);
    QCOMPARE(layer.endAngle(), 2.0);
    QVERIFY(!layer.arc().animationForKey(ArcKey::StartAngle));
}

void TestSliceLayer::animatesFromWhatIsOnScreenWhenShown()
{
    SliceLayer layer;
    layer.arc().setAngle(ArcKey::EndAngle, 1.0);
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.createArcAnimationForKey(ArcKey::EndAngle, pi / 2, 2.0, m_listener);
    QCOMPARE(layer.arc().animationForKey(ArcKey::EndAngle)->fromValue(), 1.0);
}

void TestSliceLayer::setsTheModelAtOnceAndTheScreenByAndBy()
{
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::StartAngle, 0, 2, m_listener);
    layer.arc().beginAnimations(kBegin, kDuration);
    QCOMPARE(layer.startAngle(), 2.0);
    QCOMPARE(layer.presentationLayer()->startAngle(), 0.0);
    layer.arc().advance(kBegin + kDuration / 2);
    QVERIFY(std::abs(layer.presentationLayer()->startAngle() - 2 * 0.8024) < 1e-3);
    layer.arc().advance(kBegin + kDuration);
    QCOMPARE(layer.presentationLayer()->startAngle(), 2.0);
}

void TestSliceLayer::continuesFromTheScreenWhenInterrupted()
{
    CountingDelegate listener;
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::StartAngle, 0, 2, listener);
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.arc().advance(kBegin + kDuration / 4);
    const double shown = layer.presentationLayer()->startAngle();
    layer.createArcAnimationForKey(ArcKey::StartAngle, 5, 1, listener);
    QCOMPARE(listener.interrupted, 1);
    QCOMPARE(layer.arc().animationForKey(ArcKey::StartAngle)->fromValue(), shown);
    layer.arc().beginAnimations(kBegin + kDuration / 2, kDuration);
    QCOMPARE(layer.presentationLayer()->startAngle(), shown);
    QCOMPARE(listener.started, 2);
}

void TestSliceLayer::interruptsOnlyTheAnimationOfTheSameAngle()
{
    CountingDelegate listener;
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::StartAngle, 0, 2, listener);
    layer.createArcAnimationForKey(ArcKey::EndAngle, 0, 3, listener);
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.createArcAnimationForKey(ArcKey::EndAngle, 0, 4, listener);
    QCOMPARE(listener.interrupted, 1);
    QCOMPARE(layer.arc().animationForKey(ArcKey::StartAngle)->toValue(), 2.0);
}

void TestSliceLayer::finishesAnimationsThatAreOver()
{
    CountingDelegate listener;
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::StartAngle, 0, 2, listener);
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.arc().finishAnimations(kBegin + kDuration / 2);
    QCOMPARE(listener.finished, 0);
    layer.arc().finishAnimations(kBegin + kDuration);
    QCOMPARE(listener.finished, 1);
    QVERIFY(!layer.arc().animationForKey(ArcKey::StartAngle));
    layer.arc().finishAnimations(kBegin + kDuration);
    QCOMPARE(listener.finished, 1);
}

void TestSliceLayer::keepsTheModelWhenAnimationsAreRemoved()
{
    CountingDelegate listener;
    SliceLayer layer;
    layer.createArcAnimationForKey(ArcKey::StartAngle, 0, 2, listener);
    layer.createArcAnimationForKey(ArcKey::EndAngle, 0, 3, listener);
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.arc().removeAllAnimations();
    QCOMPARE(listener.interrupted, 2);
    QCOMPARE(layer.startAngle(), 2.0);
    QCOMPARE(layer.endAngle(), 3.0);
}

void TestSliceLayer::showsAnAngleThatIsSetWithoutAnimation()
{
    SliceLayer layer;
    layer.arc().beginAnimations(kBegin, kDuration);
    layer.arc().setAngle(ArcKey::EndAngle, 1.5);
    QCOMPARE(layer.presentationLayer()->endAngle(), 1.5);
}

void TestSliceLayer::printsItself()
{
    SliceLayer layer;
    layer.setValue(5);
    layer.setPercentage(0.25);
    layer.arc().setAngle(ArcKey::StartAngle, pi / 2);
    layer.arc().setAngle(ArcKey::EndAngle, pi);
    QString text;
    QDebug(&text) << layer;
    QCOMPARE(text.trimmed(),
             QStringLiteral("value:5.000000, percentage:0, start:90.000000, end:180.000000"));
}

void TestSliceLayer::hasNoPresentationBeforeItIsShown()
{
    SliceLayer layer;
    QVERIFY(!layer.presentationLayer());
    layer.arc().advance(kBegin);
    QVERIFY(!layer.presentationLayer());
    layer.arc().beginAnimations(kBegin, kDuration);
    QVERIFY(layer.presentationLayer());
}

void TestSliceLayer::copiesAnglesAndLooksForPresentation()
{
    SliceLayer layer;
    layer.setValue(5);
    layer.setPercentage(0.25);
    layer.arc().setAngle(ArcKey::StartAngle, 1);
    layer.arc().setAngle(ArcKey::EndAngle, 2);
    layer.setGeometry({{10, 10}, 5, 1, 2});
    layer.setFillColor(QColor(Qt::red));
    layer.setInfoLayer(std::make_unique<InfoLayer>());
    layer.madeGradientLayer();
    const SliceLayer copy(layer);
    QCOMPARE(copy.startAngle(), 1.0);
    QCOMPARE(copy.endAngle(), 2.0);
    QCOMPARE(copy.path(), layer.path());
    QCOMPARE(*copy.fillColor(), QColor(Qt::red));
    QCOMPARE(copy.shadowColor(), QColor(Qt::black));
    QCOMPARE(copy.shadowOffset(), QPointF(5, 5));
    QCOMPARE(copy.value(), 0.0);
    QCOMPARE(copy.percentage(), 0.0);
    QVERIFY(!copy.infoLayer());
    QVERIFY(!copy.gradientLayer());
}

void TestSliceLayer::fitsShapeAndGradientToItsGeometry()
{
    SliceLayer layer;
    layer.setGeometry({{100, 100}, 50, 0, pi / 2});
    GradientLayer &gradient = layer.madeGradientLayer();
    QCOMPARE(gradient.frame(), QRectF(100, 100, 50, 50));
    layer.setGeometry({{100, 100}, 50, pi / 2, pi});
    QCOMPARE(layer.path(), layer.geometry().createArcPath());
    QCOMPARE(gradient.frame(), QRectF(50, 100, 50, 50));
    QCOMPARE(gradient.mask(), layer.path().translated(-50, -100));
}

void TestSliceLayer::isFilledByItsGradientOnlyWhereThatHasColors()
{
    SliceLayer layer;
    layer.setGeometry({{100, 100}, 50, 0, pi / 2});
    QCOMPARE(layer.brush(), QBrush(Qt::black));
    layer.setFillColor(QColor(Qt::red));
    layer.madeGradientLayer();
    QCOMPARE(layer.brush(), QBrush(Qt::red));
    layer.gradientLayer()->setColors(GradientLayer::Colors{Qt::blue, Qt::green});
    QCOMPARE(layer.brush().style(), Qt::LinearGradientPattern);
    QVERIFY(layer.isOpaque());
    layer.gradientLayer()->setColors(GradientLayer::Colors{Qt::blue, Qt::blue});
    QCOMPARE(layer.brush(), QBrush(Qt::blue));
    layer.gradientLayer()->setColors(GradientLayer::Colors{Qt::transparent, Qt::transparent});
    QCOMPARE(layer.brush().style(), Qt::NoBrush);
    layer.gradientLayer()->setColors(std::nullopt);
    layer.setFillColor(std::nullopt);
    QCOMPARE(layer.brush().style(), Qt::NoBrush);
    QVERIFY(!layer.isOpaque());
}

void TestSliceLayer::goesFromItsFirstColourToItsSecondUpThePlane()
{
    SliceLayer layer;
    layer.setGeometry({{100, 100}, 50, 0, pi / 2});
    layer.madeGradientLayer().setColors(GradientLayer::Colors{Qt::blue, Qt::green});
    const QBrush brush = layer.brush();
    const auto *gradient = static_cast<const QLinearGradient *>(brush.gradient());
    QVERIFY(gradient);
    QCOMPARE(gradient->start(), QPointF(100, 100));
    QCOMPARE(gradient->finalStop(), QPointF(100, 150));
    QCOMPARE(gradient->stops(), (QGradientStops{{0, Qt::blue}, {1, Qt::green}}));
}

void TestSliceLayer::showsItsLabelAccordingToItsWidth_data()
{
    QTest::addColumn<double>("shown");
    QTest::addColumn<double>("goal");
    QTest::addColumn<double>("opacity");
    QTest::newRow("settled") << 0.8 << 0.8 << 1.0;
    QTest::newRow("settled and narrow") << 0.05 << 0.05 << 1.0;
    QTest::newRow("begins to grow") << 0.0 << 0.8 << 0.0;
    QTest::newRow("grows") << 0.175 << 0.8 << 0.5;
    QTest::newRow("has grown enough") << 0.5 << 0.8 << 1.0;
    QTest::newRow("grows to be narrow") << 0.05 << 0.1 << 0.5;
    QTest::newRow("folds") << 0.175 << 0.0 << 0.5;
    QTest::newRow("folded") << 0.0 << 0.0 << 0.0;
}

void TestSliceLayer::showsItsLabelAccordingToItsWidth()
{
    QFETCH(double, shown);
    QFETCH(double, goal);
    SliceLayer layer;
    layer.arc().setAngle(ArcKey::EndAngle, goal);
    layer.setGeometry({{0, 0}, 10, 0, shown});
    QTEST(layer.infoOpacity(), "opacity");
}

VANTOR_GUI_TEST_MAIN(TestSliceLayer)
#include "tst_SliceLayer.moc"
