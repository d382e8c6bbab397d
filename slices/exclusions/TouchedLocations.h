#pragma once

#include "platform/files/FileUrl.h"

#include <QByteArrayList>
#include <QByteArrayView>
#include <vector>

/// Tells of a location whether some excluded path contains its path anywhere: such a location is
/// cleaned item by item. Takes logarithmic time for each location: a path begins with a slash, so
/// it can only be contained where a tail of the excluded path begins, and these are sorted.
/// Immutable; any thread.
class TouchedLocations final
{
public:
    explicit TouchedLocations(const FileUrls &excluded);
    TouchedLocations(const TouchedLocations &) = delete;
    TouchedLocations &operator=(const TouchedLocations &) = delete;

    bool isTouched(const FileUrl &location) const;

private:
    QByteArrayList m_paths;
    std::vector<QByteArrayView> m_tails; ///< of these, from each of their slashes on; sorted
};
