#include "app/AppDelegate.h"
#include "app/OneInstance.h"
#include "platform/system/HostSystemCalls.h"

#include "app/grant/RealHomeDirectory.h"
#include "app/settings/SettingsKeys.h"
#include "prefs/exclusions/PreferencesWindowController.h"
#include "prefs/window/ColorWindow.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/ResourceManagerReset.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/NoRuntimeFolder.h"
#include "tests/support/run/RecordingServer.h"

#include <QDir>
#include <QTimer>
#include <cerrno>
#include <semaphore>
#include <thread>

namespace {

/// What had been logged when the first window came up.
class LinesAtFirstWindow final : public QObject
{
public:
    LinesAtFirstWindow() { qApp->installEventFilter(this); }
    QStringList lines() const { return m_lines; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->isWidgetType() && !m_isSeen) {
            m_isSeen = true;
            m_lines = m_log.lines();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    LogRecorder m_log;
    QStringList m_lines;
    bool m_isSeen = false;
};

} // namespace

/// The start of the program, with a server of the test's own in place of the maker's pages.
class TestAppDelegate final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void reportsTheFirstLaunchAndTheLaunch();
    void reportsBeforeItShowsTheWindow();
    void worksWithTheCallsItIsGiven();
    void reportsLaterLaunchesOnce();
    void startsWithoutNetwork();
    void showsTheWindowAndSaysSo();
    void asksForTheHomeOfTheRealUser();
    void registersTheDefaults();
    void opensThePreferencesOnce();
    void opensThePreferencesWhileTheHomeDoesNotAnswer();
    void endsWhileTheHomeDoesNotAnswerThePreferences();
    void quitsWhenTheWindowIsClosed();
    void keepsWhatWasSetWhenItTerminates();
    void tellsOfDamagedSettings();
    void tellsOfExclusionsThatAnotherProgramAdded();
    void comesToTheFrontAtASecondStart();
    void cleansNothingWhileItMayBeOpenTwice();

private:
    void start();
    QStringList pathsAsked() const;

    std::unique_ptr<ScratchFolder> m_folder;
    std::unique_ptr<RecordingServer> m_server;
    Addresses m_addresses;
    void grantHome();

    HookedSystem m_calls;
    bool m_isDiskSlow = false; ///< whether m_disk's calls replace m_calls
    SlowDisk m_disk;
    std::unique_ptr<OneInstance> m_instance;
    std::unique_ptr<AppDelegate> m_application;
};

void TestAppDelegate::init()
{
    m_folder = std::make_unique<ScratchFolder>();
    m_server = std::make_unique<RecordingServer>();
    m_addresses = {};
    m_addresses.firstLaunchPing = m_server->address(QStringLiteral("/first"));
    m_addresses.launchPing = m_server->address(QStringLiteral("/launch"));
}

void TestAppDelegate::cleanup()
{
    m_disk.answer();
    m_application.reset();
    m_instance.reset();
    m_isDiskSlow = false;
    m_calls.setHook({});
    m_server.reset();
    m_folder.reset();
}

void TestAppDelegate::start()
{
    m_application.reset();
    ResourceManagerReset::beginRun();
    AppDelegate::Configuration configuration;
    configuration.settingsFolder = QFile::decodeName(m_folder->path("settings"));
    configuration.addresses = m_addresses;
    configuration.calls = m_isDiskSlow ? m_disk.calls() : m_calls;
    configuration.pingHelper.program.clear();
    configuration.instance = m_instance.get();
    m_application = std::make_unique<AppDelegate>(std::move(configuration));
    m_application->applicationDidFinishLaunching();
}

/// Sorted: pings travel side by side, and either may come first.
QStringList TestAppDelegate::pathsAsked() const
{
    QStringList paths = m_server->requests();
    paths.sort();
    return paths;
}

void TestAppDelegate::reportsTheFirstLaunchAndTheLaunch()
{
    LogRecorder log;
    start();
    QVERIFY(log.lines().contains(QStringLiteral("Here")));
    QVERIFY(m_application->defaults().boolean(VNTHasLaunchedBeforeString));
    QTRY_COMPARE(pathsAsked(), QStringList({QStringLiteral("/first"), QStringLiteral("/launch")}));
}

void TestAppDelegate::reportsBeforeItShowsTheWindow()
{
    const LinesAtFirstWindow atWindow;
    start();
    QCOMPARE(atWindow.lines(), QStringList{QStringLiteral("Here")});
}

