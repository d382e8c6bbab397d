#pragma once

#include <cstdint>

/// What a bare walk has seen.
struct BareWalkResult
{
    std::int64_t bytes = 0; ///< of all entries that are no folders
    std::int64_t items = 0; ///< hidden ones not
    bool isComplete = true; ///< false when a call failed
};

/// Walks a tree with as few calls as a walk from descriptor to descriptor can: one to open a
/// folder, those that list it, and one for the status of each entry. No rights are asked for,
/// nothing is compared, no mount is noticed, and nothing is kept. Threads share subfolders by
/// halves and wide folders in blocks of their listing. The yardstick for the engine's walk, so it
/// shares no code with it.
///
/// `folder` is a path whose last component may be a link. `threads` is at least one.
BareWalkResult walkBarely(const char *folder, unsigned threads);
