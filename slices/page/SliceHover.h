#pragma once

#include "platform/files/FileUrl.h"
#include "platform/threads/BackgroundQueue.h"

class FileAccess;
class HomeWatch;
class PieChart;
class SliceHoverButtons;
class SliceSelection;
class SystemCalls;
class Workspace;
struct Alert;

/// Offers, for the slice under the pointer, its description and a way to show its locations in the
/// file manager. Asks the disk beside the main thread. An answer for a slice that the pointer has
/// left shows nothing. Owned by the page; main thread only.
class SliceHover final : public QObject
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        const SystemCalls &calls;
        FileAccess &access;
        Workspace &workspace;
        HomeWatch &home;
        const SliceSelection &selection;
        std::function<void(const Alert &)> tell; ///< shows a message to the user
    };

    /// Puts its buttons onto the chart, which owns them.
    SliceHover(PieChart &chart, Services services, QObject *parent = nullptr);

    SliceHoverButtons &buttons() const { return m_buttons; }

    /// The pointer is over this slice, or over none (SliceHoverButtons::kNoSlice). May be called
    /// repeatedly with the same slice.
    void moveTo(int index);
    /// The pie moves away below the pointer.
    void forget();
    /// Forgets the slice, and drops the answers to open requests.
    void stop();

public Q_SLOTS:
    /// Explains the slice under the pointer.
    void showInfo();
    /// Shows the locations of the slice under the pointer in the file manager.
    void showInFinder();

private:
    void offerReveal(int index);
    void explain(int index);
    QString descriptionOf(int index) const;
    void showTrash();
    FileUrls locationsOf(int index) const;
    BackgroundTask<OwnersEnd::Abandon>
    lookForLocations(const FileUrls &locations, std::function<void(const FileUrls &)> then) const;

    using Looks = BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly>;

    Services m_services;
    SliceHoverButtons &m_buttons;
    Looks m_offering;                       ///< for what there is to be shown of the slice
    Looks m_reveal{kThreadForEachTask};     ///< for what is to be shown in the file manager
    Looks m_describing{kThreadForEachTask}; ///< for the programs that a description names
};
