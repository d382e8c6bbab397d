#pragma once

#include "slices/removal/HeldFolder.h"

#include <deque>
#include <functional>
#include <span>
#include <stop_token>

class ConfinedRun;

/// Empties a folder of the plan, on threads that the kernel confines to it. Where something is kept
/// inside, it confines them to the folders beside: neither a folder that is moved meanwhile nor a
/// mistake of ours reaches what is kept. Used once, on the thread that cleans, which itself stays
/// unconfined and removes nothing.
class FolderEmptier final
{
public:
    /// `location` is the open folder of `context.location`.
    FolderEmptier(const SystemCalls &calls, const RemovalContext &context, int location,
                  EntryOrder order, std::stop_token stop);

    const RemovalSteps &steps() const { return m_steps; }

    /// Removes what the listing names in the location, with all that it holds. What is kept is
    /// asked for now: it may have grown since the last call.
    void remove(const HeldFolder &folder, FolderListing entries);
    /// Removes one entry of the folder around a location of single files. If that is a package, the
    /// thread that empties it reaches nothing beside it.
    void removeSingle(const HeldFolder &folder, FolderListing entry);

private:
    /// A folder on the way to something that is kept.
    struct FolderOnTheWay
    {
        QByteArray around; ///< below the location, empty or with a trailing slash
        QByteArray name;
        FolderListing::Entry entry;
        FolderState state; ///< of the folder around
        const FolderWay *way;
    };
    struct Parts
    {
        FolderListing folders;
        FolderListing files;
    };

    void removeBesideKept(const HeldFolder &folder, const QByteArray &relativePath,
                          const FolderListing &entries);
    void goOn(const FolderOnTheWay &onTheWay);
    Parts judge(const HeldFolder &folder, const QByteArray &relativePath,
                const FolderListing &entries);
    void emptyFolders(HeldFolder folder, FolderListing folders, EmptiedFolders &emptied);
    void emptyPackage(HeldFolder folder, FolderListing package, EmptiedFolders &emptied);
    void allowEach(ConfinedRun &run, const HeldFolder &folder, const FolderListing &folders) const;
    void removeFiles(const HeldFolder &folder, const FolderListing &files, EmptiedFolders &emptied);
    void removeEmptied(const HeldFolder &folder, EmptiedFolders &emptied);
    void removeAll(const HeldFolder &folder, FolderListing entries);
    void confined(ConfinedRun &run, const QByteArray &path, const std::function<void()> &step);

    const SystemCalls &m_calls;
    const RemovalContext m_context;
    LeftAside m_leftAside;
    const RemovalSteps m_steps;
    int m_location;
    EntryOrder m_order;
    std::stop_token m_stop;
    std::vector<char> m_space;
    std::deque<FolderWay> m_ways; ///< their addresses last
    std::vector<FolderOnTheWay> m_onTheWay;
};