/// Nothing of the machine reaches a run that is given calls of its own.
void TestAppDelegate::worksWithTheCallsItIsGiven()
{
    m_calls.setHook([](int, std::string_view) { return EIO; });
    start();
    QVERIFY(m_calls.callCount() > 0);
    QVERIFY(!m_application->defaults().exclusionsAreKnown());
}

void TestAppDelegate::reportsLaterLaunchesOnce()
{
    start();
    QTRY_COMPARE(pathsAsked().size(), 2);
    m_application->applicationWillTerminate();
    start();
    QTRY_COMPARE(pathsAsked(), QStringList({QStringLiteral("/first"), QStringLiteral("/launch"),
                                            QStringLiteral("/launch")}));
}

void TestAppDelegate::startsWithoutNetwork()
{
    m_server.reset(); // nothing listens any more
    LogRecorder log;
    start();
    QVERIFY(m_application->mainWindowController().window().isVisible());
    QTRY_COMPARE(log.lines().filter(QStringLiteral("Error: ")).size(), 2);
    QVERIFY(m_application->defaults().boolean(VNTHasLaunchedBeforeString));
    QVERIFY(!hasSheet(m_application->mainWindowController().window()));
}

void TestAppDelegate::showsTheWindowAndSaysSo()
{
    LogRecorder log;
    start();
    QVERIFY(m_application->mainWindowController().window().isVisible());
    QCOMPARE(log.lines().constLast(), QStringLiteral("Finisheid"));
}

/// Uses what the program itself is made of: a test must not supply what the program lacks.
void TestAppDelegate::asksForTheHomeOfTheRealUser()
{
    start();
    LogRecorder log;
    MainWindowController &controller = m_application->mainWindowController();
    controller.folderSelectPage().selectHomeFolder();
    QTRY_VERIFY(hasSheet(controller.window()));
    const QString home = QFile::decodeName(RealHomeDirectory());
    QVERIFY(log.lines().contains(home.mid(home.lastIndexOf(QLatin1Char('/')) + 1)));
}

void TestAppDelegate::registersTheDefaults()
{
    start();
    const UserDefaults &defaults = m_application->defaults();
    QCOMPARE(defaults.booleans(VNTSelectedSlicesString),
             QList<bool>({true, false, true, true, true, false, false, false}));
    QVERIFY(!defaults.isStored(VNTSelectedSlicesString));
    QCOMPARE(defaults.integer(VNTTotalCleanedSize), 0);
    QVERIFY(!defaults.boolean(VNTHideDemoWindowString));
}

void TestAppDelegate::opensThePreferencesOnce()
{
    start();
    m_application->openPreferences();
    QWidget *first = m_application->preferencesWindowController().window();
    QVERIFY(first->isVisible());
    first->close();
    m_application->openPreferences();
    QCOMPARE(m_application->preferencesWindowController().window(), first);
    QVERIFY(first->isVisible());
}

void TestAppDelegate::grantHome()
{
    const auto grant = makeGrant(hostSystemCalls(), m_folder->makeFolder("anna"));
    QVERIFY(grant);
    UserDefaults defaults(QFile::decodeName(m_folder->path("settings")), hostSystemCalls());
    defaults.setData(VNTHomeFolderString, *grant);
    QVERIFY(defaults.synchronize());
}

