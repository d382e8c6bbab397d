#include "platform/sheet/SheetOverlay.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QShortcut>
#include <QSignalSpy>
#include <QWheelEvent>

/// A sheet has the mouse and the keyboard of its window to itself.
class TestSheetInput final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void keepsTheMouseFromTheWindow();
    void keepsInputFromTheWindowItself_data();
    void keepsInputFromTheWindowItself();
    void letsTheMouseThroughAgain();
    void blocksTheShortcutsOfTheWindow_data();
    void blocksTheShortcutsOfTheWindow();
    void blocksTheMenuBarsOwnKey();
    void keepsItsOwnMnemonics();
    void takesAKeyThatIsAShortcutBehindIt();
    void leavesTheShortcutsOfItsActions();
    void leavesTheShortcutsOfOtherWindows();
    void isCancelledByEscape();
    void asksThePanelHowToCancel();
    void pressesTheDefaultButtonOnEnter_data();
    void pressesTheDefaultButtonOnEnter();
    void keepsTheWindowFromClosing();
    void takesNoKeyOnItsWayOut();
    void refusesWhatIsDraggedOverIt();
};

namespace {

/// Clicks as the window system does: into the window, whichever widget then gets the click.
void clickAt(QWidget &window, QWidget &target)
{
    const QPoint place = target.mapTo(&window, target.rect().center());
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, place);
}

/// Counts what reaches the object that it filters.
class EventCounter final : public QObject
{
public:
    explicit EventCounter(QEvent::Type type) : m_type(type) {}

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == m_type;
        return false;
    }

private:
    QEvent::Type m_type;
};

void press(QWidget &window, int key, Qt::KeyboardModifiers modifiers = {})
{
    QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
}

} // namespace

void TestSheetInput::keepsTheMouseFromTheWindow()
{
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy behind(host.behind, &QPushButton::clicked);
    QSignalSpy plain(sheet.plain, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    clickAt(host.window, *host.behind);
    clickAt(host.window, *host.window.menuBar());
    QVERIFY(behind.isEmpty());
    QVERIFY(!QApplication::activePopupWidget());
    clickAt(host.window, *sheet.plain);
    QCOMPARE(plain.size(), 1);
}

void TestSheetInput::keepsInputFromTheWindowItself_data()
{
    QTest::addColumn<int>("type");
    QTest::addRow("press") << int(QEvent::MouseButtonPress);
    QTest::addRow("move") << int(QEvent::MouseMove);
    QTest::addRow("release") << int(QEvent::MouseButtonRelease);
    QTest::addRow("double click") << int(QEvent::MouseButtonDblClick);
    QTest::addRow("wheel") << int(QEvent::Wheel);
    QTest::addRow("menu") << int(QEvent::ContextMenu);
    QTest::addRow("key press") << int(QEvent::KeyPress);
    QTest::addRow("key release") << int(QEvent::KeyRelease);
}

/// An event that a widget does not accept goes on to its parent, up to the window.
void TestSheetInput::keepsInputFromTheWindowItself()
{
    QFETCH(int, type);
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    EventCounter counter(static_cast<QEvent::Type>(type));
    host.window.installEventFilter(&counter);
    const QPoint place(5, 450);
    const QPoint onScreen = host.window.mapToGlobal(place);
    QWidget *const overlay = host.window.findChild<SheetOverlay *>();
    QTest::mousePress(overlay, Qt::LeftButton, {}, place);
    QTest::mouseMove(overlay, place + QPoint(1, 1));
    QTest::mouseRelease(overlay, Qt::LeftButton, {}, place);
    QTest::mouseDClick(overlay, Qt::LeftButton, {}, place);
    QWheelEvent wheel(place, onScreen, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(overlay, &wheel);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, place, onScreen);
    QApplication::sendEvent(overlay, &menu);
    QTest::keyClick(overlay, Qt::Key_F9);
    QCOMPARE(counter.count, 0);
}

void TestSheetInput::letsTheMouseThroughAgain()
{
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy behind(host.behind, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    clickAt(host.window, *host.behind);
    QCOMPARE(behind.size(), 1);
}

void TestSheetInput::blocksTheShortcutsOfTheWindow_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifier");
    QTest::addRow("action of a menu") << int(Qt::Key_K) << int(Qt::ControlModifier);
    QTest::addRow("action for the whole program") << int(Qt::Key_J) << int(Qt::ControlModifier);
    QTest::addRow("mnemonic of a button") << int(Qt::Key_B) << int(Qt::AltModifier);
    QTest::addRow("mnemonic of a menu") << int(Qt::Key_F) << int(Qt::AltModifier);
    QTest::addRow("shortcut object") << int(Qt::Key_L) << int(Qt::ControlModifier);
}

void TestSheetInput::blocksTheShortcutsOfTheWindow()
{
    QFETCH(int, key);
    QFETCH(int, modifier);
    SheetHost host;
    SheetPanel sheet;
    int fired = 0;
    const auto count = [&fired] { ++fired; };
    QAction everywhere;
    everywhere.setShortcut(QKeySequence(QStringLiteral("Ctrl+J")));
    everywhere.setShortcutContext(Qt::ApplicationShortcut);
    host.window.addAction(&everywhere);
    QShortcut object(QKeySequence(QStringLiteral("Ctrl+L")), &host.window);
    connect(&object, &QShortcut::activated, &host.window, count);
    connect(&everywhere, &QAction::triggered, &host.window, count);
    connect(host.action, &QAction::triggered, &host.window, count);
    connect(host.behind, &QPushButton::clicked, &host.window, count);
    connect(host.window.menuBar()->actions().constFirst()->menu(), &QMenu::aboutToShow,
            &host.window, count);
    presentSheet(host.window, sheet.panel);
    press(host.window, key, Qt::KeyboardModifiers(modifier));
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QCOMPARE(fired, 0);
    press(host.window, key, Qt::KeyboardModifiers(modifier));
    QTRY_COMPARE(fired, 1); // a mnemonic's click comes a moment later
    if (QWidget *const menu = QApplication::activePopupWidget())
        menu->close();
}

void TestSheetInput::blocksTheMenuBarsOwnKey()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    QTest::keyPress(host.window.windowHandle(), Qt::Key_Alt);
    QTest::keyRelease(host.window.windowHandle(), Qt::Key_Alt);
    QCOMPARE(QApplication::focusWidget(), sheet.first);
    press(host.window, Qt::Key_Down);
    QVERIFY(!QApplication::activePopupWidget());
}

