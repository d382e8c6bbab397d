#include "tests/prefs/exclusions/PreferencesFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QLabel>
#include <QMimeData>

/// What the user does in the window: rows "Movies", "Music" and "notes.txt" are there.
class TestPreferencesWindow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void removesARowAndSelectsTheNext();
    void removesTheLastRowAndSelectsNone();
    void removesSeveralRowsAtOnce();
    void removesByKey();
    void doesNothingWithoutSelection();
    void addsWhatIsDropped();
    void saysWhatMayNotBeDropped();
    void noticesWhatIsGoneWhenItIsShownAgain();
    void isMadeOnce();
    void closesByKey_data();
    void closesByKey();
    void doesNotKeepTheProgramRunning();
    void asksToLookAtADamagedList();
    void saysEveryControlsName();

private:
    void select(const QList<int> &rows);
    QStringList names() const;

    std::unique_ptr<PreferencesFixture> m_fixture;
    PreferencesWindowController *m_controller = nullptr;
};

void TestPreferencesWindow::initTestCase()
{
    QApplication::setStyle(new StillStyle);
}

void TestPreferencesWindow::init()
{
    m_fixture = std::make_unique<PreferencesFixture>();
    m_controller = m_fixture->controller.get();
    m_controller->showWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_controller->window()));
    const ScratchFolder &folder = m_fixture->folder;
    m_controller->addPaths({folder.path("Movies"), folder.path("Music"), folder.path("notes.txt")});
    QTRY_COMPARE(m_controller->array().size(), 3);
}

/// All measurements must end before the test's own log is gone.
void TestPreferencesWindow::cleanup()
{
    m_fixture.reset();
}

void TestPreferencesWindow::select(const QList<int> &rows)
{
    ExcludedFilesView &table = *m_controller->tableView();
    table.clearSelection();
    for (const int row : rows)
        table.selectionModel()->select(table.model()->index(row, 0),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

QStringList TestPreferencesWindow::names() const
{
    QStringList texts;
    for (const auto &file : m_controller->array())
        texts.append(file->name());
    return texts;
}

void TestPreferencesWindow::removesARowAndSelectsTheNext()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    select({1});
    m_fixture->button("removeButton")->click();
    QCOMPARE(names().join(u' '), QStringLiteral("Movies notes.txt"));
    QCOMPARE(m_controller->tableView()->selectedRows(), QList<int>{1});
    QCOMPARE(m_fixture->setting().size(), 2);
    QCOMPARE(posted.count(), 1);
}

void TestPreferencesWindow::removesTheLastRowAndSelectsNone()
{
    select({2});
    m_controller->remove();
    QCOMPARE(names().join(u' '), QStringLiteral("Movies Music"));
    QCOMPARE(m_controller->tableView()->selectedRows(), QList<int>());
    QVERIFY(!m_fixture->button("removeButton")->isEnabled());
}

void TestPreferencesWindow::removesSeveralRowsAtOnce()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    select({2, 0});
    m_controller->remove();
    QCOMPARE(names(), QStringList{QStringLiteral("Music")});
    QCOMPARE(m_controller->tableView()->selectedRows(), QList<int>{0});
    QCOMPARE(posted.count(), 1);
}

void TestPreferencesWindow::removesByKey()
{
    select({0});
    QTest::keyClick(m_controller->tableView(), Qt::Key_Delete);
    QCOMPARE(names().join(u' '), QStringLiteral("Music notes.txt"));
    QTest::keyClick(m_controller->tableView(), Qt::Key_Delete);
    QCOMPARE(names(), QStringList{QStringLiteral("notes.txt")});
}

void TestPreferencesWindow::doesNothingWithoutSelection()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    select({});
    QVERIFY(!m_fixture->button("removeButton")->isEnabled());
    m_controller->remove();
    QCOMPARE(names().size(), 3);
    QCOMPARE(posted.count(), 0);
    select({0});
    QVERIFY(m_fixture->button("removeButton")->isEnabled());
}

