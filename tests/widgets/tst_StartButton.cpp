#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "platform/look/ViewAlpha.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/HeldPool.h"
#include "tests/widgets/Ink.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalSpy>

namespace {

/// A white page that gets the events that the button lets through.
class Page final : public QWidget
{
public:
    int presses = 0;
    int releases = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void mouseReleaseEvent(QMouseEvent *) override { ++releases; }
};

struct Scene
{
    explicit Scene(int size = 200)
    {
        page.setPalette(QPalette(Qt::white));
        page.resize(size + 40, size + 40);
        button.setGeometry(0, 0, size, size);
        button.setEnabled(true);
        page.show();
    }

    QImage picture()
    {
        return page.grab(button.geometry()).toImage().convertToFormat(QImage::Format_RGB32);
    }

    /// The page without its button.
    QImage blank()
    {
        QImage picture(button.size() * page.devicePixelRatioF(), QImage::Format_RGB32);
        picture.setDevicePixelRatio(page.devicePixelRatioF());
        picture.fill(Qt::white);
        return picture;
    }

    /// The page with only the drawing of that name.
    QImage drawing(const QString &name)
    {
        QImage picture = blank();
        QPainter painter(&picture);
        painter.drawPixmap(0, 0, imageNamed(name, page.devicePixelRatioF(), button.size()));
        return picture;
    }

    bool shows(const QString &name) { return largestDifference(picture(), drawing(name)) <= 8; }
    bool looksNormal() { return shows(QStringLiteral("circleButton")); }
    bool looksPressed() { return shows(QStringLiteral("circleButtonPressed")); }

    void send(QEvent::Type type, QPointF at, Qt::MouseButton which = Qt::LeftButton)
    {
        const bool isRelease = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, button.mapToGlobal(at), which,
                          isRelease ? Qt::NoButton : Qt::MouseButtons(which), Qt::NoModifier);
        QApplication::sendEvent(&button, &event);
    }
    void press(QPointF at) { send(QEvent::MouseButtonPress, at); }
    void release(QPointF at) { send(QEvent::MouseButtonRelease, at); }
    void move(QPointF at) { send(QEvent::MouseMove, at, Qt::NoButton); }

    Page page;
    StartButton button{&page};
    QSignalSpy triggered{&button, &StartButton::triggered};
};

constexpr QPointF kInside(100, 100);
constexpr QPointF kOutside(5, 5);

} // namespace

class TestStartButton final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsDisabledWithTwoEmptyTexts();
    void goesByTheCircle_data();
    void goesByTheCircle();
    void showsThePressedDiscWhileHeld();
    void staysPressedWhileThePointerStrays();
    void triggersNothingWhenReleasedOutside();
    void ignoresEverythingWhileDisabled();
    void comesUpWhenDisabledWhilePressed();
    void heedsTheLeftButtonAlone();
    void lettingItsCornersThrough();
    void pointsWithAHandWhereItCanBePressed();
    void marksThePointerWithoutChangingTheDisc();
    void triggersBySpaceAndReturn_data();
    void triggersBySpaceAndReturn();
    void showsTheFocusThatCameByKeyboard();
    void fadesAsAWhole();
    void isReadOutAsAButton();
    void paintsWithoutThePool();
};

void TestStartButton::startsDisabledWithTwoEmptyTexts()
{
    StartButton button;
    QVERIFY(!button.isEnabled());
    QCOMPARE(button.findChildren<TextField *>().size(), 2);
    QCOMPARE(button.mainText().text(), QString());
    QCOMPARE(button.detailText().text(), QString());
    QCOMPARE(button.sizeHint(), QSize(200, 200));
}

void TestStartButton::goesByTheCircle_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<bool>("isInside");
    const struct
    {
        const char *name;
        QPointF position;
        bool isInside;
    } rows[] = {
        {"middle", {100, 100}, true},
        {"99 below the middle", {100, 199}, true},
        {"100 below the middle", {100, 200}, false},
        {"a fraction is cut off", {100, 199.9}, true},
        {"left edge", {0, 100}, false},
        {"less than a point from the left edge", {0.5, 100}, true},
        {"right edge", {200, 100}, false},
        {"distance 98.99", {30, 30}, true},
        {"distance 100 on a slope", {40, 20}, false},
        {"distance 100.4", {29, 29}, false},
        {"corner", {0, 0}, false},
    };
    for (const auto &row : rows)
        QTest::newRow(row.name) << row.position << row.isInside;
}

