#include "slices/page/SliceSelection.h"

#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/base/ByteCount.h"
#include "slices/exclusions/ExcludedPaths.h"

#include <algorithm>
#include <numeric>

namespace {

std::shared_ptr<Info> madeRecord(const SliceDescription &slice, const HomeLayout &layout,
                                 const Info::Services &services, const ProgramsInUse &inUse)
{
    const QString name = QString::fromUtf16(slice.name);
    if (slice.kind != SliceKind::LargeFiles) {
        const std::optional<FileUrls> locations = layout.locations(slice.kind);
        auto record = Info::infoWithName(name, locations, services);
        if (locations) {
            const FileUrls rest = inUse.without(*locations);
            record->setLocations(rest, inUse.keptInside(rest));
        }
        return record;
    }
    auto record = std::make_shared<Info>(name, std::nullopt, name,
                                         QString::fromUtf16(kClickToSelect), services);
    record->setIsOn(false);
    return record;
}

} // namespace

SliceSelection::SliceSelection(UserDefaults &defaults, FileAccess &access)
    : m_defaults(defaults), m_access(access)
{
}

void SliceSelection::rebuild(const HomeLayout &layout, const Info::Services &services,
                             const ProgramsInUse &inUse)
{
    m_layout = layout;
    m_records.clear();
    for (const SliceDescription &slice : sliceCatalogue())
        m_records.push_back(madeRecord(slice, layout, services, inUse));
    restore();
}

void SliceSelection::restore()
{
    // The stored list may be of any length: what it does not name keeps its first state.
    const QList<bool> stored = m_defaults.booleans(VNTSelectedSlicesString);
    const auto count = std::min<std::size_t>(stored.size(), m_records.size());
    for (std::size_t i = 0; i < count; ++i)
        m_records[i]->setIsOn(stored[static_cast<qsizetype>(i)]);
    // Nothing is picked yet, even if a settings file that was edited by hand says so.
    record(SliceKind::LargeFiles).setIsOn(false);
}

void SliceSelection::updateSelectedSlicesUserDefaults() const
{
    QList<bool> selected;
    for (const auto &record : m_records)
        selected.append(record->isOn());
    selected[indexOf(SliceKind::LargeFiles)] = false;
    m_defaults.setBooleans(VNTSelectedSlicesString, selected);
}

SliceSelection::Toggle SliceSelection::toggle(int index)
{
    Info &info = *m_records.at(index);
    const bool staysOff = isExcluded(info);
    info.setIsOn(!staysOff && !info.isOn());
    return staysOff ? Toggle::Excluded : Toggle::Switched;
}

/// Checks all locations that the home has for the slice: a location that a program uses at present
/// is missing in the record, but is not excluded for that reason.
bool SliceSelection::isExcluded(const Info &record) const
{
    const std::optional<SliceKind> kind = sliceKindNamed(record.name());
    const std::optional<FileUrls> locations = kind ? m_layout.locations(*kind) : std::nullopt;
    return containsExcludedFile(locations ? locations : record.fileURLs());
}

bool SliceSelection::applyExclusions()
{
    Info &largeFiles = record(SliceKind::LargeFiles);
    const bool hadPicks = !largeFiles.fileURLs().value_or(FileUrls()).isEmpty();
    if (hadPicks) {
        largeFiles.setFileURLs({});
        largeFiles.setIsOn(false);
    }
    for (const auto &record : m_records) {
        if (record.get() != &largeFiles && isExcluded(*record))
            record->setIsOn(false);
    }
    return hadPicks;
}

bool SliceSelection::containsExcludedFile(const std::optional<FileUrls> &fileURLs) const
{
    const AccessScope access(m_access);
    return fileURLs && excludedPaths().containsExcludedFile(*fileURLs);
}

bool SliceSelection::somethingIsSelected() const
{
    return std::ranges::any_of(m_records, [](const auto &record) { return record->isOn(); });
}

SliceSelection::Records SliceSelection::chosen() const
{
    Records chosen;
    std::ranges::copy_if(m_records, std::back_inserter(chosen),
                         [](const auto &record) { return record->isOn(); });
    return chosen;
}

SliceSelection::Choice SliceSelection::choice() const
{
    Choice choice;
    for (const auto &record : chosen())
        choice.slices.push_back({record, record->fileURLs(), record->kept()});
    choice.excludedPaths = m_defaults.strings(VNTExcludedPathsString);
    return choice;
}

qint64 SliceSelection::totalSize() const
{
    return std::accumulate(
        m_records.begin(), m_records.end(), qint64{0}, [](qint64 sum, const auto &record) {
            return record->isOn() ? sumOfByteCounts(sum, record->fileSize()) : sum;
        });
}

ExcludedPaths SliceSelection::excludedPaths() const
{
    return ExcludedPaths::fromStoredStrings(m_defaults.strings(VNTExcludedPathsString));
}
