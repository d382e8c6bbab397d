#pragma once

#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "slices/plan/CleaningReportBuilder.h"
#include "slices/plan/Protection.h"

#include <optional>
#include <set>

/// Tells whether there is a reason for an item that stays: the plan keeps it, or the report names
/// it or a folder around it. What belongs to such an item then needs no reason of its own. Knows
/// the report of the moment in which it is made.
class KnownReasons final
{
public:
    KnownReasons(const CleaningPlan &plan, const Protection &protection,
                 CleaningReportBuilder &builder);

    /// Why an item stays. `found`: what is at the raw path.
    bool explain(const QByteArray &path, const SystemResult<FileStatus> &found) const;
    /// Why a folder stays with all that is in it.
    bool explainAllOf(const QByteArray &folder) const;

private:
    bool isNamed(const QByteArray &path) const;
    bool isInExcludedLocation(const QByteArray &path) const;

    const CleaningPlan &m_plan;
    const Protection &m_protection;
    std::optional<std::set<QByteArray>> m_named; ///< nothing: there are too many to know
};
