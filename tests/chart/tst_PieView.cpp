#include "chart/PieView.h"

#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/HeldPool.h"

using State = std::function<void(HeldChart &)>;
Q_DECLARE_METATYPE(State)

/// What a frame of the pie costs: what is drawn for it, what is kept, and on which threads.
class TestPieView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsNothingWhenItIsSettled();
    void drawsNothingForThePointer();
    void drawsTheSliceAloneThatHasChanged();
    void drawsTheRingOnceForItsSlice();
    void drawsEverySliceThatMoves();
    void drawsAnew_data();
    void drawsAnew();
    void keepsLittleMoreThanItself();
    void keepsNothingWhileItMoves();
    void keepsNothingWhileItIsHidden();
    void keepsNothingOfAHugePieThatIsNotSeen();
    void paintsWithoutThePool_data();
    void paintsWithoutThePool();
};

namespace {

constexpr int kSlices = 6;

/// A settled pie of gradients, with pictures of all its slices.
class SettledChart final
{
public:
    HeldChart held;

    SettledChart()
    {
        held.page.setValues(std::vector<double>(kSlices, 1));
        for (int i = 0; i < kSlices; ++i) {
            held.page.slices[static_cast<std::size_t>(i)].color = QColor::fromHsv(50 * i, 200, 220);
            held.page.slices[static_cast<std::size_t>(i)].secondaryColor = Qt::darkGray;
            held.page.selectable << i;
        }
        held.chart.reloadData();
        held.settle();
        frames(2);
    }

    void frames(int count)
    {
        for (int i = 0; i < count; ++i)
            held.picture(2);
    }

    /// How many shapes are drawn for some frames.
    int drawnFor(int count)
    {
        const int before = held.chart.drawings();
        frames(count);
        return held.chart.drawings() - before;
    }
};

qsizetype bytesOf(QSizeF size, double scale)
{
    return static_cast<qsizetype>(size.width() * scale * size.height() * scale * 4);
}

void grow(HeldChart &held)
{
    held.page.setValues({1, 2, 3});
    held.chart.reloadData();
    held.pass(0.3);
}

void settle(HeldChart &held)
{
    grow(held);
    held.settle();
}

void move(HeldChart &held)
{
    settle(held);
    held.page.setValues({3, 1, 2});
    held.chart.reloadData();
    held.pass(0.3);
}

void showTheRing(HeldChart &held)
{
    settle(held);
    held.page.selectable << 1;
    held.chart.interaction().focusSlice(1);
}

void beTranslucent(HeldChart &held)
{
    held.page.setValues({1, 2});
    held.page.slices[0].color = held.page.slices[1].color = QColor(200, 30, 30, 90);
    held.chart.reloadData();
    held.settle();
}

} // namespace

void TestPieView::drawsNothingWhenItIsSettled()
{
    SettledChart settled;
    QCOMPARE(settled.drawnFor(5), 0);
    settled.held.chart.reloadData(); // an animation from a state to the same state
    settled.held.pass(0.3);
    QCOMPARE(settled.drawnFor(1), 0);
}

void TestPieView::drawsNothingForThePointer()
{
    SettledChart settled;
    settled.held.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&settled.held.window));
    QCoreApplication::processEvents();
    const int before = settled.held.chart.drawings();
    QTest::mouseMove(&settled.held.chart, {150, 100});
    QTest::mouseMove(&settled.held.chart, {250, 200});
    QTRY_VERIFY(settled.held.page.hovered.size() >= 2);
    QCoreApplication::processEvents();
    QCOMPARE(settled.held.chart.drawings(), before);
}

void TestPieView::drawsTheSliceAloneThatHasChanged()
{
    SettledChart settled;
    settled.held.page.slices[2].color = Qt::red; // as a slice under the pointer might look
    settled.held.chart.reloadGradients();
    const int before = settled.held.layer(2).picture().drawings();
    QCOMPARE(settled.drawnFor(1), 1);
    QCOMPARE(settled.held.layer(2).picture().drawings(), before + 1);
    QCOMPARE(settled.drawnFor(5), 1); // its new picture
}

