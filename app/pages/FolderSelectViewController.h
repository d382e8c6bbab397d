#pragma once

#include "app/navigation/VNTViewController.h"
#include "platform/threads/BackgroundQueue.h"

#include <QTimer>
#include <functional>
#include <optional>

class ImageButton;
class ImageView;
class SystemCalls;
class UserDefaults;

/// The first page: asks for the home folder, checks the choice, stores the grant once the folder's
/// disk has answered, and moves on once there is a grant. Owned by the main window's controller;
/// main thread only.
class FolderSelectViewController final : public VNTViewController
{
    Q_OBJECT

public:
    /// What the page works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        const SystemCalls &calls;
        /// The user's home directory by the password database; see RealHomeDirectory().
        std::function<QByteArray()> realHomeDirectory;
    };

    /// The time from a stored grant to the next page.
    static constexpr std::chrono::seconds kPauseBeforeNextPage{1};

    FolderSelectViewController(const InterfaceLoader &loader, Services services,
                               QObject *parent = nullptr);

    ImageButton *homeButton() const { return m_homeButton; }
    ImageView *homeCheck() const { return m_homeCheck; }
    /// Whether the page waits for the disk of a chosen folder. It drops that folder when the user
    /// makes another choice, and when the page is left or begun again.
    bool isGranting() const { return m_granting.isBusy(); }

    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    /// Shows the open panel whose choice is stored under this settings key.
    void runSelectionPanelForFolderString(const QString &key);

    /// The raw path at which the panel for this key starts; nothing for any other key.
    static std::optional<QByteArray> URLForFolderString(const QString &key);

    /// Shows whether there is a grant, and moves on if so.
    void updateUI();

public Q_SLOTS:
    /// The home button's action.
    void selectHomeFolder();

private:
    void finishSelection(const QString &key, const std::optional<QByteArray> &path);
    bool isNamedLikeTheRealHome(const QByteArray &path) const;
    void grant(const QString &key, const QByteArray &path);
    void storeGrant(const QString &key, const QByteArray &grant);
    void showGrantError(const QByteArray &path, int error);
    void goForwardIfGranted();

    Services m_services;
    QTimer m_forwardTimer;
    ImageButton *m_homeButton = nullptr;
    ImageView *m_homeCheck = nullptr;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_granting{kThreadForEachTask};
};
