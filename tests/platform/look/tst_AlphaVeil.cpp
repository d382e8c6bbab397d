#include "platform/look/AlphaVeil.h"

#include "platform/look/ViewAlpha.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/HeldPool.h"

#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QVariantAnimation>

/// An opacity that a veil of the parent's colour makes, as on pages.
class TestAlphaVeil final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksLikeTheOpacity_data();
    void looksLikeTheOpacity();
    void keepsTheOpacityWhateverDrawsIt();
    void letsTheWidgetGoOnMoving();
    void sparesTheWidgetUnderAFullCover();
    void followsTheWidget();
    void followsTheWidgetToAnotherParent();
    void hidesWithTheWidget();
    void liesRightAboveTheWidget();
    void letsTheMouseThrough();
    void fades();
    void diesWithTheWidget();
    void isNothingWithoutAParent();
    void paintsWithoutThePool();
};

namespace {

/// Counts how often it is painted; black.
class Page final : public QWidget
{
public:
    using QWidget::QWidget;
    int paintings = 0;

protected:
    void paintEvent(QPaintEvent *) override
    {
        ++paintings;
        QPainter(this).fillRect(rect(), Qt::black);
    }
};

/// A black page on a grey stage.
struct Stage
{
    Stage()
    {
        stage.setPalette(QPalette(QColor(200, 200, 200)));
        stage.resize(100, 100);
        page.setGeometry(10, 10, 80, 80);
        setAlphaDrawing(page, AlphaDrawing::Veil);
        stage.show();
    }

    int gray(QPoint place) { return qGray(stage.grab().toImage().pixel(place)); }
    AlphaVeil *veil() const { return stage.findChild<AlphaVeil *>(); }

    QWidget stage;
    Page page{&stage};
};

} // namespace

void TestAlphaVeil::looksLikeTheOpacity_data()
{
    QTest::addColumn<double>("alpha");
    for (const double alpha : {0.0, 0.25, 0.5, 0.75, 1.0})
        QTest::addRow("%g", alpha) << alpha;
}

void TestAlphaVeil::looksLikeTheOpacity()
{
    QFETCH(double, alpha);
    Stage veiled;
    setAlphaValue(veiled.page, alpha);
    Stage pictured;
    setAlphaDrawing(pictured.page, AlphaDrawing::Picture);
    setAlphaValue(pictured.page, alpha);
    QVERIFY(qAbs(veiled.gray({50, 50}) - pictured.gray({50, 50})) <= 1);
    QVERIFY(qAbs(veiled.gray({50, 50}) - qRound(200 * (1 - alpha))) <= 1);
    QCOMPARE(veiled.gray({5, 5}), 200);
}

void TestAlphaVeil::keepsTheOpacityWhateverDrawsIt()
{
    Stage stage;
    setAlphaValue(stage.page, 0.3);
    QCOMPARE(alphaValue(stage.page), 0.3);
    setAlphaDrawing(stage.page, AlphaDrawing::Picture);
    QCOMPARE(alphaValue(stage.page), 0.3);
    QVERIFY(!stage.veil());
    const int pictured = stage.gray({50, 50});
    setAlphaDrawing(stage.page, AlphaDrawing::Veil);
    QVERIFY(stage.veil());
    QVERIFY(qAbs(stage.gray({50, 50}) - pictured) <= 1);
}

void TestAlphaVeil::letsTheWidgetGoOnMoving()
{
    Stage stage;
    setAlphaValue(stage.page, 0.5);
    QTRY_VERIFY(stage.page.paintings > 0);
    const int before = stage.page.paintings;
    stage.page.update();
    QTRY_VERIFY(stage.page.paintings > before);
}

void TestAlphaVeil::sparesTheWidgetUnderAFullCover()
{
    Stage stage;
    setAlphaValue(stage.page, 0);
    QCoreApplication::processEvents();
    const int before = stage.page.paintings;
    stage.veil()->update();
    stage.page.update();
    QCoreApplication::processEvents();
    QCOMPARE(stage.page.paintings, before);
    setAlphaValue(stage.page, 0.5);
    QTRY_VERIFY(stage.page.paintings > before);
}