void TestStartButton::goesByTheCircle()
{
    QFETCH(QPointF, position);
    QFETCH(bool, isInside);
    Scene scene;
    scene.press(position);
    QCOMPARE(scene.looksPressed(), isInside);
    QCOMPARE(scene.page.presses, isInside ? 0 : 1);
    QCOMPARE(scene.triggered.count(), 0);

    // Only the position of the release decides.
    scene.release(position);
    QCOMPARE(scene.triggered.count(), isInside ? 1 : 0);
    QCOMPARE(scene.page.releases, isInside ? 0 : 1);
    QVERIFY(scene.looksNormal());
}

void TestStartButton::showsThePressedDiscWhileHeld()
{
    Scene scene;
    QVERIFY(scene.looksNormal());
    QVERIFY(!scene.looksPressed());
    scene.press(kInside);
    QVERIFY(scene.looksPressed());
    scene.release(kInside);
    QVERIFY(scene.looksNormal());
    QCOMPARE(scene.triggered.count(), 1);
}

void TestStartButton::staysPressedWhileThePointerStrays()
{
    Scene scene;
    scene.press(kInside);
    scene.send(QEvent::MouseMove, kOutside, Qt::LeftButton);
    QVERIFY(scene.looksPressed());
}

void TestStartButton::triggersNothingWhenReleasedOutside()
{
    Scene scene;
    scene.press(kInside);
    scene.release(kOutside);
    QVERIFY(scene.looksNormal());
    QCOMPARE(scene.triggered.count(), 0);
    QCOMPARE(scene.page.releases, 1);
    // The other way round it counts.
    scene.press(kOutside);
    scene.release(kInside);
    QCOMPARE(scene.triggered.count(), 1);
}

void TestStartButton::ignoresEverythingWhileDisabled()
{
    Scene scene;
    scene.button.setEnabled(false);
    scene.press(kInside);
    QVERIFY(scene.looksNormal());
    scene.release(kInside);
    QTest::keyClick(&scene.button, Qt::Key_Space);
    QTest::keyClick(&scene.button, Qt::Key_Return);
    QVERIFY(scene.looksNormal());
    QCOMPARE(scene.triggered.count(), 0);
    QCOMPARE(scene.page.presses, 1);
    QCOMPARE(scene.page.releases, 1);
}

void TestStartButton::comesUpWhenDisabledWhilePressed()
{
    Scene scene;
    scene.press(kInside);
    scene.button.setEnabled(false);
    QVERIFY(scene.looksNormal());
    scene.release(kInside);
    QCOMPARE(scene.triggered.count(), 0);
}

void TestStartButton::heedsTheLeftButtonAlone()
{
    Scene scene;
    scene.send(QEvent::MouseButtonPress, kInside, Qt::RightButton);
    QVERIFY(scene.looksNormal());
    scene.send(QEvent::MouseButtonRelease, kInside, Qt::RightButton);
    QCOMPARE(scene.triggered.count(), 0);
}

void TestStartButton::lettingItsCornersThrough()
{
    Scene scene;
    QVERIFY(!scene.page.childAt(QPoint(10, 10)));
    QCOMPARE(scene.page.childAt(QPoint(100, 100)), &scene.button);
    QCOMPARE(scene.page.childAt(QPoint(100, 198)), &scene.button);
}

void TestStartButton::pointsWithAHandWhereItCanBePressed()
{
    Scene scene;
    scene.move(kInside);
    QCOMPARE(scene.button.cursor().shape(), Qt::PointingHandCursor);
    scene.move(kOutside);
    QCOMPARE(scene.button.cursor().shape(), Qt::ArrowCursor);
    scene.move(kInside);
    scene.button.setEnabled(false);
    QCOMPARE(scene.button.cursor().shape(), Qt::ArrowCursor);
}

