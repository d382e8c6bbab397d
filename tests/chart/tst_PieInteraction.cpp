#include "chart/PieInteraction.h"

#include "tests/chart/MadePie.h"
#include "tests/support/run/GuiTestMain.h"

#include <QMouseEvent>
#include <QSet>

namespace {

/// Gets the events that its pie lets through.
class HearingWindow final : public QWidget
{
public:
    QList<QEvent::Type> heard;

protected:
    void mousePressEvent(QMouseEvent *event) override { heard << event->type(); }
    void mouseMoveEvent(QMouseEvent *event) override { heard << event->type(); }
    void keyPressEvent(QKeyEvent *event) override { heard << event->type(); }
};

/// A pie of four slices in a window, with a record of its signals.
class HeldPie final
{
public:
    HearingWindow window;
    MadePie pie{4, &window};
    QSet<int> selectable{0, 1, 2, 3};
    PieInteraction interaction{pie, [this](int index) { return selectable.contains(index); }};
    QList<int> selected;
    QList<int> hovered;
    QList<int> focused;

    HeldPie()
    {
        window.resize(400, 300);
        const auto note = [](QList<int> &list) { return [&list](int index) { list << index; }; };
        QObject::connect(&interaction, &PieInteraction::selected, &window, note(selected));
        QObject::connect(&interaction, &PieInteraction::hovered, &window, note(hovered));
        QObject::connect(&interaction, &PieInteraction::focusMoved, &window, note(focused));
    }

    void mouse(QEvent::Type type, QPointF at, Qt::MouseButton button = Qt::NoButton)
    {
        QMouseEvent event(type, at, pie.mapToGlobal(at), button, button, {});
        QCoreApplication::sendEvent(&pie, &event);
    }
    void key(Qt::Key key) { QTest::sendKeyEvent(QTest::Press, &pie, key, QString(), {}); }
    void crossEdge(QEvent::Type type)
    {
        QEvent event(type);
        QCoreApplication::sendEvent(&pie, &event);
    }

    QImage picture()
    {
        QImage image(pie.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        pie.render(&image, {}, {}, QWidget::RenderFlags());
        return image;
    }
};

// A point in each of the first two slices, and one outside of all.
constexpr QPointF kFirst(150, 100);
constexpr QPointF kSecond(150, 200);
constexpr QPointF kOutside(5, 5);

} // namespace

class TestPieInteraction final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfEachPressOnASlice();
    void countsTheSecondPressOfADoubleClick();
    void letsOtherButtonsThrough();
    void tellsOfThePointerWithATrackingAreaAlone();
    void keepsMovesToItself();
    void tellsThatThePointerLeft();
    void tellsLateThatThePointerLeftUnseen();
    void forgetsThatThePointerLeftWhenItComesBack();
    void hearsNothingOfADisabledPie_data();
    void hearsNothingOfADisabledPie();
    void movesTheFocusWithKeys_data();
    void movesTheFocusWithKeys();
    void choosesTheFocusedSliceWithKeys();
    void letsOtherKeysThrough();
    void hoversWithTheFocusWhileItTracks();
    void makesThePieReachableForSlicesThatCanBeChosen();
    void forgetsAFocusedSliceThatIsGone();
    void showsTheRingUntilTheFocusGoes();
    void takesNoRingToAClickedSlice();
};

void TestPieInteraction::tellsOfEachPressOnASlice()
{
    HeldPie held;
    held.selectable = {1};
    for (const QPointF at : {kFirst, kSecond, kOutside})
        held.mouse(QEvent::MouseButtonPress, at, Qt::LeftButton);
    QCOMPARE(held.selected, (QList<int>{0, 1}));
    QCOMPARE(held.interaction.focusedSlice(), 1);
    QVERIFY(held.window.heard.isEmpty());
}

