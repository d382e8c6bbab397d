#pragma once

/// An item is hidden when its name begins with a full stop.
enum class HiddenItems { Skipped, Included };

/// Enough for all but the deepest trees, and few enough for all slices to be measured at once.
inline constexpr unsigned kWalkedFoldersOpen = 48;

struct WalkOptions
{
    HiddenItems hiddenItems = HiddenItems::Skipped;
    /// How many folders the whole walk may hold open at once; each thread uses at least two.
    unsigned openFolders = kWalkedFoldersOpen;
};
