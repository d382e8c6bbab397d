#include "slices/cleaning/TrashRecords.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/cleaning/DependentItems.h"
#include "slices/cleaning/KnownReasons.h"
#include "slices/removal/LaterChanges.h"

#include <cerrno>

namespace {

/// From the record to its item it takes a moment, and a few seconds where a disk has to spin up or
/// the machine is very busy. A large item that comes from another disk is there, in parts, at once.
constexpr std::int64_t kLongestMove = 10'000'000'000;

Moment before(const Moment &moment, std::int64_t nanoseconds)
{
    return {moment.stamp - nanoseconds, moment.precise - nanoseconds,
            moment.sinceStart - nanoseconds};
}

constexpr QByteArrayView kToFiles("../files/");

bool isRecord(const char *name)
{
    return !itemOfTrashInfo(name).isEmpty();
}

} // namespace

TrashRecords::TrashRecords(const SystemCalls &calls, const CleaningPlan &plan) : m_calls(calls)
{
    for (const CleaningLocation &location : plan.locations()) {
        if (location.whatGoes == RemovalScope::LoneTrashInfo)
            m_young.emplace(location.url.path(), findYoung(location));
    }
}

SystemResult<TrashRecords::Names> TrashRecords::findYoung(const CleaningLocation &info) const
{
    const auto folder = openAnchored(m_calls, info.path, Descent::Strict);
    if (!folder)
        return tl::unexpected(folder.error());
    const auto clockAhead = m_calls.clockDifference(folder->get());
    if (!clockAhead)
        return tl::unexpected(clockAhead.error());
    const LaterChanges later(m_calls, before(info.confirmed, kLongestMove), *clockAhead);
    std::vector<char> space(kListingSpace);
    const auto listing = FolderListing::ofFolder(m_calls, folder->get(), space);
    if (!listing)
        return tl::unexpected(listing.error());
    Names young;
    for (std::size_t i = 0; i < listing->size(); ++i) {
        const char *const name = listing->name(listing->at(i));
        if (isRecord(name) && isYoung(folder->get(), name, later))
            young.insert(name);
    }
    return young;
}

/// In doubt it is.
bool TrashRecords::isYoung(int folder, const char *record, const LaterChanges &later) const
{
    const auto item = m_calls.status(folder, itemOfTrashInfo(record).constData());
    if (item)
        return false;
    const auto status = m_calls.status(folder, record);
    return !status || later.include(*status);
}

void TrashRecords::passOver(const CleaningLocation &info, const KnownReasons &reasons,
                            CleaningReportBuilder &builder, FolderListing &listing) const
{
    const QByteArray folder = info.url.path();
    const QByteArray trash = folder.first(folder.lastIndexOf('/'));
    const auto &young = m_young.at(folder);
    const auto files = openFiles(info);
    if (!young || !files) {
        const int error = young ? files.error() : young.error();
        if (!young || !reasons.explainAllOf(trash + "/files"))
            builder.refused(folder, RefusalReason::Unreadable, error);
        return listing.removeIf(isRecord);
    }
    listing.removeIf([&](const char *record) {
        if (!isRecord(record))
            return false;
        const QByteArray name = itemOfTrashInfo(record).sliced(kToFiles.size());
        const auto item = itemIn(*files, name);
        const bool isThere = item || item.error() != ENOENT;
        const bool mayCome = !isThere && young->contains(record);
        if (mayCome)
            builder.refused(folder + '/' + record, RefusalReason::PerhapsNeeded, 0);
        if (isThere && !reasons.explain(trash + "/files/" + name, item))
            builder.refused(folder + '/' + record, RefusalReason::StillNeeded,
                            item ? 0 : item.error());
        return isThere || mayCome;
    });
}

/// No folder where there is none.
SystemResult<FileDescriptor> TrashRecords::openFiles(const CleaningLocation &info) const
{
    const AnchoredPath trash = anchoredEntry(info.path).folder;
    auto files =
        openAnchored(m_calls, {trash.anchor, trash.relativePath + "/files"}, Descent::Strict);
    return !files && files.error() == ENOENT ? FileDescriptor() : std::move(files);
}

SystemResult<FileStatus> TrashRecords::itemIn(const FileDescriptor &files,
                                              const QByteArray &name) const
{
    return files.isValid() ? m_calls.status(files.get(), name.constData()) : tl::unexpected(ENOENT);
}
