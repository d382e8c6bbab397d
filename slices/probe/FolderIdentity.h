#pragma once

#include "slices/probe/HomeProbe.h"

/// A folder of a home, identified by its path and by what is there at present: one folder may have
/// two names, where upper and lower case are the same or where a folder is shown in two places. A
/// value.
struct FolderIdentity
{
    QByteArray path;          ///< relative to the home; it need not exist
    std::vector<InodeId> way; ///< of the folder and of every folder on the way, those that exist
    std::optional<InodeId> itself;

    static FolderIdentity at(const HomeProbe &reader, const QByteArray &path);

    /// Whether it is the other folder, or lies in it, by its path or by its inodes.
    bool isAtOrIn(const FolderIdentity &other) const;
};

/// Whether a path is the folder's, or lies below it; compares bytes.
bool isAtOrInside(const QByteArray &path, const QByteArray &folder);
