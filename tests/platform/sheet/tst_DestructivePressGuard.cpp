#include "platform/sheet/SheetSlide.h"
#include "tests/platform/sheet/Question.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QStyleHints>

using std::chrono::milliseconds;

/// Which clicks on a button that destroys count, and when.
class TestDestructivePressGuard final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void takesNoSecondClickInHaste_data();
    void takesNoSecondClickInHaste();
    void takesNoClickOnTheButtonInHaste_data();
    void takesNoClickOnTheButtonInHaste();
    void waitsByItself();
    void doesNotCountWhileTheProgramIsHeldUp();
    void waitsAsLongAsTheDesktopsDoubleClick();
    void takesNoPressThatBeganEarly();
    void takesNoSecondHalfOfADoubleClick();
    void takesNoHammering();
    void waitsUntilTheSheetStands();
    void beginsAnewWhenTheWindowChanges_data();
    void beginsAnewWhenTheWindowChanges();
    void obeysAssistiveToolsAtOnce();
    void leavesTheOtherButtonsAlone();
    void looksTheSameAllTheTime();
    void keepsTheFocusFromAnEarlyClick();
};

namespace {

void sendMouse(QWidget &widget, QEvent::Type type)
{
    const QPointF place = widget.rect().center();
    const bool isRelease = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, place, widget.mapToGlobal(place), Qt::LeftButton,
                      isRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &event);
}

/// Fifty places all over the window, close together where the buttons of a sheet come up.
QList<QPoint> places(const Question &question)
{
    QList<QPoint> all;
    for (int y = 45; y < question.host.window.height(); y += 100)
        for (int x = 60; x < question.host.window.width(); x += 120)
            all.append({x, y});
    const QPoint middle = question.placeOf(question.destroys());
    for (int y = -20; y <= 20; y += 10)
        for (int x = -48; x <= 48; x += 24)
            all.append(middle + QPoint(x, y));
    return all;
}

void addPauses()
{
    QTest::addColumn<int>("pause"); // between the clicks
    for (int pause = 50; pause <= 900; pause += 50)
        QTest::addRow("%d ms", pause) << pause;
}

} // namespace

void TestDestructivePressGuard::takesNoSecondClickInHaste_data()
{
    addPauses();
}

/// The user clicks twice where the pointer is; the first click asks the question.
void TestDestructivePressGuard::takesNoSecondClickInHaste()
{
    QFETCH(const int, pause);
    Question question;
    const QList<QPoint> all = places(question);
    QCOMPARE(all.size(), 50);
    for (const QPoint place : all) {
        QTest::keyClick(question.host.window.windowHandle(), Qt::Key_Escape);
        QTRY_VERIFY(!hasSheet(question.host.window));
        QCursor::setPos(question.host.window.mapToGlobal(place));
        question.ask();
        question.guard().pass(milliseconds(pause));
        question.click(place);
        const int answer = question.answered();
        QVERIFY2(answer == kNoAnswer || answer == kCancel,
                 qPrintable(QStringLiteral("at %1, %2").arg(place.x()).arg(place.y())));
        if (!hasSheet(question.host.window))
            question.ask();
    }
    QCursor::setPos({});
}

void TestDestructivePressGuard::takesNoClickOnTheButtonInHaste_data()
{
    addPauses();
}

/// The second click finds the button: the hand has moved, or it is a finger.
void TestDestructivePressGuard::takesNoClickOnTheButtonInHaste()
{
    QFETCH(const int, pause);
    Question question;
    question.guard().pass(milliseconds(pause));
    question.clickDelete();
    QCOMPARE(question.answered(), milliseconds(pause) > kWait ? kDelete : kNoAnswer);
    if (question.answer == kDelete)
        return;
    question.guard().pass(kReadingTime);
    QCOMPARE(question.answered(), kNoAnswer); // the early one does not become one
    question.clickDelete();
    QCOMPARE(question.answered(), kDelete);
}

void TestDestructivePressGuard::waitsByItself()
{
    SheetHost host;
    QElapsedTimer sinceAsked;
    sinceAsked.start();
    presentAlert(host.window, {.messageText = QStringLiteral("Deleting")});
    QTRY_VERIFY(pressGuard(host.window)->takesPresses());
    QVERIFY2(sinceAsked.elapsed() >= kWait.count(),
             qPrintable(QString::number(sinceAsked.elapsed())));
}

/// What is pressed while the program is held up is delivered when it goes on.
void TestDestructivePressGuard::doesNotCountWhileTheProgramIsHeldUp()
{
    SheetHost host;
    presentAlert(host.window, {.messageText = QStringLiteral("Deleting")});
    for (const QDeadlineTimer end(2 * kWait); !end.hasExpired();) {
    }
    QCoreApplication::processEvents();
    QVERIFY(!pressGuard(host.window)->takesPresses());
}

void TestDestructivePressGuard::waitsAsLongAsTheDesktopsDoubleClick()
{
    QStyleHints &hints = *QGuiApplication::styleHints();
    QCOMPARE(hints.mouseDoubleClickInterval(), kDoubleClick);
    hints.setMouseDoubleClickInterval(2000);
    Question question;
    hints.setMouseDoubleClickInterval(kDoubleClick);
    question.guard().pass(milliseconds(2250));
    QVERIFY(!question.guard().takesPresses());
    question.guard().pass(milliseconds(50));
    QVERIFY(question.guard().takesPresses());
}

