#include "app/MainWindowController.h"

#include "app/grant/GrantAlert.h"
#include "app/grant/ResourceManager.h"
#include "app/navigation/Neighbours.h"
#include "app/pages/DiskInfoViewController.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "platform/look/ViewAlpha.h"
#include "prefs/window/ColorWindow.h"

#include <functional>

namespace {

std::unique_ptr<ColorWindow> loadedWindow(const InterfaceLoader &loader)
{
    LoadedInterface loaded = loader.load(QStringLiteral("MainWindowController"));
    if (!loaded)
        qFatal("%s: %s", qPrintable(loaded.error().file), qPrintable(loaded.error().text));
    auto *window = qobject_cast<ColorWindow *>(loaded->release());
    if (!window || !window->contentView())
        qFatal("the main window's description has no window with content");
    return std::unique_ptr<ColorWindow>(window);
}

/// The size of a window around a content of this size. The pages are drawn for the content's size.
QSize frameSizeFor(QSize content)
{
    const QRectF inside = ColorWindow::contentRectForFrameRect(QRectF(QPointF(), content));
    return content + (content - inside.size().toSize());
}

} // namespace

MainWindowController::MainWindowController(Services services)
    : m_services(std::move(services)), m_window(loadedWindow(m_services.loader))
{
    windowDidLoad();
}

MainWindowController::~MainWindowController()
{
    m_navigationController->view()->setParent(nullptr); // it is the stack's, not the window's
}

void MainWindowController::windowDidLoad()
{
    m_window->setFixedSize(frameSizeFor(m_window->contentView()->minimumSize()));
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
                    m_services.excludedFilesChanged, &ResourceManager::homeFolder,
                    std::bind_front(&MainWindowController::whenGrantIsUsable, this),
                    m_services.readVolume});
    m_final = std::make_unique<FinalViewController>(
        loader, FinalViewController::Services{
                    m_services.defaults, m_services.stats, m_services.addresses,
                    [this](const QUrl &url) { return m_services.workspace.openUrl(url); },
                    m_services.readVolume});
    m_viewControllers = {m_folderSelect.get(), m_diskInfo.get(), m_freeSpace.get(), m_final.get()};
    connect(m_freeSpace.get(), &FreeSpaceViewController::cleaningChanged, this,
            [this](bool isCleaning) { Q_EMIT navigationAllowed(!isCleaning); });
    connect(m_freeSpace.get(), &FreeSpaceViewController::tells, this,
            [this](const Alert &alert) { presentAlert(*m_window, alert); });
}

void MainWindowController::setupNavigationController()
{
    for (VNTViewController *page : m_viewControllers) {
        if (m_navigationController && page == currentViewController())
            page->viewWillDisappear(false); // it leaves with its stack
    }
    VNTViewController *root = m_services.defaults.hasInitializedFolders()
                                  ? static_cast<VNTViewController *>(m_diskInfo.get())
                                  : m_folderSelect.get();
    auto navigation =
        std::make_unique<BFNavigationController>(m_window->contentView()->rect(), root);
    navigation->setDelegate(this);
    replaceContentWithViewController(*navigation);
    m_navigationController = std::move(navigation);
    root->viewDidAppear(false);
    for (VNTViewController *page : m_viewControllers)
        page->setDelegate(this);
}

void MainWindowController::replaceContentWithViewController(ViewController &controller)
{
    QWidget *old = m_window->contentView();
    controller.view()->setGeometry(old->rect());
    m_window->setContentView(controller.view());
    controller.view()->show();
    if (!m_navigationController)
        delete old; // from the description; a later one belongs to the old stack
}

void MainWindowController::showWindow()
{
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    if (m_services.defaults.hasInitializedFolders())
        whenGrantIsUsable([] {}); // tells what is wrong before the user asks for anything
}

ViewController *MainWindowController::currentViewController() const
{
    return m_navigationController->visibleViewController();
}

void MainWindowController::willGoForward(VNTViewController &page, bool forward,
                                         const QVariant &data)
{
    if (&page != currentViewController())
        return; // a second press while the page goes out
    if (!forward) {
        m_grantCheck.drop();
        m_navigationController->popToViewController(
            objectBefore<VNTViewController>(m_viewControllers, &page), Animated::Yes);
    } else if (&page == m_diskInfo.get()) {
        // The slices page is the first to work with the granted folder.
        whenGrantIsUsable([this, &page, data] { showPageAfter(page, data); });
    } else {
        showPageAfter(page, data);
    }
}

void MainWindowController::showPageAfter(VNTViewController &page, const QVariant &data)
{
    m_grantCheck.drop();
    auto *const next = objectAfter<VNTViewController>(m_viewControllers, &page);
    m_navigationController->pushViewController(next, Animated::Yes);
    if (next)
        next->setData(data); // after viewWillAppear(), before viewDidAppear()
}

void MainWindowController::whenGrantIsUsable(std::function<void()> then,
                                             std::function<void()> otherwise)
{
    m_grantCheck.ask([this, then = std::move(then),
                      otherwise = std::move(otherwise)](std::optional<GrantFailure> failure) {
        if (isGrantUsable(failure))
            then();
        else
            otherwise();
    });
}

bool MainWindowController::isGrantUsable(std::optional<GrantFailure> failure)
{
    if (failure) {
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
            setAlphaValue(*m_folderSelect->view(), 1); // it may have faded out in this run
            m_folderSelect->selectHomeFolder();
        }
    });
}

void MainWindowController::goBack()
{
    m_grantCheck.drop();
    m_navigationController->popViewController(Animated::Yes);
}

void MainWindowController::resetHomeFolder()
{
    m_grantCheck.drop();
    m_services.defaults.removeFolderEntries();
    setupNavigationController();
}