void TestAlphaVeil::followsTheWidget()
{
    Stage stage;
    setAlphaValue(stage.page, 0.5);
    stage.page.setGeometry(0, 0, 30, 40);
    QCOMPARE(stage.veil()->geometry(), QRect(0, 0, 30, 40));
    stage.page.move(50, 60);
    QCOMPARE(stage.veil()->geometry(), QRect(50, 60, 30, 40));
    QCOMPARE(stage.gray({20, 20}), 200);
}

void TestAlphaVeil::followsTheWidgetToAnotherParent()
{
    Stage stage;
    setAlphaValue(stage.page, 0.0);
    stage.page.setParent(nullptr);
    QVERIFY(!stage.veil());
    QCOMPARE(alphaValue(stage.page), 0.0);

    QWidget next;
    next.setPalette(QPalette(QColor(120, 120, 120)));
    next.resize(100, 100);
    next.show();
    stage.page.setParent(&next);
    stage.page.setGeometry(0, 0, 100, 100);
    stage.page.show();
    QVERIFY(next.findChild<AlphaVeil *>());
    QCOMPARE(qGray(next.grab().toImage().pixel(50, 50)), 120);
    stage.page.setParent(nullptr);
}

void TestAlphaVeil::hidesWithTheWidget()
{
    Stage stage;
    setAlphaValue(stage.page, 0.5);
    stage.page.hide();
    QVERIFY(stage.veil()->isHidden());
    stage.page.show();
    QVERIFY(stage.veil()->isVisible());
}

void TestAlphaVeil::liesRightAboveTheWidget()
{
    Stage stage;
    Page above(&stage.stage);
    above.setGeometry(40, 40, 20, 20);
    above.show();
    setAlphaValue(stage.page, 0.0);
    QCOMPARE(stage.gray({50, 50}), 0); // the other one is not veiled
    QCOMPARE(stage.gray({20, 20}), 200);
    stage.page.raise();
    QCOMPARE(stage.gray({50, 50}), 200);
    above.raise();
    QCOMPARE(stage.gray({50, 50}), 0);
    QCOMPARE(stage.gray({20, 20}), 200);
}

void TestAlphaVeil::letsTheMouseThrough()
{
    Stage stage;
    QPushButton button(&stage.page);
    button.setGeometry(0, 0, 80, 80);
    button.show();
    QSignalSpy clicked(&button, &QPushButton::clicked);
    setAlphaValue(stage.page, 0.0);
    QVERIFY(QTest::qWaitForWindowExposed(&stage.stage));
    QTest::mouseClick(stage.stage.windowHandle(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(clicked.size(), 1);
}

void TestAlphaVeil::fades()
{
    Stage stage;
    setAlphaValue(stage.page, 0);
    animateAlphaValue(stage.page, 1);
    auto *const fade = stage.page.findChild<QVariantAnimation *>();
    QVERIFY(fade);
    fade->setCurrentTime(fade->duration() / 2);
    QVERIFY(qAbs(alphaValue(stage.page) - 0.5) < 0.01);
    QVERIFY(qAbs(stage.gray({50, 50}) - 100) < 5);
    QTRY_COMPARE(alphaValue(stage.page), 1.0);
    QVERIFY(!stage.veil());
    QCOMPARE(stage.gray({50, 50}), 0);
}

void TestAlphaVeil::diesWithTheWidget()
{
    QWidget stage;
    auto *const page = new Page(&stage);
    setAlphaDrawing(*page, AlphaDrawing::Veil);
    setAlphaValue(*page, 0.5);
    QVERIFY(stage.findChild<AlphaVeil *>());
    delete page;
    QVERIFY(!stage.findChild<AlphaVeil *>());
}

void TestAlphaVeil::isNothingWithoutAParent()
{
    Page page;
    setAlphaDrawing(page, AlphaDrawing::Veil);
    setAlphaValue(page, 0.5);
    QCOMPARE(alphaValue(page), 0.5);
    page.resize(20, 20);
    QCOMPARE(qGray(page.grab().toImage().pixel(10, 10)), 0);
}

void TestAlphaVeil::paintsWithoutThePool()
{
    Stage stage;
    stage.stage.resize(900, 700);
    stage.page.resize(900, 700);
    setAlphaValue(stage.page, 0.4);
    const HeldPool pool;
    const QImage seen = stage.stage.grab().toImage();
    QVERIFY(!pool.wasWaitedFor());
    QCOMPARE(qGray(seen.pixel(450, 350)), 120);
}

VANTOR_GUI_TEST_MAIN(TestAlphaVeil)
#include "tst_AlphaVeil.moc"