void TestDestructivePressGuard::takesNoPressThatBeganEarly()
{
    Question question;
    QWindow *const window = question.host.window.windowHandle();
    const QPoint place = question.placeOf(question.destroys());
    QTest::mousePress(window, Qt::LeftButton, {}, place);
    QVERIFY(!question.destroys().isDown());
    question.guard().pass(kReadingTime);
    QTest::mouseMove(window, place + QPoint(1, 0));
    QTest::mouseRelease(window, Qt::LeftButton, {}, place);
    QCOMPARE(question.answered(), kNoAnswer);
    question.clickDelete();
    QCOMPARE(question.answered(), kDelete);
}

void TestDestructivePressGuard::takesNoSecondHalfOfADoubleClick()
{
    Question question;
    question.clickDelete();
    question.guard().pass(kReadingTime);
    sendMouse(question.destroys(), QEvent::MouseButtonDblClick);
    sendMouse(question.destroys(), QEvent::MouseButtonRelease);
    QCOMPARE(question.answered(), kNoAnswer);
}

void TestDestructivePressGuard::takesNoHammering()
{
    Question question;
    for (int click = 0; click < 20; ++click) {
        question.clickDelete();
        QCOMPARE(question.answered(), kNoAnswer);
        question.guard().pass(milliseconds(kDoubleClick));
    }
    for (int click = 0; click < 20; ++click) { // beside the button, then on it
        question.click(question.placeOf(*sheetPanel(question.host.window)));
        question.guard().pass(milliseconds(kDoubleClick));
    }
    question.clickDelete();
    QCOMPARE(question.answered(), kNoAnswer);
    question.guard().pass(milliseconds(kDoubleClick + 50));
    question.clickDelete();
    QCOMPARE(question.answered(), kDelete);
}

void TestDestructivePressGuard::waitsUntilTheSheetStands()
{
    QStyle *const moving = QStyleFactory::create(QStringLiteral("Fusion"));
    Question question;
    QTest::keyClick(question.host.window.windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!hasSheet(question.host.window));
    moving->setParent(&question.host.window);
    question.host.window.setStyle(moving);
    question.ask();
    question.guard().pass(kReadingTime);
    QVERIFY(!question.guard().takesPresses());
    QSignalSpy stands(question.host.window.findChild<SheetSlide *>(), &SheetSlide::finished);
    QVERIFY(stands.wait());
    question.guard().pass(kWait);
    QVERIFY(!question.guard().takesPresses());
    question.guard().pass(milliseconds(50));
    QVERIFY(question.guard().takesPresses());
    endSheet(*sheetPanel(question.host.window));
    QVERIFY(!question.guard().takesPresses()); // on its way out
}

void TestDestructivePressGuard::beginsAnewWhenTheWindowChanges_data()
{
    QTest::addColumn<std::function<void(QWidget &)>>("change");
    QTest::addRow("another size") << std::function<void(QWidget &)>(
        [](QWidget &window) { window.resize(window.size() + QSize(40, 40)); });
    QTest::addRow("shown again") << std::function<void(QWidget &)>([](QWidget &window) {
        window.hide();
        window.show();
    });
    QTest::addRow("back in front") << std::function<void(QWidget &)>([](QWidget &window) {
        QEvent active(QEvent::WindowActivate);
        QApplication::sendEvent(&window, &active);
    });
}

void TestDestructivePressGuard::beginsAnewWhenTheWindowChanges()
{
    QFETCH(const std::function<void(QWidget &)>, change);
    Question question;
    question.guard().pass(kReadingTime);
    QVERIFY(question.guard().takesPresses());
    change(question.host.window);
    QVERIFY(!question.guard().takesPresses());
    question.guard().pass(kWait);
    QVERIFY(!question.guard().takesPresses());
}

void TestDestructivePressGuard::obeysAssistiveToolsAtOnce()
{
    Question question;
    QAccessibleInterface *const button =
        QAccessible::queryAccessibleInterface(&question.destroys());
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QTRY_COMPARE(question.answer, kDelete);
}

void TestDestructivePressGuard::leavesTheOtherButtonsAlone()
{
    Question question;
    question.click(question.placeOf(question.button("Cancel")));
    QTRY_COMPARE(question.answer, kCancel);
}

void TestDestructivePressGuard::looksTheSameAllTheTime()
{
    Question question;
    const QImage first = question.destroys().grab().toImage();
    sendMouse(question.destroys(), QEvent::MouseButtonPress);
    QCOMPARE(question.destroys().grab().toImage(), first);
    sendMouse(question.destroys(), QEvent::MouseButtonRelease);
    question.guard().pass(kReadingTime);
    QVERIFY(question.guard().takesPresses());
    QCOMPARE(question.destroys().grab().toImage(), first);
}

/// Otherwise the space bar, pressed next, would destroy.
void TestDestructivePressGuard::keepsTheFocusFromAnEarlyClick()
{
    Question question;
    question.clickDelete();
    QCOMPARE(QApplication::focusWidget(), &question.button("Cancel"));
}

VANTOR_GUI_TEST_MAIN(TestDestructivePressGuard)
#include "tst_DestructivePressGuard.moc"
