#include "tests/platform/sheet/Question.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>

/// Which keys press a button that destroys, and which answer its sheet.
class TestDestructivePressKeys final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void takesNoKeyThatWasPressedEarly();
    void takesNoKeyThatRepeatsItself();
    void takesNoMnemonicInHaste();
    void answersNothingWhileReturnIsHeld();
    void cancelsAtOnce_data();
    void cancelsAtOnce();
};

namespace {

void sendKey(QWidget &widget, QEvent::Type type, Qt::Key key, bool repeats)
{
    QKeyEvent event(type, key, {}, {}, repeats);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

void TestDestructivePressKeys::takesNoKeyThatWasPressedEarly()
{
    Question question;
    QAbstractButton &destroys = question.destroys();
    destroys.setFocus();
    QTest::keyPress(&destroys, Qt::Key_Space);
    QVERIFY(!destroys.isDown());
    for (int repeat = 0; repeat < 40; ++repeat) {
        question.guard().pass(kReadingTime);
        sendKey(destroys, QEvent::KeyPress, Qt::Key_Space, true);
    }
    QTest::keyRelease(&destroys, Qt::Key_Space);
    QCOMPARE(question.answered(), kNoAnswer);
    question.guard().pass(kReadingTime);
    QTest::keyClick(&destroys, Qt::Key_Space);
    QCOMPARE(question.answered(), kDelete);
}

/// While a key is held, no other key presses the button either.
void TestDestructivePressKeys::takesNoKeyThatRepeatsItself()
{
    Question question;
    question.guard().pass(kReadingTime);
    QVERIFY(question.guard().takesPresses());
    sendKey(question.destroys(), QEvent::KeyPress, Qt::Key_Space, true);
    QVERIFY(!question.guard().takesPresses());
    sendKey(question.destroys(), QEvent::KeyPress, Qt::Key_Select, false);
    sendKey(question.destroys(), QEvent::KeyRelease, Qt::Key_Select, false);
    QCOMPARE(question.answered(), kNoAnswer);
}

void TestDestructivePressKeys::takesNoMnemonicInHaste()
{
    Question question;
    const QSignalSpy clicked(&question.destroys(), &QAbstractButton::clicked);
    QWindow *const window = question.host.window.windowHandle();
    QTest::keyClick(window, Qt::Key_D, Qt::AltModifier);
    QVERIFY(!question.destroys().isDown());
    question.guard().pass(kReadingTime);
    QTest::simulateEvent(window, true, Qt::Key_D, Qt::AltModifier, {}, true); // still held
    QVERIFY(!question.destroys().isDown());
    question.guard().pass(kReadingTime);
    QTest::keyClick(window, Qt::Key_D, Qt::AltModifier);
    QTRY_COMPARE(question.answer, kDelete);
    QCOMPARE(clicked.size(), 1);
}

void TestDestructivePressKeys::answersNothingWhileReturnIsHeld()
{
    Question question;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        for (QAbstractButton *focused : {&question.destroys(), &question.button("Cancel")}) {
            focused->setFocus();
            for (int repeat = 0; repeat < 40; ++repeat) {
                question.guard().pass(kReadingTime);
                sendKey(*focused, QEvent::KeyPress, key, true);
            }
            sendKey(*focused, QEvent::KeyRelease, key, false);
        }
    }
    QCOMPARE(question.answered(), kNoAnswer);
}

void TestDestructivePressKeys::cancelsAtOnce_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addRow("Return") << Qt::Key_Return;
    QTest::addRow("Enter") << Qt::Key_Enter;
    QTest::addRow("Escape") << Qt::Key_Escape;
    QTest::addRow("Space") << Qt::Key_Space;
}

void TestDestructivePressKeys::cancelsAtOnce()
{
    QFETCH(const Qt::Key, key);
    Question question;
    QTest::keyClick(question.host.window.windowHandle(), key);
    QTRY_COMPARE(question.answer, kCancel);
}

VANTOR_GUI_TEST_MAIN(TestDestructivePressKeys)
#include "tst_DestructivePressKeys.moc"
