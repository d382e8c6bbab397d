#include "app/MainWindowController.h"

#include "app/DiskInfoViewController.h"
#include "app/GrantAlert.h"
#include "app/Neighbours.h"
#include "app/ResourceManager.h"
#include "app/SettingsKeys.h"
#include "app/UserDefaults.h"
#include "platform/InterfaceLoader.h"
#include "platform/Workspace.h"

namespace {

std::unique_ptr<QMainWindow> loadedWindow(const InterfaceLoader &loader)
{
    LoadedInterface loaded = loader.load(QStringLiteral("MainWindowController"));
    if (!loaded)
        qFatal("%s: %s", qPrintable(loaded.error().file), qPrintable(loaded.error().text));
    auto *window = qobject_cast<QMainWindow *>(loaded->release());
    Q_ASSERT(window);
    return std::unique_ptr<QMainWindow>(window);
}

} // namespace

MainWindowController::MainWindowController(Services services)
    : m_services(std::move(services)), m_window(loadedWindow(m_services.loader))
{
    windowDidLoad();
}

MainWindowController::~MainWindowController()
{
    // The views are the pages' own.
    if (QWidget *content = m_window->takeCentralWidget())
        content->setParent(nullptr);
}

void MainWindowController::windowDidLoad()
{
    setupViewControllers();
    setupNavigationController();
}

void MainWindowController::setupViewControllers()
{
    const InterfaceLoader &loader = m_services.loader;
    m_folderSelect = std::make_unique<FolderSelectViewController>(
        loader, FolderSelectViewController::Services{m_services.defaults, m_services.calls,
                                                     m_services.realHomeDirectory});
    m_diskInfo = std::make_unique<DiskInfoViewController>(loader, m_services.readVolume);
    m_freeSpace = std::make_unique<FreeSpaceViewController>(
        loader, FreeSpaceViewController::Services{
                    m_services.defaults, m_services.calls, m_services.access, m_services.workspace,
                    &ResourceManager::homeFolder, [this] { return grantIsUsable(); },
                    m_services.readVolume});
    m_final = std::make_unique<FinalViewController>(
        loader, FinalViewController::Services{
                    m_services.defaults, m_services.stats, m_services.addresses,
                    [this](const QUrl &url) { return m_services.workspace.openUrl(url); },
                    m_services.readVolume});
    m_viewControllers = {m_folderSelect.get(), m_diskInfo.get(), m_freeSpace.get(), m_final.get()};
    connect(m_freeSpace.get(), &FreeSpaceViewController::cleaningChanged, this,
            [this](bool isCleaning) { Q_EMIT navigationAllowed(!isCleaning); });
    connect(m_freeSpace.get(), &FreeSpaceViewController::placesLeftAlone, this,
            [this](const QString &text) {
                presentAlert(*m_window, {.style = AlertStyle::Warning,
                                         .messageText = tr("Some places were left alone."),
                                         .informativeText = text});
            });
}

void MainWindowController::setupNavigationController()
{
    VNTViewController *root = m_services.defaults.hasInitializedFolders()
                                  ? static_cast<VNTViewController *>(m_diskInfo.get())
                                  : m_folderSelect.get();
    const QWidget *content = m_window->centralWidget();
    auto navigation = std::make_unique<BFNavigationController>(
        content ? content->rect() : QRect(), root);
    navigation->setDelegate(this);
    replaceContentWithViewController(*navigation);
    m_navigationController = std::move(navigation);
    root->viewDidAppear(false);
    for (VNTViewController *page : m_viewControllers)
        page->setDelegate(this);
}

void MainWindowController::replaceContentWithViewController(ViewController &controller)
{
    QWidget *old = m_window->takeCentralWidget();
    controller.view()->setGeometry(old ? old->rect() : QRect());
    m_window->setCentralWidget(controller.view());
    if (old && m_navigationController)
        old->setParent(nullptr); // the old stack's own
    else
        delete old; // the description's
}

void MainWindowController::showWindow()
{
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    if (m_services.defaults.hasInitializedFolders())
        grantIsUsable();
}

ViewController *MainWindowController::currentViewController() const
{
    return m_navigationController->visibleViewController();
}

void MainWindowController::willGoForward(VNTViewController &page, bool forward, const QVariant &data)
{
    if (forward) {
        goForward(page, data);
        return;
    }
    m_navigationController->popToViewController(
        objectBefore<VNTViewController>(m_viewControllers, &page), Animated::Yes);
}

void MainWindowController::goForward(VNTViewController &page, const QVariant &data)
{
    // The slices page is the first to work with the granted folder.
    if (&page == m_diskInfo.get() && !grantIsUsable())
        return;
    VNTViewController *next = objectAfter<VNTViewController>(m_viewControllers, &page);
    m_navigationController->pushViewController(next, Animated::Yes);
    if (next)
        next->setData(data); // after viewWillAppear(), before viewDidAppear()
}

bool MainWindowController::grantIsUsable()
{
    if (const std::optional<GrantFailure> failure = ResourceManager::checkStoredGrant()) {
        tellGrantFailure(*failure);
        return false;
    }
    if (ResourceManager::isInForceFor(m_services.defaults.data(VNTHomeFolderString)))
        return true;
    presentAlert(*m_window, grantNotInForceAlert(), [this](int button) {
        if (button == 0)
            m_services.restart();
    });
    return false;
}

void MainWindowController::tellGrantFailure(GrantFailure failure)
{
    presentAlert(*m_window, grantAlert(failure), [this](int button) {
        if (button == 0) {
            resetHomeFolder();
            m_folderSelect->selectHomeFolder();
        }
    });
}

void MainWindowController::goBack()
{
    m_navigationController->popViewController(Animated::Yes);
}

void MainWindowController::resetHomeFolder()
{
    m_services.defaults.removeFolderEntries();
    setupNavigationController();
}
