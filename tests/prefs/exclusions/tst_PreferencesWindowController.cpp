#include "tests/prefs/exclusions/PreferencesFixture.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QTreeView>
#include <filesystem>

class TestPreferencesWindowController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void opensEmptyWithoutTheSetting();
    void writesTheSettingWithTheFirstEntry();
    void showsTheStoredEntries();
    void addsWhatThePanelChose();
    void keepsWhatWasAddedBeforeTheDiskAnswers();
    void savesAndTellsWhenThePanelIsCancelled();
    void endsBeneathAPanel();
    void enablesWhatContainsTheHomeFoldersPath_data();
    void enablesWhatContainsTheHomeFoldersPath();
    void enablesEverythingWithoutHomeFolder();
    void calculatesUntilTheSizeArrives();
    void addsTheSameFolderTwice();
    void keepsNamesOfAnyBytes();
    void keepsWhatItCannotRead();
    void keepsWhatAnotherProgramAdds();
    void tellsObserversBeforeItReturns();

private:
    void add(const QByteArray &relativePath);
    void choose(const QString &path, const QString &button);

    std::unique_ptr<PreferencesFixture> m_fixture;
    PreferencesWindowController *m_controller = nullptr;
};

void TestPreferencesWindowController::initTestCase()
{
    QApplication::setStyle(new StillStyle);
}

void TestPreferencesWindowController::init()
{
    m_fixture = std::make_unique<PreferencesFixture>();
    m_controller = m_fixture->controller.get();
    m_controller->showWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_controller->window()));
}

/// All measurements must end before the test's own log is gone.
void TestPreferencesWindowController::cleanup()
{
    m_fixture.reset(); // which waits for it
}

void TestPreferencesWindowController::add(const QByteArray &relativePath)
{
    const QByteArray path = m_fixture->folder.path(relativePath);
    const bool isFolder = std::filesystem::is_directory(path.toStdString());
    m_controller->addPaths({path});
    QTRY_COMPARE(m_controller->array().constLast()->fileURL(),
                 FileUrl::fromPath(path, isFolder ? FileUrlKind::Folder : FileUrlKind::File));
}

void TestPreferencesWindowController::choose(const QString &path, const QString &button)
{
    m_fixture->button("addButton")->click();
    QWidget &window = *m_controller->window();
    QTRY_VERIFY(sheetPanel(window));
    const auto nameEdit = [&window] {
        return sheetPanel(window)->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    };
    QTRY_VERIFY(nameEdit());
    auto *name = nameEdit();
    name->setFocus();
    name->selectAll();
    QTest::keyClicks(name, path);
    QVERIFY(pressSheetButton(window, button));
}

void TestPreferencesWindowController::opensEmptyWithoutTheSetting()
{
    QCOMPARE(m_controller->array().size(), 0);
    QCOMPARE(m_controller->excludedPaths(), QStringList());
    QVERIFY(!m_fixture->defaults->contains(VNTExcludedPathsString));
}

void TestPreferencesWindowController::writesTheSettingWithTheFirstEntry()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    add("Movies");
    QCOMPARE(m_fixture->setting(), QStringList{m_fixture->stored("Movies")});
    QVERIFY(m_fixture->setting().constFirst().endsWith(QLatin1String("/Movies/")));
    QCOMPARE(posted.count(), 2); // once more when it turned out to be a folder
    add("notes.txt");
    QCOMPARE(m_fixture->setting(),
             (QStringList{m_fixture->stored("Movies"),
                          m_fixture->stored("notes.txt", FileUrlKind::File)}));
    QCOMPARE(posted.count(), 3);
}

void TestPreferencesWindowController::showsTheStoredEntries()
{
    add("Movies");
    add("notes.txt");
    m_fixture->reopenSettings();
    m_controller = m_fixture->controller.get();
    m_controller->window();
    QCOMPARE(m_controller->array().size(), 2);
    QCOMPARE(m_fixture->text(0, 0), QStringLiteral("Movies"));
    QCOMPARE(m_fixture->text(1, 0), QStringLiteral("notes.txt"));
    QTRY_COMPARE(m_fixture->text(0, 1), QStringLiteral("1.2 MB"));
}

