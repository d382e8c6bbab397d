#include "app/AppDelegate.h"

#include "app/InterfaceClasses.h"
#include "app/OneInstance.h"
#include "app/grant/ResourceManager.h"
#include "app/pings/LaunchPings.h"
#include "app/settings/SettingsKeys.h"
#include "platform/base/Log.h"
#include "platform/base/LogText.h"
#include "platform/desktop/Activation.h"
#include "platform/sheet/Alert.h"
#include "prefs/exclusions/PreferencesWindowController.h"
#include "prefs/window/ColorWindow.h"
#include "slices/page/CleaningText.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QProcess>
#include <utility>

AppDelegate::AppDelegate(Configuration configuration) : m_configuration(std::move(configuration))
{
    registerInterfaceClasses(m_loader);
    if (m_configuration.makeTutorialView)
        m_loader.registerClass(QStringLiteral("TutorialView"), m_configuration.makeTutorialView);
    if (m_configuration.instance)
        connect(m_configuration.instance, &OneInstance::called, this, &AppDelegate::comeToFront);
}

/// The settings end with this object, and a question to the disk may outlive it. The grant that was
/// stored when the question began must still be stored when its answer comes; otherwise the first
/// use of the folder would find no grant.
AppDelegate::~AppDelegate()
{
    ResourceManager::setGrantSource([last = ResourceManager::storedGrant()] { return last; });
}

void AppDelegate::applicationDidFinishLaunching()
{
    m_defaults =
        std::make_unique<UserDefaults>(m_configuration.settingsFolder, m_configuration.calls);
    m_defaults->registerDefaults(registeredDefaults());
    if (m_configuration.instance)
        m_defaults->doubtExclusions(m_configuration.instance->doubt());
    m_pings = std::make_unique<PingSender>(m_configuration.pingHelper);
    sendLaunchPings(*m_defaults, *m_pings, m_configuration.addresses);
    makeMainWindow();
    m_mainWindowController->showWindow();
    watchSettings();
    qCInfo(logVantor) << "Finisheid";
}

void AppDelegate::makeMainWindow()
{
    const auto storedGrant = [defaults = m_defaults.get()]() -> std::optional<QByteArray> {
        if (!defaults->isStored(VNTHomeFolderString))
            return std::nullopt;
        return defaults->data(VNTHomeFolderString);
    };
    ResourceManager::setGrantSource(storedGrant, m_configuration.calls);
    m_mainWindowController = std::make_unique<MainWindowController>(
        MainWindowController::Services{.loader = m_loader,
                                       .defaults = *m_defaults,
                                       .stats = *m_pings,
                                       .workspace = *m_configuration.workspace,
                                       .calls = m_configuration.calls,
                                       .access = ResourceManager::access(),
                                       .excludedFilesChanged = m_excludedFilesChanged,
                                       .addresses = m_configuration.addresses,
                                       .realHomeDirectory = m_configuration.realHomeDirectory,
                                       .readVolume = m_configuration.readVolume,
                                       .restart = [this] { restart(); }});
    makeMenu();
}

void AppDelegate::makeMenu()
{
    LoadedInterface loaded = m_loader.load(QStringLiteral("MainMenu"));
    if (!loaded)
        qFatal("%s: %s", qPrintable(loaded.error().file), qPrintable(loaded.error().text));
    auto *menu = qobject_cast<QMenuBar *>(loaded->release());
    MainWindowController *controller = m_mainWindowController.get();
    controller->window().setMenuBar(menu);

    auto *back = outlet<QAction>(*menu, "goBackAction");
    auto *reset = outlet<QAction>(*menu, "resetHomeFolderAction");
    connect(back, &QAction::triggered, controller, &MainWindowController::goBack);
    connect(reset, &QAction::triggered, controller, &MainWindowController::resetHomeFolder);
    connect(controller, &MainWindowController::navigationAllowed, back, &QAction::setEnabled);
    connect(controller, &MainWindowController::navigationAllowed, reset, &QAction::setEnabled);
    connect(outlet<QAction>(*menu, "openPreferencesAction"), &QAction::triggered, this,
            &AppDelegate::openPreferences);
    connect(outlet<QAction>(*menu, "quitAction"), &QAction::triggered, &controller->window(),
            &QWidget::close);
}

