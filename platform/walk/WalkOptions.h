#pragma once

/// Hidden is what has a name that begins with a full stop.
enum class HiddenItems { Skipped, Included };

/// Enough for all but the deepest trees, and few enough for all slices to be measured at once.
inline constexpr unsigned kWalkedFoldersOpen = 48;

struct WalkOptions
{
    HiddenItems hiddenItems = HiddenItems::Skipped;
    /// How many folders the whole walk may hold open at once; at least two a thread are taken.
    unsigned openFolders = kWalkedFoldersOpen;
};