void TestStartButton::marksThePointerWithoutChangingTheDisc()
{
    Scene scene;
    const QImage before = scene.picture();
    scene.move(kInside);
    const QImage hovered = scene.picture();
    QVERIFY(largestDifference(before, hovered) > 8);
    const int middle = qRound(100 * scene.page.devicePixelRatioF());
    QCOMPARE(hovered.pixel(middle, middle), before.pixel(middle, middle));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&scene.button, &leave);
    QVERIFY(scene.looksNormal());
}

void TestStartButton::triggersBySpaceAndReturn_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("space") << Qt::Key_Space;
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter") << Qt::Key_Enter;
}

void TestStartButton::triggersBySpaceAndReturn()
{
    QFETCH(Qt::Key, key);
    Scene scene;
    QTest::keyPress(&scene.button, key);
    QVERIFY(scene.looksPressed());
    QCOMPARE(scene.triggered.count(), 0);
    QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(&scene.button, &again);
    QTest::keyRelease(&scene.button, key);
    QTRY_COMPARE(scene.triggered.count(), 1);
    QVERIFY(scene.looksNormal());
    QApplication::sendEvent(&scene.button, &again); // of a key that is still held
    QVERIFY(!scene.button.isDown());
}

void TestStartButton::showsTheFocusThatCameByKeyboard()
{
    Scene scene;
    QVERIFY(QTest::qWaitForWindowActive(&scene.page));
    QVERIFY(scene.looksNormal()); // though a window that opens gives it the focus
    scene.button.clearFocus();
    scene.button.setFocus(Qt::TabFocusReason);
    QVERIFY(scene.button.hasFocus());
    const QImage focused = scene.picture();
    const int difference =
        largestDifference(focused, scene.drawing(QStringLiteral("circleButton")));
    QVERIFY2(difference > 40, qPrintable(QString::number(difference)));
    scene.button.clearFocus();
    QVERIFY(scene.looksNormal());
    scene.button.setFocus(Qt::MouseFocusReason);
    QVERIFY(scene.looksNormal());
}

void TestStartButton::fadesAsAWhole()
{
    Scene scene;
    scene.button.mainText().setText(QStringLiteral("Clean"));
    const int opaque = largestDifference(scene.picture(), scene.blank());
    setAlphaValue(scene.button, 0.5);
    const int half = largestDifference(scene.picture(), scene.blank());
    QVERIFY2(qAbs(half - opaque / 2) <= 2, qPrintable(QString::number(half)));
    setAlphaValue(scene.button, 0);
    QCOMPARE(largestDifference(scene.picture(), scene.blank()), 0);
}

void TestStartButton::isReadOutAsAButton()
{
    Scene scene;
    QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&scene.button);
    QVERIFY(reader);
    QCOMPARE(reader->role(), QAccessible::Button);
    scene.button.mainText().setText(QStringLiteral("Clean"));
    QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("Clean"));
    scene.button.detailText().setText(QStringLiteral("Click to free"));
    QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("Clean, Click to free"));
    scene.button.detailText().hide();
    QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("Clean"));
    scene.button.detailText().show();
    QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("Clean, Click to free"));

    reader->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(scene.triggered.count(), 1);
}

void TestStartButton::paintsWithoutThePool()
{
    QWidget window;
    window.setPalette(QPalette(Qt::white));
    window.resize(600, 600);
    StartButton button(&window);
    button.resize(600, 600); // as many rows as at three times the scale
    button.setEnabled(true);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseMove(&button, {300, 300}); // with the ring of the pointer
    window.grab();                         // draws the disc for this size, once
    const HeldPool pool;
    const QImage seen = window.grab().toImage();
    QVERIFY(!pool.wasWaitedFor());
    QVERIFY(seen.pixel(seen.width() / 2, seen.height() / 30) !=
            seen.pixel(2, 2)); // disc and ground
}

VANTOR_GUI_TEST_MAIN(TestStartButton)
#include "tst_StartButton.moc"
