#include "slices/cleaning/KnownReasons.h"

#include <algorithm>

KnownReasons::KnownReasons(const CleaningPlan &plan, const Protection &protection,
                           CleaningReportBuilder &builder)
    : m_plan(plan), m_protection(protection), m_named(builder.namedPaths())
{
}

bool KnownReasons::explain(const QByteArray &path, const SystemResult<FileStatus> &found) const
{
    if (isNamed(path) || (found && m_protection.keepsInode(found->inode)))
        return true;
    const FileKind kind = found ? found->kind : FileKind::Unknown;
    return m_protection.match(path, kind) != ExclusionMatch::None || isInExcludedLocation(path);
}

bool KnownReasons::explainAllOf(const QByteArray &folder) const
{
    return isNamed(folder) || isInExcludedLocation(folder) ||
           m_protection.match(folder, FileKind::Folder) == ExclusionMatch::Whole;
}

bool KnownReasons::isInExcludedLocation(const QByteArray &path) const
{
    return m_plan.isInExcludedLocation(path);
}

bool KnownReasons::isNamed(const QByteArray &path) const
{
    if (!m_named)
        return true;
    for (qsizetype end = path.size(); end > 0; end = path.lastIndexOf('/', end - 1)) {
        if (m_named->contains(path.first(end)))
            return true;
    }
    return false;
}