void TestPreferencesWindowController::addsWhatThePanelChose()
{
    choose(QString::fromUtf8(m_fixture->folder.path("Music")), QStringLiteral("Add"));
    QTRY_COMPARE(m_fixture->setting(), QStringList{m_fixture->stored("Music")});
    choose(QString::fromUtf8(m_fixture->folder.path("notes.txt")), QStringLiteral("Add"));
    QTRY_COMPARE(m_controller->array().size(), 2);
    QCOMPARE(m_fixture->setting().constLast(), m_fixture->stored("notes.txt", FileUrlKind::File));
}

void TestPreferencesWindowController::keepsWhatWasAddedBeforeTheDiskAnswers()
{
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    m_fixture->access().hold(); // as a volume that hangs does
    m_controller->addPaths({m_fixture->folder.path("Movies")});
    // It is not known yet that this is a folder. The text, as that of a file, keeps the folder with
    // all that it holds.
    QCOMPARE(m_fixture->setting(), QStringList{m_fixture->stored("Movies", FileUrlKind::File)});
    QCOMPARE(posted.count(), 1);
    m_fixture->access().release();
    QTRY_COMPARE(m_fixture->setting(), QStringList{m_fixture->stored("Movies")});
    QCOMPARE(posted.count(), 2);
}

void TestPreferencesWindowController::savesAndTellsWhenThePanelIsCancelled()
{
    add("Movies");
    const QStringList before = m_fixture->setting();
    // The whole list is written back, so a change of the setting from elsewhere would be
    // overwritten.
    m_fixture->defaults->setStrings(VNTExcludedPathsString, {});
    const QSignalSpy posted(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    choose(QString::fromUtf8(m_fixture->folder.path("Music")), QStringLiteral("Cancel"));
    QTRY_COMPARE(posted.count(), 1);
    QCOMPARE(m_fixture->setting(), before);
    QCOMPARE(m_controller->array().size(), 1);
}

/// The panel ends a little later, and may ask once more what may be chosen.
void TestPreferencesWindowController::endsBeneathAPanel()
{
    QVERIFY(QDir::home().mkpath(QStringLiteral("Movies")));
    m_controller->setHomeFolder({}); // everything may be chosen
    m_fixture->button("addButton")->click();
    QWidget &window = *m_controller->window();
    QTRY_VERIFY(sheetPanel(window) && sheetPanel(window)->findChild<QTreeView *>());
    const QPointer<QTreeView> list = sheetPanel(window)->findChild<QTreeView *>();
    QTRY_VERIFY(list->model()->rowCount(list->rootIndex()) > 0);
    const QModelIndex item = list->model()->index(0, 0, list->rootIndex());
    QVERIFY(item.flags().testFlag(Qt::ItemIsEnabled));
    m_fixture->controller.reset();
    m_controller = nullptr;
    QVERIFY(list && !item.flags().testFlag(Qt::ItemIsEnabled));
    QTRY_VERIFY(!list);
}

void TestPreferencesWindowController::enablesWhatContainsTheHomeFoldersPath_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("isEnabled");
    QTest::addRow("in it") << QByteArray("/Users/u/Movies") << true;
    QTest::addRow("itself") << QByteArray("/Users/u") << true;
    QTest::addRow("elsewhere") << QByteArray("/Applications") << false;
    QTest::addRow("above") << QByteArray("/Users") << false;
    QTest::addRow("somewhere within") << QByteArray("/Volumes/x/Users/u/y") << true;
    QTest::addRow("longer name") << QByteArray("/Users/ulla") << true;
    QTest::addRow("another letter case") << QByteArray("/users/u/Movies") << false;
}