void TestPieInteraction::countsTheSecondPressOfADoubleClick()
{
    HeldPie held;
    held.mouse(QEvent::MouseButtonPress, kFirst, Qt::LeftButton);
    held.mouse(QEvent::MouseButtonDblClick, kFirst, Qt::LeftButton);
    QCOMPARE(held.selected, (QList<int>{0, 0}));
}

void TestPieInteraction::letsOtherButtonsThrough()
{
    HeldPie held;
    held.mouse(QEvent::MouseButtonPress, kFirst, Qt::RightButton);
    QCOMPARE(held.selected, QList<int>());
    QCOMPARE(held.window.heard, QList<QEvent::Type>{QEvent::MouseButtonPress});
}

void TestPieInteraction::tellsOfThePointerWithATrackingAreaAlone()
{
    HeldPie held;
    held.mouse(QEvent::MouseMove, kFirst);
    QCOMPARE(held.hovered, QList<int>());
    held.interaction.installTrackingArea();
    QVERIFY(held.pie.hasMouseTracking());
    for (const QPointF at : {kFirst, kFirst, kSecond, kOutside})
        held.mouse(QEvent::MouseMove, at);
    held.mouse(QEvent::MouseMove, kFirst, Qt::LeftButton); // a drag
    QCOMPARE(held.hovered, (QList<int>{0, 0, 1, -1}));
    held.interaction.destoryTrackingArea();
    QVERIFY(!held.pie.hasMouseTracking());
    held.mouse(QEvent::MouseMove, kFirst);
    QCOMPARE(held.hovered.size(), 4);
}

/// A move that reaches the window could drag the window away.
void TestPieInteraction::keepsMovesToItself()
{
    HeldPie held;
    held.mouse(QEvent::MouseMove, kFirst, Qt::LeftButton);
    held.interaction.installTrackingArea();
    held.mouse(QEvent::MouseMove, kOutside);
    QVERIFY(held.window.heard.isEmpty());
}

void TestPieInteraction::tellsThatThePointerLeft()
{
    HeldPie held;
    held.interaction.installTrackingArea();
    held.crossEdge(QEvent::Leave);
    QCOMPARE(held.hovered, QList<int>{-1});
}

void TestPieInteraction::tellsLateThatThePointerLeftUnseen()
{
    HeldPie held;
    held.crossEdge(QEvent::Leave);
    QCOMPARE(held.hovered, QList<int>());
    held.interaction.installTrackingArea();
    QCOMPARE(held.hovered, QList<int>{-1});
    held.interaction.destoryTrackingArea();
    held.interaction.installTrackingArea();
    QCOMPARE(held.hovered, QList<int>{-1});
}

void TestPieInteraction::forgetsThatThePointerLeftWhenItComesBack()
{
    HeldPie held;
    held.crossEdge(QEvent::Leave);
    held.crossEdge(QEvent::Enter);
    held.interaction.installTrackingArea();
    QCOMPARE(held.hovered, QList<int>());
}

void TestPieInteraction::hearsNothingOfADisabledPie_data()
{
    QTest::addColumn<QEvent::Type>("type");
    QTest::newRow("press") << QEvent::MouseButtonPress;
    QTest::newRow("double click") << QEvent::MouseButtonDblClick;
    QTest::newRow("move") << QEvent::MouseMove;
    QTest::newRow("key") << QEvent::KeyPress;
}

void TestPieInteraction::hearsNothingOfADisabledPie()
{
    QFETCH(const QEvent::Type, type);
    HeldPie held;
    held.interaction.installTrackingArea();
    const auto send = [&] {
        if (type == QEvent::KeyPress)
            held.key(Qt::Key_End);
        else
            held.mouse(type, kFirst, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton);
        return held.selected.size() + held.hovered.size() + held.focused.size();
    };
    held.pie.setEnabled(false);
    QCOMPARE(send(), 0);
    held.pie.setEnabled(true);
    QVERIFY(send() > 0);
}

