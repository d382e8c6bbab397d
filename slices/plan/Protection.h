#pragma once

#include "platform/system/FileStatus.h"
#include "slices/plan/CleaningPlan.h"

/// What is kept inside one location while it is cleaned. Three rules, each enough by itself: the
/// text of the URL, the components of the path, the identity of the item. A value; any thread.
class Protection final
{
public:
    /// `device` is the one that the location lies on; nothing is entered on another.
    Protection(const CleaningPlan &plan, const CleaningLocation &location, std::uint64_t device);

    /// Keeps one more, a folder inside the location.
    void keep(const FileUrl &folder);

    std::uint64_t device() const { return m_device; }
    /// Whether the items inside have to be judged by their paths.
    bool isTouched() const { return m_isTouched; }

    /// Whether an excluded item has this inode number. Sound without a look at the file system's
    /// handle: a number that was reused meanwhile only keeps something more.
    bool keepsInode(std::uint64_t inode) const;

    /// Whether a folder inside is emptied although it is the user's own and read-only.
    ReadOnlyFolders readOnlyFolders() const { return m_readOnlyFolders; }

    /// What the path rules say of an item at a raw path without a trailing slash. A package on the
    /// way to something excluded is kept whole: people see it as one file.
    ExclusionMatch match(const QByteArray &path, FileKind kind) const;

private:
    ExcludedPaths m_excluded; ///< shared with the plan, however many locations it has
    ExcludedPaths m_kept;     ///< in this location alone
    ExcludedInodes m_inodes;
    std::uint64_t m_device;
    bool m_isTouched;
    ReadOnlyFolders m_readOnlyFolders;
};
