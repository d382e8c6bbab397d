#pragma once

#include "app/MainWindowController.h"
#include "app/grant/GrantCheck.h"
#include "app/grant/RealHomeDirectory.h"
#include "app/pings/Addresses.h"
#include "app/pings/PingSender.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "platform/system/HostSystemCalls.h"

#include <QObject>
#include <functional>
#include <memory>

class OneInstance;
class PreferencesWindowController;

/// The first object of the program's own that runs: registers the settings' defaults, sends the
/// launch's pings, makes the main window and shows it, and makes sure that everything is on the
/// disk when the program ends. Lives for the whole run. Main thread only.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    /// Starts the program that runs, without arguments. Returns at once.
    static bool startThisProgram();

    /// What differs between a user's run and a run in a test.
    struct Configuration
    {
        QString settingsFolder = defaultSettingsFolder();
        Addresses addresses = buildAddresses();
        PingHelper pingHelper = PingHelper::besideTheProgram();
        std::function<QByteArray()> realHomeDirectory = RealHomeDirectory;
        std::reference_wrapper<const SystemCalls> calls = hostSystemCalls(); ///< outlives it all
        std::shared_ptr<Workspace> workspace = std::make_shared<Workspace>();
        LabelController::Reader readVolume = startUpVolumeSizes;
        /// Makes the view that shows the tutorial. Without it the tutorial is shown as rich text.
        InterfaceLoader::Factory makeTutorialView = {};
        /// Starts the program once more, beside this run of it. False when that fails.
        std::function<bool()> startAnother = startThisProgram;
        /// Hears of a second start; outlives it all. Null where there can be none.
        OneInstance *instance = nullptr;
    };

    explicit AppDelegate(Configuration configuration);
    ~AppDelegate() override;

    /// The start-up sequence; once.
    void applicationDidFinishLaunching();
    /// Flushes the settings.
    void applicationWillTerminate();
    bool applicationShouldTerminateAfterLastWindowClosed() const { return true; }

    /// Sends one usage ping.
    void updateStatsForURLString(const QString &urlString);

    /// The preferences; made on first use and kept.
    PreferencesWindowController &preferencesWindowController();

    UserDefaults &defaults() { return *m_defaults; }
    MainWindowController &mainWindowController() { return *m_mainWindowController; }

public Q_SLOTS:
    /// Shows the main window in front of all others; `activation` is the desktop's permission.
    void comeToFront(const QByteArray &activation);
    /// The menu's command: shows the preferences. They know the home folder once its disk has
    /// answered.
    void openPreferences();

private:
    void makeMainWindow();
    void makeMenu();
    void watchSettings();
    void tellDamage();
    void tellSaveFailure(const QString &message);
    void takeFoundExclusions(const QStringList &stored);
    void restart();

    Configuration m_configuration;
    InterfaceLoader m_loader;
    bool m_tellsSaveFailure = false;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<PingSender> m_pings;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
    std::unique_ptr<MainWindowController> m_mainWindowController;
    std::unique_ptr<PreferencesWindowController> m_preferencesWindowController;
    GrantCheck m_grantForPreferences;
};
