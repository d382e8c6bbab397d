#pragma once

#include "app/grant/GrantCheck.h"
#include "app/navigation/BFNavigationController.h"
#include "app/navigation/BFNavigationControllerDelegate.h"
#include "app/navigation/VNTViewController.h"
#include "app/pages/FinalViewController.h"
#include "app/pages/FolderSelectViewController.h"
#include "slices/page/FreeSpaceViewController.h"

#include <memory>

class ColorWindow;
class DiskInfoViewController;
class ExcludedFilesChangedNotification;
class SystemCalls;

/// Owns the window and the wizard's four pages, and moves between them. Pages know no other page;
/// they ask this class to go forward or back. Made once at launch and lives as long as the program.
/// Main thread only.
class MainWindowController final : public QObject,
                                   public VNTViewControllerDelegate,
                                   public BFNavigationControllerDelegate
{
    Q_OBJECT

public:
    /// What the pages work with; all must outlive it.
    struct Services
    {
        const InterfaceLoader &loader;
        UserDefaults &defaults;
        StatsUpdater &stats;
        Workspace &workspace;
        const SystemCalls &calls;
        FileAccess &access;
        ExcludedFilesChangedNotification &excludedFilesChanged;
        Addresses addresses;
        std::function<QByteArray()> realHomeDirectory;
        LabelController::Reader readVolume = startUpVolumeSizes;
        std::function<void()> restart; ///< starts the program again and ends this run
    };

    explicit MainWindowController(Services services);
    ~MainWindowController() override;

    ColorWindow &window() { return *m_window; }
    void showWindow();

    /// The pages in the wizard's order, made once.
    const QList<VNTViewController *> &viewControllers() const { return m_viewControllers; }
    BFNavigationController &navigationController() { return *m_navigationController; }
    ViewController *currentViewController() const;

    FolderSelectViewController &folderSelectPage() { return *m_folderSelect; }
    DiskInfoViewController &diskInfoPage() { return *m_diskInfo; }
    FreeSpaceViewController &freeSpacePage() { return *m_freeSpace; }
    FinalViewController &finalPage() { return *m_final; }

    void willGoForward(VNTViewController &page, bool forward, const QVariant &data) override;

    /// Finds out whether the stored grant leads to the folder in which work would be done. If it
    /// does, goes on with `then`; if not, tells the user and offers to grant again. Returns at
    /// once: another thread waits for the disk. Nothing happens when the page is left meanwhile, or
    /// when this is asked for something else.
    void whenGrantIsUsable(
        std::function<void()> then, std::function<void()> otherwise = [] {});
    bool isLookingAtGrant() const { return m_grantCheck.isLooking(); }

public Q_SLOTS:
    void goBack();
    /// Forgets the grant and starts over with the first page.
    void resetHomeFolder();

Q_SIGNALS:
    /// Whether the user may leave the page now.
    void navigationAllowed(bool isAllowed);

private:
    void windowDidLoad();
    void setupViewControllers();
    void setupNavigationController();
    void replaceContentWithViewController(ViewController &controller);
    void showPageAfter(VNTViewController &page, const QVariant &data);
    bool isGrantUsable(std::optional<GrantFailure> failure);
    void tellGrantFailure(GrantFailure failure);

    Services m_services;
    std::unique_ptr<ColorWindow> m_window;
    std::unique_ptr<FolderSelectViewController> m_folderSelect;
    std::unique_ptr<DiskInfoViewController> m_diskInfo;
    std::unique_ptr<FreeSpaceViewController> m_freeSpace;
    std::unique_ptr<FinalViewController> m_final;
    QList<VNTViewController *> m_viewControllers;
    std::unique_ptr<BFNavigationController> m_navigationController;
    GrantCheck m_grantCheck;
};
