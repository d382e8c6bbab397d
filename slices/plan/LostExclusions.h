#pragma once

#include "slices/exclusions/ResolvedExclusions.h"

#include <optional>
#include <vector>

/// The exclusions that could not be found. One could be anything in the folder that holds it by its
/// path; one that cannot be looked at could be anything at all. A value; any thread.
class LostExclusions final
{
public:
    LostExclusions() = default;
    explicit LostExclusions(const std::vector<ResolvedExclusions::Lost> &lost);

    /// The first one, in the order in which they are excluded, that could be in the folder at this
    /// raw path.
    std::optional<ResolvedExclusions::Lost> firstPerhapsIn(const QByteArray &folder) const;

private:
    struct Numbered
    {
        std::size_t number;
        ResolvedExclusions::Lost lost;
    };

    std::vector<Numbered> m_byPath; ///< sorted; those that could be looked at
    std::optional<Numbered> m_firstHidden;
};
