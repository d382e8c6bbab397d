#pragma once

#include "slices/home/HomeProbe.h"

/// A folder of a home, known by its path and by what is there at present: one folder may have two
/// names, where upper and lower case are the same or a folder is shown in two places. A value.
struct FolderIdentity
{
    QByteArray path;          ///< relative to the home; nothing need be there
    std::vector<InodeId> way; ///< of every folder on the way that is there, and itself
    std::optional<InodeId> itself;

    static FolderIdentity at(const HomeProbe &reader, const QByteArray &path);

    /// Whether it is the other folder, or lies in it, by path or by what is there.
    bool isAtOrIn(const FolderIdentity &other) const;
};

/// Whether a path is another, or lies below it, by their bytes.
bool isAtOrInside(const QByteArray &path, const QByteArray &folder);
