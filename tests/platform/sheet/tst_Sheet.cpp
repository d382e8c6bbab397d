#include "platform/sheet/Sheet.h"

#include "platform/sheet/SheetOverlay.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <memory>

/// How sheets come, wait and go; tst_SheetInput tests what they do with mouse and keyboard.
class TestSheet final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void hangsFromTheMiddleOfTheTopEdge();
    void comesOutLowerWhereTheWindowAsksForIt();
    void followsTheWindow();
    void neverOutgrowsTheWindow();
    void takesTheSizeHintOfAPanelWithoutASize();
    void tellsItsResultWhenItIsGone();
    void endsOnce();
    void waitsForTheOneBefore();
    void canBeTakenFromTheQueue();
    void refusesAPanelThatIsUpOrWaiting();
    void showsTheNextFromACompletion();
    void givesThePanelBack();
    void leavesThePanelToItsOwnerWhenTheWindowDies();
    void goesWithItsPanel();
    void skipsAPanelThatDiedWaiting();
    void survivesACompletionThatDeletesTheWindow();
    void belongsToTheWindowOfTheWidgetItIsAskedFor();
    void isADialogToAssistiveTools();
    void ignoresAPanelThatIsNotUp();
};

namespace {

QRect frameIn(const SheetHost &host, const QWidget &panel)
{
    return {panel.mapTo(&host.window, QPoint()), panel.size()};
}

} // namespace

void TestSheet::hangsFromTheMiddleOfTheTopEdge()
{
    SheetHost host;
    SheetPanel sheet;
    QVERIFY(presentSheet(host.window, sheet.panel));
    QVERIFY(hasSheet(host.window));
    QCOMPARE(sheetPanel(host.window), &sheet.panel);
    QVERIFY(sheet.panel.isVisible());
    QCOMPARE(frameIn(host, sheet.panel), QRect(150, 0, 300, 160));
}

void TestSheet::comesOutLowerWhereTheWindowAsksForIt()
{
    SheetHost host;
    QCOMPARE(sheetDrop(host.window), 0);
    setSheetDrop(host.window, 30);
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    QCOMPARE(frameIn(host, sheet.panel), QRect(150, 30, 300, 160));
}

void TestSheet::followsTheWindow()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    host.window.resize(800, 560);
    QCOMPARE(frameIn(host, sheet.panel), QRect(250, 0, 300, 160));
    const SheetOverlay *const overlay = host.window.findChild<SheetOverlay *>();
    QCOMPARE(overlay->geometry(), host.window.rect());
}

void TestSheet::neverOutgrowsTheWindow()
{
    SheetHost host;
    SheetPanel sheet;
    sheet.panel.resize(2000, 2000);
    presentSheet(host.window, sheet.panel);
    QVERIFY(host.window.rect().contains(frameIn(host, sheet.panel)));
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(sheet.panel.size(), QSize(2000, 2000));
}

void TestSheet::takesTheSizeHintOfAPanelWithoutASize()
{
    SheetHost host;
    QLabel panel(QStringLiteral("Some text"));
    panel.setMargin(20);
    presentSheet(host.window, panel);
    QCOMPARE(panel.size(), panel.sizeHint());
}

void TestSheet::tellsItsResultWhenItIsGone()
{
    SheetHost host;
    SheetPanel sheet;
    QList<int> results;
    bool wasUp = true;
    presentSheet(host.window, sheet.panel, [&](int result) {
        results.append(result);
        wasUp = hasSheet(host.window) || sheet.panel.isVisible();
    });
    endSheet(sheet.panel, 7);
    QVERIFY(results.isEmpty()); // never called inside the call
    QTRY_COMPARE(results, QList<int>{7});
    QVERIFY(!wasUp);
}

void TestSheet::endsOnce()
{
    SheetHost host;
    SheetPanel sheet;
    QList<int> results;
    presentSheet(host.window, sheet.panel, [&](int result) { results.append(result); });
    endSheet(sheet.panel, kSheetAccepted);
    endSheet(sheet.panel, kSheetCancelled);
    QTRY_VERIFY(!hasSheet(host.window));
    endSheet(sheet.panel, kSheetCancelled);
    QCoreApplication::processEvents();
    QCOMPARE(results, QList<int>{kSheetAccepted});
}

