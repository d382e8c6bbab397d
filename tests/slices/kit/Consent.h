#pragma once

#include "platform/system/HostSystemCalls.h"
#include "slices/record/Confirmation.h"
#include "slices/record/Info.h"

#include <memory>
#include <vector>

/// The consent to clean these records, with what stands at their locations now. Nothing counts as
/// changed since.
inline Confirmation consentTo(const FileAccess &access,
                              const std::vector<std::shared_ptr<Info>> &records)
{
    FileUrls locations;
    for (const auto &record : records)
        locations += record->fileURLs().value_or(FileUrls());
    return {Moment::never(), lookAtLocations(hostSystemCalls(), access, locations)};
}

/// The same where access has to be begun first.
inline Confirmation consentTo(FileAccess &access, const std::vector<std::shared_ptr<Info>> &records)
{
    const AccessScope scope(access);
    return consentTo(std::as_const(access), records);
}