void TestPreferencesWindowController::enablesWhatContainsTheHomeFoldersPath()
{
    QFETCH(QByteArray, path);
    m_controller->setHomeFolder(FileUrl::fromPath("/Users/u", FileUrlKind::Folder));
    QTEST(m_controller->shouldEnable(path), "isEnabled");
}

void TestPreferencesWindowController::enablesEverythingWithoutHomeFolder()
{
    m_controller->setHomeFolder({});
    QVERIFY(m_controller->shouldEnable("/Applications"));
}

void TestPreferencesWindowController::calculatesUntilTheSizeArrives()
{
    m_fixture->access().hold();
    add("Movies");
    QCOMPARE(m_fixture->text(0, 1), QStringLiteral("Calculating..."));
    m_fixture->access().release();
    QTRY_COMPARE(m_fixture->text(0, 1), QStringLiteral("1.2 MB"));
}

void TestPreferencesWindowController::addsTheSameFolderTwice()
{
    add("Movies");
    add("Movies");
    QCOMPARE(m_controller->array().size(), 2);
    QCOMPARE(m_fixture->setting(),
             (QStringList{m_fixture->stored("Movies"), m_fixture->stored("Movies")}));
    QTRY_COMPARE(m_fixture->text(0, 1), QStringLiteral("1.2 MB"));
    QTRY_COMPARE(m_fixture->text(1, 1), QStringLiteral("1.2 MB"));
}

void TestPreferencesWindowController::keepsNamesOfAnyBytes()
{
    const QByteArray name("\xff 100% #1\ntwo");
    m_fixture->folder.makeFolder(name);
    add(name);
    m_fixture->reopenSettings();
    m_controller = m_fixture->controller.get();
    m_controller->window();
    QCOMPARE(m_controller->array().constFirst()->fileURL().path(), m_fixture->folder.path(name));
    QVERIFY(m_controller->array().constFirst()->fileURL().isFolder());
}

void TestPreferencesWindowController::keepsWhatItCannotRead()
{
    const QString unreadable = QStringLiteral("/home/anna/Movies");
    m_fixture->defaults->setStrings(VNTExcludedPathsString, {unreadable});
    m_fixture->reopenSettings();
    m_controller = m_fixture->controller.get();
    m_controller->window();
    add("Movies");
    QCOMPARE(m_fixture->setting(), (QStringList{unreadable, m_fixture->stored("Movies")}));
}

/// The list is written as a whole, and must not take away what it does not show.
void TestPreferencesWindowController::keepsWhatAnotherProgramAdds()
{
    add("Movies");
    QVERIFY(m_fixture->defaults->synchronize());
    UserDefaults others(QString::fromUtf8(m_fixture->settings.path()), hostSystemCalls());
    others.setStrings(VNTExcludedPathsString, {m_fixture->stored("Music")});
    QVERIFY(others.synchronize());
    QSignalSpy found(m_fixture->defaults.get(), &UserDefaults::exclusionsFound);
    m_fixture->defaults->lookAtFile(m_controller, [] {});
    QVERIFY(found.wait());
    m_controller->saveURLs();
    QCOMPARE(m_fixture->setting(),
             (QStringList{m_fixture->stored("Movies"), m_fixture->stored("Music")}));
}

void TestPreferencesWindowController::tellsObserversBeforeItReturns()
{
    QStringList seen;
    connect(&m_fixture->changed, &ExcludedFilesChangedNotification::posted, this,
            [&] { seen = m_fixture->setting(); });
    add("Movies");
    seen.clear();
    m_controller->saveURLs();
    QCOMPARE(seen, QStringList{m_fixture->stored("Movies")});
    // When the observers are told of a change, it has already been written.
    m_controller->addPaths({m_fixture->folder.path("notes.txt")});
    QCOMPARE(seen, (QStringList{m_fixture->stored("Movies"),
                                m_fixture->stored("notes.txt", FileUrlKind::File)}));
}

VANTOR_GUI_TEST_MAIN(TestPreferencesWindowController)
#include "tst_PreferencesWindowController.moc"