void TestPieInteraction::movesTheFocusWithKeys_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("down") << Qt::Key_Down << 0 << 1;
    QTest::newRow("right") << Qt::Key_Right << 1 << 2;
    QTest::newRow("up") << Qt::Key_Up << 2 << 3;
    QTest::newRow("left") << Qt::Key_Left << 3 << 0;
    QTest::newRow("nothing lies further left") << Qt::Key_Left << 0 << 0;
    QTest::newRow("first") << Qt::Key_Home << 2 << 0;
    QTest::newRow("last") << Qt::Key_End << 0 << 3;
}

void TestPieInteraction::movesTheFocusWithKeys()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const int, from);
    HeldPie held;
    held.interaction.focusSlice(from);
    held.key(key);
    QTEST(held.interaction.focusedSlice(), "to");
    QCOMPARE(held.focused, (QList<int>{from, held.interaction.focusedSlice()}));
    QVERIFY(held.window.heard.isEmpty());
}

void TestPieInteraction::choosesTheFocusedSliceWithKeys()
{
    HeldPie held;
    held.interaction.focusSlice(2);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
        held.key(key);
    QCOMPARE(held.selected, (QList<int>{2, 2, 2}));
    QVERIFY(held.window.heard.isEmpty());
}

void TestPieInteraction::letsOtherKeysThrough()
{
    HeldPie held;
    held.key(Qt::Key_Escape);
    held.key(Qt::Key_Space); // no slice is focused
    QCOMPARE(held.selected, QList<int>());
    QCOMPARE(held.window.heard, (QList<QEvent::Type>{QEvent::KeyPress, QEvent::KeyPress}));
}

void TestPieInteraction::hoversWithTheFocusWhileItTracks()
{
    HeldPie held;
    held.interaction.focusSlice(1);
    QCOMPARE(held.hovered, QList<int>());
    held.interaction.installTrackingArea();
    held.interaction.focusSlice(2);
    QCOMPARE(held.hovered, QList<int>{2});
}

void TestPieInteraction::makesThePieReachableForSlicesThatCanBeChosen()
{
    HeldPie held;
    held.selectable = {7}; // not a slice of the pie
    held.interaction.updateFocusPolicy();
    QCOMPARE(held.pie.focusPolicy(), Qt::NoFocus);
    held.selectable = {3};
    held.interaction.updateFocusPolicy();
    QCOMPARE(held.pie.focusPolicy(), Qt::StrongFocus);
}

void TestPieInteraction::forgetsAFocusedSliceThatIsGone()
{
    HeldPie held;
    held.interaction.focusSlice(3);
    held.pie.removeLast();
    held.interaction.updateFocusPolicy();
    QCOMPARE(held.interaction.focusedSlice(), -1);
    QVERIFY(!held.interaction.canSelectSlice(3));
}

void TestPieInteraction::showsTheRingUntilTheFocusGoes()
{
    HeldPie held;
    const QImage without = held.picture();
    held.interaction.focusSlice(0);
    QVERIFY(held.picture() != without);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(&held.pie, &out);
    QCOMPARE(held.picture(), without);
    QFocusEvent pointer(QEvent::FocusIn, Qt::MouseFocusReason);
    QCoreApplication::sendEvent(&held.pie, &pointer);
    QCOMPARE(held.picture(), without);
    QFocusEvent key(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(&held.pie, &key);
    QVERIFY(held.picture() != without);
}

void TestPieInteraction::takesNoRingToAClickedSlice()
{
    HeldPie held;
    const QImage without = held.picture();
    held.interaction.focusSlice(0);
    held.mouse(QEvent::MouseButtonPress, kSecond, Qt::LeftButton);
    QCOMPARE(held.interaction.focusedSlice(), 1);
    QCOMPARE(held.picture(), without);
}

VANTOR_GUI_TEST_MAIN(TestPieInteraction)
#include "tst_PieInteraction.moc"