void TestSheetInput::keepsItsOwnMnemonics()
{
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy plain(sheet.plain, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    press(host.window, Qt::Key_P, Qt::AltModifier);
    QTRY_COMPARE(plain.size(), 1);
}

void TestSheetInput::takesAKeyThatIsAShortcutBehindIt()
{
    SheetHost host;
    SheetPanel sheet;
    QShortcut preview(QKeySequence(Qt::Key_Space), &host.window);
    QSignalSpy previewed(&preview, &QShortcut::activated);
    QSignalSpy plain(sheet.plain, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    sheet.plain->setFocus();
    press(host.window, Qt::Key_Space);
    QCOMPARE(plain.size(), 1);
    QVERIFY(previewed.isEmpty());
}

/// An action may have no parent: only the widget that shows it counts.
void TestSheetInput::leavesTheShortcutsOfItsActions()
{
    SheetHost host;
    SheetPanel sheet;
    QAction action;
    action.setShortcut(QKeySequence(QStringLiteral("Ctrl+J")));
    sheet.panel.addAction(&action);
    const QSignalSpy triggered(&action, &QAction::triggered);
    presentSheet(host.window, sheet.panel);
    press(host.window, Qt::Key_J, Qt::ControlModifier);
    QCOMPARE(triggered.size(), 1);
}

void TestSheetInput::leavesTheShortcutsOfOtherWindows()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    SheetHost elsewhere;
    QSignalSpy acted(elsewhere.action, &QAction::triggered);
    press(elsewhere.window, Qt::Key_K, Qt::ControlModifier);
    QCOMPARE(acted.size(), 1);
}

void TestSheetInput::isCancelledByEscape()
{
    SheetHost host;
    SheetPanel sheet;
    int result = -1;
    presentSheet(host.window, sheet.panel, [&result](int ended) { result = ended; });
    press(host.window, Qt::Key_Escape);
    QTRY_COMPARE(result, kSheetCancelled);
}

void TestSheetInput::asksThePanelHowToCancel()
{
    SheetHost host;
    SheetPanel sheet;
    int asked = 0;
    presentSheet(host.window, sheet.panel, {}, [&asked] { ++asked; });
    press(host.window, Qt::Key_Escape);
    QCOMPARE(asked, 1);
    QVERIFY(hasSheet(host.window));
}

void TestSheetInput::pressesTheDefaultButtonOnEnter_data()
{
    QTest::addColumn<int>("key");
    QTest::addRow("Return") << int(Qt::Key_Return);
    QTest::addRow("Enter") << int(Qt::Key_Enter);
}

void TestSheetInput::pressesTheDefaultButtonOnEnter()
{
    QFETCH(int, key);
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy standard(sheet.standard, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    press(host.window, key); // in a field
    QCOMPARE(standard.size(), 1);
    sheet.standard->setEnabled(false);
    press(host.window, key);
    QCOMPARE(standard.size(), 1);
}

void TestSheetInput::keepsTheWindowFromClosing()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    QVERIFY(!host.window.close());
    QVERIFY(host.window.isVisible());
    endSheet(sheet.panel);
    QTRY_VERIFY(!hasSheet(host.window));
    QVERIFY(host.window.close());
}

void TestSheetInput::takesNoKeyOnItsWayOut()
{
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy standard(sheet.standard, &QPushButton::clicked);
    QSignalSpy plain(sheet.plain, &QPushButton::clicked);
    QList<int> results;
    presentSheet(host.window, sheet.panel, [&results](int result) { results.append(result); });
    endSheet(sheet.panel, 3);
    press(host.window, Qt::Key_Return);
    press(host.window, Qt::Key_Escape);
    press(host.window, Qt::Key_P, Qt::AltModifier);
    QTRY_COMPARE(results, QList<int>{3});
    QVERIFY(standard.isEmpty());
    QVERIFY(plain.isEmpty());
}

void TestSheetInput::refusesWhatIsDraggedOverIt()
{
    SheetHost host;
    host.window.setAcceptDrops(true);
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    QMimeData data;
    data.setText(QStringLiteral("text"));
    QDragEnterEvent enter(QPoint(5, 400), Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.accept();
    QApplication::sendEvent(host.window.findChild<SheetOverlay *>(), &enter);
    QVERIFY(!enter.isAccepted());
}

VANTOR_GUI_TEST_MAIN(TestSheetInput)
#include "tst_SheetInput.moc"
