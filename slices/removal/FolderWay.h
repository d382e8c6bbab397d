#pragma once

#include <cstdint>

/// The way from a folder up to the location that holds it, as it was on the way down. Whoever holds
/// a folder open holds the links of its way.
struct FolderWay
{
    const FolderWay *around = nullptr; ///< nothing for the location itself
    std::uint64_t inode = 0;
};