void AppDelegate::watchSettings()
{
    connect(m_defaults.get(), &UserDefaults::saveFailed, this, &AppDelegate::tellSaveFailure);
    connect(m_defaults.get(), &UserDefaults::exclusionsFound, this,
            &AppDelegate::takeFoundExclusions);
    if (!m_defaults->exclusionsAreKnown())
        tellDamage();
}

void AppDelegate::tellDamage()
{
    const QString reason = m_defaults->damageMessage();
    const bool mayBeOpenTwice =
        m_configuration.instance != nullptr && reason == m_configuration.instance->doubt();
    presentAlert(m_mainWindowController->window(),
                 {.style = AlertStyle::Warning,
                  .messageText = mayBeOpenTwice ? tr("Vantor may be open more than once.")
                                                : tr("Your settings could not be read completely."),
                  .informativeText = reason + QStringLiteral("\n\n") +
                                     tr("Cleaning is off until you have checked your "
                                        "excluded paths.")});
}

/// A cleaning under way keeps them already; all else is told here.
void AppDelegate::takeFoundExclusions(const QStringList &stored)
{
    m_excludedFilesChanged.post();
    presentAlert(m_mainWindowController->window(),
                 {.style = AlertStyle::Informational,
                  .messageText = tr("Another program has added excluded paths."),
                  .informativeText = foundExclusionsText(stored)});
}

void AppDelegate::comeToFront(const QByteArray &activation)
{
    if (m_mainWindowController) // otherwise the window comes at once anyway
        bringToFront(m_mainWindowController->window(), activation);
}

void AppDelegate::tellSaveFailure(const QString &message)
{
    if (std::exchange(m_tellsSaveFailure, true))
        return; // one message is enough for a disk that stays full
    presentAlert(m_mainWindowController->window(),
                 {.style = AlertStyle::Warning,
                  .messageText = tr("Your settings could not be saved."),
                  .informativeText = message},
                 [this](int) { m_tellsSaveFailure = false; });
}

PreferencesWindowController &AppDelegate::preferencesWindowController()
{
    if (!m_preferencesWindowController) {
        const auto access = []() -> FileAccess * {
            return ResourceManager::checkStoredGrant() ? nullptr : &ResourceManager::access();
        };
        m_preferencesWindowController = std::make_unique<PreferencesWindowController>(
            m_loader, PreferencesWindowController::Services{*m_defaults, m_configuration.calls,
                                                            access, m_excludedFilesChanged});
    }
    return *m_preferencesWindowController;
}

void AppDelegate::openPreferences()
{
    preferencesWindowController().showWindow();
    m_grantForPreferences.ask([this](std::optional<GrantFailure> failure) {
        if (!failure)
            preferencesWindowController().setHomeFolder(ResourceManager::homeFolder());
    });
}

void AppDelegate::updateStatsForURLString(const QString &urlString)
{
    m_pings->updateStatsForURLString(urlString);
}

void AppDelegate::applicationWillTerminate()
{
    if (!m_defaults)
        return; // ended before it began
    if (const auto saved = m_defaults->synchronize(); !saved)
        qCWarning(logVantor).noquote() << logText(saved.error());
}

bool AppDelegate::startThisProgram()
{
    return QProcess::startDetached(QCoreApplication::applicationFilePath(), {});
}

void AppDelegate::restart()
{
    applicationWillTerminate();
    OneInstance *const instance = m_configuration.instance;
    if (instance)
        instance->close(); // otherwise the new one would hand over to this one
    if (m_configuration.startAnother()) {
        // Not quit(), which a window with a sheet refuses: two would then write the settings.
        QCoreApplication::exit();
        return;
    }
    if (instance)
        instance->listen();
    presentAlert(m_mainWindowController->window(),
                 {.style = AlertStyle::Warning,
                  .messageText = tr("Vantor could not be started again."),
                  .informativeText = tr("Please quit it and start it yourself.")});
}