void TestAppDelegate::opensThePreferencesWhileTheHomeDoesNotAnswer()
{
    grantHome();
    m_isDiskSlow = true;
    start();
    m_disk.takeAskedHere(); // the settings, at start-up
    m_disk.hang(QStringLiteral("identityOf"));
    m_application->openPreferences();
    const PreferencesWindowController &preferences = m_application->preferencesWindowController();
    QVERIFY(m_application->preferencesWindowController().window()->isVisible());
    QTRY_VERIFY(m_disk.waiting() > 0);
    QVERIFY(!preferences.homeFolder().isValid());
    m_disk.answer();
    QTRY_COMPARE(preferences.homeFolder().path(), m_folder->path("anna"));
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

/// A question of the preferences to the disk outlives them. Its answer must find all that it uses.
void TestAppDelegate::endsWhileTheHomeDoesNotAnswerThePreferences()
{
    constexpr std::chrono::seconds kPatience(10);
    grantHome();
    {
        UserDefaults defaults(QFile::decodeName(m_folder->path("settings")), hostSystemCalls());
        const FileUrl excluded = FileUrl::fromPath(m_folder->path("anna/a"), FileUrlKind::File);
        defaults.setStrings(VNTExcludedPathsString,
                            {QString::fromLatin1(excluded.absoluteString())});
        QVERIFY(defaults.synchronize());
    }
    m_isDiskSlow = true;
    start();
    m_disk.hang(QStringLiteral("identityOf"));
    m_application->openPreferences();
    QTRY_VERIFY(m_disk.waiting() >= 2); // the grant, and the entry of the table

    std::binary_semaphore isGone(0);
    bool wasInTime = false;
    std::jthread disk([&] {
        wasInTime = isGone.try_acquire_for(kPatience);
        m_disk.answer(); // otherwise a wait would last for ever
    });
    m_application.reset();
    isGone.release();
    disk.join();
    awaitBackgroundThreads();
    QVERIFY(wasInTime);
}

void TestAppDelegate::quitsWhenTheWindowIsClosed()
{
    start();
    QVERIFY(m_application->applicationShouldTerminateAfterLastWindowClosed());
    m_application->openPreferences();
    QVERIFY(m_application->preferencesWindowController().window()->isVisible());
    constexpr int kTooLate = 1;
    QTimer::singleShot(std::chrono::seconds(20), qApp, [] { QCoreApplication::exit(kTooLate); });
    QTimer::singleShot(0, this, [this] { m_application->mainWindowController().window().close(); });
    QCOMPARE(QApplication::exec(), 0);
}

void TestAppDelegate::keepsWhatWasSetWhenItTerminates()
{
    start();
    m_application->defaults().setInteger(VNTTotalCleanedSize, 77);
    m_application->applicationWillTerminate();
    const UserDefaults again(QFile::decodeName(m_folder->path("settings")), hostSystemCalls());
    QCOMPARE(again.integer(VNTTotalCleanedSize), 77);
}

void TestAppDelegate::tellsOfDamagedSettings()
{
    m_folder->makeFolder("settings");
    start();
    m_application->applicationWillTerminate();
    m_application.reset();
    for (const QString &name :
         QDir(QFile::decodeName(m_folder->path("settings"))).entryList(QDir::Files))
        QVERIFY(QFile(QFile::decodeName(m_folder->path("settings/")) + name).resize(5));
    start();
    QVERIFY(!m_application->defaults().exclusionsAreKnown());
    ColorWindow &window = m_application->mainWindowController().window();
    QTRY_VERIFY(hasSheet(window));
    QVERIFY(sheetText(window).contains(QStringLiteral("Cleaning is off")));
}

void TestAppDelegate::tellsOfExclusionsThatAnotherProgramAdded()
{
    start();
    m_application->applicationWillTerminate();
    {
        UserDefaults others(QFile::decodeName(m_folder->path("settings")), hostSystemCalls());
        others.setStrings(VNTExcludedPathsString, {QStringLiteral("file:///home/anna/letters")});
    }
    m_application->defaults().setBoolean(VNTHideDemoWindowString, true);
    ColorWindow &window = m_application->mainWindowController().window();
    QTRY_VERIFY(hasSheet(window));
    QVERIFY(sheetText(window).contains(QStringLiteral("/home/anna/letters")));
}

void TestAppDelegate::comesToTheFrontAtASecondStart()
{
    const QString settings = QFile::decodeName(m_folder->path("settings"));
    m_instance = std::make_unique<OneInstance>(settings);
    QVERIFY(!m_instance->settle());
    start();
    ColorWindow &window = m_application->mainWindowController().window();
    window.showMinimized();
    QVERIFY(window.isMinimized());
    OneInstance second(settings);
    QCOMPARE(second.settle(), std::optional<int>(EXIT_SUCCESS));
    QVERIFY(!window.isMinimized() && window.isVisible());
}

void TestAppDelegate::cleansNothingWhileItMayBeOpenTwice()
{
    m_folder->makeFile("settings", 0); // no folder, so nothing in it can be locked
    {
        const NoRuntimeFolder noOtherPlace;
        m_instance = std::make_unique<OneInstance>(QFile::decodeName(m_folder->path("settings")));
    }
    QVERIFY(!m_instance->settle());
    QVERIFY(QFile::remove(QFile::decodeName(m_folder->path("settings"))));
    start();
    QVERIFY(!m_application->defaults().exclusionsAreKnown());
    ColorWindow &window = m_application->mainWindowController().window();
    QTRY_VERIFY(hasSheet(window));
    QVERIFY(sheetText(window).contains(QStringLiteral("open more than once")));
}

VANTOR_GUI_TEST_MAIN(TestAppDelegate)
#include "tst_AppDelegate.moc"