void TestSheet::waitsForTheOneBefore()
{
    SheetHost host;
    SheetPanel one;
    SheetPanel two;
    QStringList ended;
    presentSheet(host.window, one.panel, [&](int) { ended.append(QStringLiteral("one")); });
    presentSheet(host.window, two.panel, [&](int) { ended.append(QStringLiteral("two")); });
    QVERIFY(!two.panel.isVisible());
    endSheet(one.panel);
    QTRY_COMPARE(sheetPanel(host.window), &two.panel);
    QVERIFY(two.panel.isVisible());
    QCOMPARE(ended, QStringList{QStringLiteral("one")});
    endSheet(two.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(ended, (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
}

void TestSheet::canBeTakenFromTheQueue()
{
    SheetHost host;
    SheetPanel one;
    SheetPanel two;
    bool isTold = false;
    presentSheet(host.window, one.panel);
    presentSheet(host.window, two.panel, [&](int) { isTold = true; });
    endSheet(two.panel);
    endSheet(one.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCoreApplication::processEvents();
    QVERIFY(!two.panel.isVisible());
    QVERIFY(!isTold);
}

void TestSheet::refusesAPanelThatIsUpOrWaiting()
{
    SheetHost host;
    SheetHost elsewhere;
    SheetPanel one;
    SheetPanel two;
    QVERIFY(presentSheet(host.window, one.panel));
    QVERIFY(!presentSheet(host.window, one.panel));
    QVERIFY(!presentSheet(elsewhere.window, one.panel));
    QVERIFY(presentSheet(host.window, two.panel));
    QVERIFY(!presentSheet(host.window, two.panel));
    QVERIFY(!hasSheet(elsewhere.window));
}

void TestSheet::showsTheNextFromACompletion()
{
    SheetHost host;
    SheetPanel one;
    SheetPanel two;
    presentSheet(host.window, one.panel,
                 [&](int) { QVERIFY(presentSheet(host.window, two.panel)); });
    endSheet(one.panel);
    QTRY_COMPARE(sheetPanel(host.window), &two.panel);
    endSheet(two.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QVERIFY(presentSheet(host.window, one.panel)); // and the first one once more
}

void TestSheet::givesThePanelBack()
{
    SheetHost host;
    QWidget owner;
    SheetPanel sheet;
    sheet.panel.setParent(&owner);
    presentSheet(host.window, sheet.panel);
    QVERIFY(host.window.isAncestorOf(&sheet.panel));
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(sheet.panel.parentWidget(), &owner);
    QVERIFY(sheet.panel.isHidden());
    sheet.panel.setParent(nullptr);
}

void TestSheet::leavesThePanelToItsOwnerWhenTheWindowDies()
{
    auto host = std::make_unique<SheetHost>();
    SheetPanel sheet;
    bool isTold = false;
    presentSheet(host->window, sheet.panel, [&](int) { isTold = true; });
    host.reset();
    QCOMPARE(sheet.panel.parentWidget(), nullptr);
    QVERIFY(!isTold);
    SheetHost next;
    QVERIFY(presentSheet(next.window, sheet.panel));
}

void TestSheet::goesWithItsPanel()
{
    SheetHost host;
    auto sheet = std::make_unique<SheetPanel>();
    SheetPanel next;
    bool isTold = false;
    presentSheet(host.window, sheet->panel, [&](int) { isTold = true; });
    presentSheet(host.window, next.panel);
    sheet.reset();
    QCOMPARE(sheetPanel(host.window), &next.panel);
    QVERIFY(!isTold);
}

void TestSheet::skipsAPanelThatDiedWaiting()
{
    SheetHost host;
    SheetPanel one;
    auto two = std::make_unique<SheetPanel>();
    SheetPanel three;
    presentSheet(host.window, one.panel);
    presentSheet(host.window, two->panel);
    presentSheet(host.window, three.panel);
    two.reset();
    endSheet(one.panel);
    QTRY_COMPARE(sheetPanel(host.window), &three.panel);
}

void TestSheet::survivesACompletionThatDeletesTheWindow()
{
    auto host = std::make_unique<SheetHost>();
    SheetPanel sheet;
    SheetPanel waiting;
    presentSheet(host->window, sheet.panel, [&](int) { host.reset(); });
    presentSheet(host->window, waiting.panel);
    endSheet(sheet.panel);
    QTRY_VERIFY(!host);
    QVERIFY(!waiting.panel.isVisible());
}

void TestSheet::belongsToTheWindowOfTheWidgetItIsAskedFor()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(*host.behind, sheet.panel);
    QVERIFY(hasSheet(host.window));
    QVERIFY(hasSheet(*host.other));
}

void TestSheet::isADialogToAssistiveTools()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    SheetFrame &frame = host.window.findChild<SheetOverlay *>()->frame();
    QAccessibleInterface *const dialog = QAccessible::queryAccessibleInterface(&frame);
    QVERIFY(dialog);
    QCOMPARE(dialog->role(), QAccessible::Dialog);
    QVERIFY(dialog->state().modal);
    QCOMPARE(dialog->text(QAccessible::Name), QStringLiteral("A question"));
}

void TestSheet::ignoresAPanelThatIsNotUp()
{
    SheetHost host;
    SheetPanel sheet;
    SheetPanel stranger;
    presentSheet(host.window, sheet.panel);
    endSheet(stranger.panel);
    QCOMPARE(sheetPanel(host.window), &sheet.panel);
}

VANTOR_GUI_TEST_MAIN(TestSheet)
#include "tst_Sheet.moc"
