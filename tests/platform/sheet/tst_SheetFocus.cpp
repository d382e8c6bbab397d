#include "platform/sheet/Sheet.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <functional>

/// A sheet keeps the keyboard's focus while it is up, and hands it on when it goes.
class TestSheetFocus final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void takesTheFocus();
    void trapsTab();
    void sendsTheFocusBackIn();
    void returnsTheFocusToWhereItWas();
    void returnsNoFocusWhereThereWasNone();
    void givesTheFocusToWhatAskedForItMeanwhile_data();
    void givesTheFocusToWhatAskedForItMeanwhile();
    void givesTheFocusToNothingThatIsGone();
    void knowsWhatAskedForTheFocusOfAWindowThatIsNotActive();
};

namespace {

void press(QWidget &window, int key, Qt::KeyboardModifiers modifiers = {})
{
    QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
}

} // namespace

void TestSheetFocus::takesTheFocus()
{
    SheetHost host;
    SheetPanel sheet;
    host.behind->setFocus();
    presentSheet(host.window, sheet.panel);
    QCOMPARE(QApplication::focusWidget(), sheet.first);

    SheetPanel wishful;
    wishful.second->setFocus();
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    presentSheet(host.window, wishful.panel);
    QCOMPARE(QApplication::focusWidget(), wishful.second);
}

void TestSheetFocus::trapsTab()
{
    SheetHost host;
    SheetPanel sheet;
    sheet.standard->setEnabled(false);
    presentSheet(host.window, sheet.panel);
    const QList<QWidget *> round{sheet.second, sheet.plain, sheet.first, sheet.second};
    for (QWidget *next : round) {
        press(host.window, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
    const QList<QWidget *> back{sheet.first, sheet.plain, sheet.second};
    for (QWidget *next : back) {
        press(host.window, Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
}

void TestSheetFocus::sendsTheFocusBackIn()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    sheet.second->setFocus();
    host.behind->setFocus();
    QCOMPARE(QApplication::focusWidget(), sheet.second);
}

void TestSheetFocus::returnsTheFocusToWhereItWas()
{
    SheetHost host;
    SheetPanel sheet;
    host.other->setFocus();
    presentSheet(host.window, sheet.panel);
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(QApplication::focusWidget(), host.other);
}

void TestSheetFocus::returnsNoFocusWhereThereWasNone()
{
    SheetHost host;
    if (QWidget *const focus = host.window.focusWidget())
        focus->clearFocus();
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QVERIFY(!host.behind->hasFocus());
    QVERIFY(!host.other->hasFocus());
}

void TestSheetFocus::givesTheFocusToWhatAskedForItMeanwhile_data()
{
    using Leave = std::function<void(SheetHost &)>;
    QTest::addColumn<Leave>("leave");
    QTest::addRow("the former is hidden") << Leave([](SheetHost &host) { host.behind->hide(); });
    QTest::addRow("the former is gone") << Leave([](SheetHost &host) { delete host.behind; });
    QTest::addRow("the former is disabled")
        << Leave([](SheetHost &host) { host.behind->setEnabled(false); });
}

/// A page that comes in behind a sheet takes the place of the one that had the focus.
void TestSheetFocus::givesTheFocusToWhatAskedForItMeanwhile()
{
    QFETCH(std::function<void(SheetHost &)>, leave);
    SheetHost host;
    SheetPanel sheet;
    host.behind->setFocus();
    presentSheet(host.window, sheet.panel);
    leave(host);
    host.other->setFocus();
    QCOMPARE(QApplication::focusWidget(), sheet.first);
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(QApplication::focusWidget(), host.other);
    QSignalSpy pressed(host.other, &QPushButton::clicked);
    press(host.window, Qt::Key_Space);
    QCOMPARE(pressed.size(), 1);
}

void TestSheetFocus::givesTheFocusToNothingThatIsGone()
{
    SheetHost host;
    SheetPanel sheet;
    host.behind->setFocus();
    presentSheet(host.window, sheet.panel);
    host.other->setFocus();
    host.behind->hide();
    host.other->hide();
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QVERIFY(!QApplication::focusWidget());
}

void TestSheetFocus::knowsWhatAskedForTheFocusOfAWindowThatIsNotActive()
{
    SheetHost host;
    SheetPanel sheet;
    host.behind->setFocus();
    const SheetHost elsewhere;
    QVERIFY(!host.window.isActiveWindow());
    presentSheet(host.window, sheet.panel);
    host.behind->hide();
    host.other->setFocus();
    const QPoint place = sheet.plain->mapTo(&host.window, sheet.plain->rect().center());
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(host.window.focusWidget(), sheet.plain);
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(host.window.focusWidget(), host.other);
}

VANTOR_GUI_TEST_MAIN(TestSheetFocus)
#include "tst_SheetFocus.moc"
