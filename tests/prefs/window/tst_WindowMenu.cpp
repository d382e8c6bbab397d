#include "prefs/window/WindowMenu.h"
#include "tests/support/run/GuiTestMain.h"

#include <QMenuBar>
#include <QSignalSpy>

class TestWindowMenu final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void listsTheActionsOfEveryMenu();
    void followsTheBar();
    void leavesOutHiddenMenus();
    void keepsShortcutsWorking();
    void keepsShortcutsOfSubmenusWorking();
    void opensBelowItsButton();

private:
    QStringList shownTexts() const;

    std::unique_ptr<QWidget> m_window;
    QMenuBar *m_bar = nullptr;
    WindowMenu *m_menu = nullptr;
    QAction *m_quit = nullptr;
    QAction *m_deep = nullptr;
};

void TestWindowMenu::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->setGeometry(100, 100, 400, 300);
    m_bar = new QMenuBar;
    QMenu *first = m_bar->addMenu(QStringLiteral("First"));
    first->addAction(QStringLiteral("Preferences"));
    m_quit = first->addAction(QStringLiteral("Quit"));
    m_quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    QMenu *second = m_bar->addMenu(QStringLiteral("Second"));
    QMenu *more = second->addMenu(QStringLiteral("More"));
    m_deep = more->addAction(QStringLiteral("Deep"));
    m_deep->setShortcut(Qt::CTRL | Qt::Key_D);
    m_menu = new WindowMenu(m_bar, m_window.get());
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

QStringList TestWindowMenu::shownTexts() const
{
    m_menu->popUpBelow(*m_window);
    QStringList texts;
    for (const QAction *action : m_menu->actions())
        texts += action->isSeparator() ? QStringLiteral("-") : action->text();
    m_menu->close();
    return texts;
}

void TestWindowMenu::listsTheActionsOfEveryMenu()
{
    QVERIFY(!m_bar->isVisible());
    QCOMPARE(shownTexts().join(QLatin1Char(' ')), QStringLiteral("- Preferences Quit - More"));
}

void TestWindowMenu::followsTheBar()
{
    shownTexts();
    m_bar->addMenu(QStringLiteral("Third"))->addAction(QStringLiteral("New"));
    QCOMPARE(shownTexts().last(), QStringLiteral("New"));
    QCOMPARE(shownTexts().count(QStringLiteral("Quit")), 1);
}

void TestWindowMenu::leavesOutHiddenMenus()
{
    m_bar->actions().constFirst()->setVisible(false);
    QVERIFY(!shownTexts().contains(QStringLiteral("Quit")));
}

void TestWindowMenu::keepsShortcutsWorking()
{
    const QSignalSpy quit(m_quit, &QAction::triggered);
    QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(quit.count(), 1);
    // Also after the menu was open: it has the same actions.
    shownTexts();
    QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(quit.count(), 2);
}

void TestWindowMenu::keepsShortcutsOfSubmenusWorking()
{
    const QSignalSpy deep(m_deep, &QAction::triggered);
    QTest::keyClick(m_window.get(), Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(deep.count(), 1);
}

void TestWindowMenu::opensBelowItsButton()
{
    QWidget button(m_window.get());
    button.setGeometry(370, 5, 14, 14);
    m_menu->popUpBelow(button);
    QVERIFY(m_menu->isVisible());
    QVERIFY(m_menu->y() >= button.mapToGlobal(QPoint(0, 14)).y());
    QCOMPARE(m_menu->geometry().right() + 1, button.mapToGlobal(QPoint(14, 0)).x());
    m_menu->close();
}

VANTOR_GUI_TEST_MAIN(TestWindowMenu)
#include "tst_WindowMenu.moc"