void TestPieView::drawsTheRingOnceForItsSlice()
{
    SettledChart settled;
    settled.held.chart.interaction().focusSlice(1);
    QCOMPARE(settled.drawnFor(1), 1);
    QCOMPARE(settled.drawnFor(5), 1);
    const qsizetype ringed = settled.held.chart.pictureBytes();
    settled.held.chart.setRingedSlice(-1);
    QCOMPARE(settled.drawnFor(2), 0);
    QVERIFY(settled.held.chart.pictureBytes() < ringed);
}

void TestPieView::drawsEverySliceThatMoves()
{
    SettledChart settled;
    settled.held.page.slices[kSlices - 1].value = 0.5;
    settled.held.page.slices[kSlices - 2].value = 1.5; // the first four stay where they are
    settled.held.chart.reloadData();
    settled.held.pass(0.2);
    QCOMPARE(settled.drawnFor(1), 2);
    settled.held.pass(0.2);
    QCOMPARE(settled.drawnFor(1), 2);
}

void TestPieView::drawsAnew_data()
{
    QTest::addColumn<State>("change");
    QTest::newRow("another size") << State([](HeldChart &held) { held.chart.resize(380, 290); });
    QTest::newRow("another radius") << State([](HeldChart &held) { held.chart.setPieRadius(100); });
    QTest::newRow("another scale") << State([](HeldChart &held) { held.picture(1.5); });
}

void TestPieView::drawsAnew()
{
    QFETCH(const State, change);
    SettledChart settled;
    change(settled.held);
    QCOMPARE(settled.drawnFor(1), kSlices);
    QCOMPARE(settled.held.chart.pictureBytes(), 0);
    QCOMPARE(settled.drawnFor(5), kSlices);
    QVERIFY(settled.held.chart.pictureBytes() > 0);
}

void TestPieView::keepsLittleMoreThanItself()
{
    SettledChart settled;
    // The frames of the slices overlap; together they are about half again as large as the disc's.
    QVERIFY(settled.held.chart.pictureBytes() > bytesOf({300, 300}, 2));
    QVERIFY(settled.held.chart.pictureBytes() < 2 * bytesOf({300, 300}, 2));
}

void TestPieView::keepsNothingWhileItMoves()
{
    SettledChart settled;
    settled.held.page.setValues({1, 2, 3, 4, 5, 6});
    settled.held.chart.reloadData();
    settled.held.pass(0.2);
    settled.frames(1);
    QCOMPARE(settled.held.chart.pictureBytes(), 0);
}

void TestPieView::keepsNothingWhileItIsHidden()
{
    SettledChart settled;
    settled.held.window.show();
    settled.frames(2);
    QVERIFY(settled.held.chart.pictureBytes() > 0);
    settled.held.window.hide();
    QCOMPARE(settled.held.chart.pictureBytes(), 0);
}

void TestPieView::keepsNothingOfAHugePieThatIsNotSeen()
{
    SettledChart settled;
    settled.held.chart.setPieRadius(100'000);
    settled.frames(3);
    QVERIFY(settled.held.chart.pictureBytes() <= kSlices * bytesOf({400, 300}, 2));
}

void TestPieView::paintsWithoutThePool_data()
{
    QTest::addColumn<State>("reach");
    QTest::newRow("growing") << State(grow);
    QTest::newRow("settled") << State(settle);
    QTest::newRow("moving") << State(move);
    QTest::newRow("with the focus ring") << State(showTheRing);
    QTest::newRow("translucent") << State(beTranslucent);
}

void TestPieView::paintsWithoutThePool()
{
    QFETCH(const State, reach);
    HeldChart held;
    reach(held);
    const HeldPool pool;
    for (int i = 0; i < 3; ++i)
        held.picture(3);
    // Parts of it, as when two labels change at the same time.
    QImage image(1200, 900, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(3);
    const QRegion parts = QRegion(60, 10, 100, 280) + QRegion(220, 10, 100, 280);
    held.chart.render(&image, parts.boundingRect().topLeft(), parts, QWidget::RenderFlags());
    QVERIFY(!pool.wasWaitedFor());
}

VANTOR_GUI_TEST_MAIN(TestPieView)
#include "tst_PieView.moc"