void TestPreferencesWindow::addsWhatIsDropped()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    m_fixture->folder.makeFolder("\xff");
    m_fixture->folder.makeFile("b.mov");
    Q_EMIT m_controller->tableView()->pathsDropped(
        {m_fixture->folder.path("\xff"), m_fixture->folder.path("b.mov")});
    QCOMPARE(m_controller->array().size(), 5);
    QCOMPARE(posted.count(), 1); // all in one
    QTRY_COMPARE(m_fixture->setting().at(3), m_fixture->stored("\xff"));
    QCOMPARE(m_fixture->setting().at(4), m_fixture->stored("b.mov", FileUrlKind::File));
    QVERIFY(!hasSheet(*m_controller->window()));
}

void TestPreferencesWindow::saysWhatMayNotBeDropped()
{
    m_fixture->folder.makeFile("b.mov");
    Q_EMIT m_controller->tableView()->pathsDropped({"/etc/fstab", m_fixture->folder.path("b.mov")});
    QTRY_COMPARE(m_controller->array().size(), 4);
    QTRY_VERIFY(sheetText(*m_controller->window()).contains(QStringLiteral("/etc/fstab")));
    QVERIFY(!sheetText(*m_controller->window()).contains(QStringLiteral("b.mov")));
    QVERIFY(pressSheetButton(*m_controller->window(), QStringLiteral("OK")));
}

void TestPreferencesWindow::noticesWhatIsGoneWhenItIsShownAgain()
{
    QTRY_COMPARE(m_fixture->text(2, 1), QStringLiteral("300 bytes"));
    m_controller->window()->close();
    QVERIFY(QFile::remove(QString::fromUtf8(m_fixture->folder.path("notes.txt"))));
    m_controller->showWindow();
    QTRY_COMPARE(m_fixture->text(2, 1), QStringLiteral("Not found"));
}

void TestPreferencesWindow::isMadeOnce()
{
    const QPointer<QWidget> window = m_controller->window();
    window->close();
    QVERIFY(!window->isVisible());
    m_controller->showWindow();
    QCOMPARE(m_controller->window(), window.data());
    QVERIFY(window->isVisible());
    QCOMPARE(names().size(), 3);
}

void TestPreferencesWindow::closesByKey_data()
{
    QTest::addColumn<QKeySequence>("key");
    QTest::addRow("escape") << QKeySequence(Qt::Key_Escape);
    QTest::addRow("close") << QKeySequence(QKeySequence::Close);
}

void TestPreferencesWindow::closesByKey()
{
    QFETCH(QKeySequence, key);
    QTest::keySequence(m_controller->window(), key);
    QTRY_VERIFY(!m_controller->window()->isVisible());
}

void TestPreferencesWindow::doesNotKeepTheProgramRunning()
{
    QVERIFY(!m_controller->window()->testAttribute(Qt::WA_QuitOnClose));
}

void TestPreferencesWindow::asksToLookAtADamagedList()
{
    auto *banner = outlet<QWidget>(*m_controller->window(), "damageBanner");
    QVERIFY(!banner->isVisible());
    QFile file(QString::fromUtf8(m_fixture->settings.path("settings.json")));
    QVERIFY(m_fixture->defaults->synchronize());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("damaged");
    file.close();
    m_fixture->reopenSettings();
    m_controller = m_fixture->controller.get();
    m_controller->showWindow();
    banner = outlet<QWidget>(*m_controller->window(), "damageBanner");
    QVERIFY(banner->isVisible());
    QCOMPARE(outlet<QLabel>(*m_controller->window(), "damageLabel")->text(),
             m_fixture->defaults->damageMessage());
    m_fixture->button("confirmButton")->click();
    QVERIFY(m_fixture->defaults->exclusionsAreKnown());
    QVERIFY(!banner->isVisible());
}

void TestPreferencesWindow::saysEveryControlsName()
{
    for (const char *name : {"addButton", "removeButton", "confirmButton"})
        QVERIFY(!m_fixture->button(name)->text().isEmpty());
    QAccessibleInterface *table = QAccessible::queryAccessibleInterface(m_controller->tableView());
    QCOMPARE(table->role(), QAccessible::Table);
    QCOMPARE(table->text(QAccessible::Name), QStringLiteral("Excluded files and folders"));
    QCOMPARE(table->tableInterface()->cellAt(0, 0)->text(QAccessible::Name),
             QStringLiteral("Movies"));
}

VANTOR_GUI_TEST_MAIN(TestPreferencesWindow)
#include "tst_PreferencesWindow.moc"
