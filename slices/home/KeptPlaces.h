#pragma once

#include "platform/files/FileUrl.h"

#include <span>

class HomeProbe;

/// A place among the caches of all programs that is no cache: nothing makes anew what lies there.
struct KeptPlace
{
    /// In a folder of caches. In the name of a folder, "*" stands for any bytes.
    const char *path = nullptr;
    /// What lies there, for people; not translated yet.
    const char *what = nullptr;
};

/// Immutable; any thread.
std::span<const KeptPlace> keptPlaces();

/// A kept place that is there: it is neither measured nor removed.
struct FoundKeptPlace
{
    FileUrl location;
    const char *what = nullptr; ///< see KeptPlace

    friend bool operator==(const FoundKeptPlace &, const FoundKeptPlace &) = default;
};

/// Looks for all kept places in these folders of caches, which lie in the home. Where a link is on
/// the way to one, the link is kept: what lies behind it is touched by nothing. What cannot be
/// looked at counts as there. Not for the main thread.
QList<FoundKeptPlace> findKeptPlaces(const HomeProbe &reader, const FileUrl &home,
                                     const FileUrls &caches);
