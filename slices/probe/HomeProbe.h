#pragma once

#include "platform/files/FileAccess.h"
#include "platform/files/FolderListing.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "slices/probe/PlaceOutOfReach.h"

#include <QByteArrayList>
#include <stop_token>

class SystemCalls;

/// Looks into a granted home, to find out which of the locations that programs use are there. Goes
/// down from the home's descriptor, never through a link and never onto another file system. What
/// it cannot read counts as missing, unless said otherwise. Paths are raw and relative to the home.
/// One thread at a time, not the main one.
class HomeProbe final
{
public:
    /// `home` is the granted folder, open. The calls must outlive the reader. Once a stop is
    /// requested, nothing matches any more: what was found by then must not be used.
    HomeProbe(const SystemCalls &calls, std::shared_ptr<const FileDescriptor> home,
              std::stop_token stop = {});

    bool hasFolder(const QByteArray &path) const;
    /// The first place on the way to a folder from which it goes no further, although something is
    /// there; nothing for a folder that can be reached, or that is missing.
    std::optional<PlaceOutOfReach> obstacleOnTheWay(const QByteArray &path) const;
    /// Nothing where there is no folder.
    std::optional<InodeId> idOf(const QByteArray &path) const;
    /// The ids of the folder at the path and of all folders around it below the home, those that
    /// exist.
    std::vector<InodeId> idsOnTheWay(const QByteArray &path) const;
    /// The folders that the pattern matches, sorted. In a component "*" stands for any bytes in the
    /// name of one folder that is there; a component "@name" is the folder of that name or, where
    /// that is a link, the folder beside it to which the link leads.
    QByteArrayList foldersMatching(const QByteArray &pattern) const;
    /// What the pattern matches, folders or not. Where a link stands on the way, the link matches.
    /// What cannot be looked at counts as there.
    QByteArrayList entriesMatching(const QByteArray &pattern) const;
    /// Those of the paths, in their order, where a plain file is.
    QByteArrayList filesAmong(const QByteArrayList &paths) const;
    /// Where a link leads, by its own bytes; nothing where there is none.
    std::optional<QByteArray> linkAt(const QByteArray &path) const;
    /// The bytes of a plain file of no more than `limit` bytes. Only ENOENT says that there is
    /// none. Anything else that cannot be read has another error, a link ELOOP.
    SystemResult<QByteArray> contentOf(const QByteArray &path, std::size_t limit) const;

private:
    SystemResult<FileDescriptor> open(const QByteArray &path) const;
    SystemResult<FileStatus> statusOf(const QByteArray &path) const;
    bool isThere(const QByteArray &path) const;
    QByteArrayList foldersIn(const QByteArray &path) const;
    QByteArrayList behindLink(const QByteArray &path, const QByteArray &name) const;
    QByteArrayList matchesIn(const QByteArray &path, const QByteArray &component) const;

    const SystemCalls &m_calls;
    std::shared_ptr<const FileDescriptor> m_home;
    std::stop_token m_stop;
    mutable std::vector<char> m_space;
};
