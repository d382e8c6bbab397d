#pragma once

#include "platform/files/FileAccess.h"
#include "slices/home/ProgramsInUse.h"
#include "slices/record/Info.h"

#include <memory>
#include <vector>

class ExcludedPaths;
class UserDefaults;

/// The eight slices of the cleaning page with what the user chose of them: which are on, which the
/// exclusions forbid, and how much that makes. Kept in the settings under VNTSelectedSlicesString.
/// Owned by the page; main thread only.
class SliceSelection final
{
public:
    enum class Toggle {
        Switched, ///< the slice is now what it was not
        Excluded, ///< stays off: all of its locations, also those in use, are excluded
    };

    /// Both must outlive it. Empty until rebuild().
    SliceSelection(UserDefaults &defaults, FileAccess &access);

    using Records = std::vector<std::shared_ptr<Info>>;

    /// The records in the catalogue's order.
    const Records &records() const { return m_records; }
    Info &record(SliceKind kind) { return *m_records.at(indexOf(kind)); }

    /// Makes eight new records, nothing measured yet, and restores the stored selection. Locations
    /// in use are left out.
    void rebuild(const HomeLayout &layout, const Info::Services &services,
                 const ProgramsInUse &inUse = {});

    /// Stores which slices are on. Large files are never stored as on: the user picks them anew.
    void updateSelectedSlicesUserDefaults() const;

    /// Switches a slice with fixed locations on or off, unless the exclusions forbid it.
    Toggle toggle(int index);

    /// Switches off what the exclusions forbid now. True when picked large files were dropped.
    bool applyExclusions();

    /// Whether each of these locations is excluded by exactly its path; false for no locations.
    bool containsExcludedFile(const std::optional<FileUrls> &fileURLs) const;

    bool somethingIsSelected() const;
    /// Those that are on, in order.
    Records chosen() const;

    /// One chosen slice, with what it stands for on the disk.
    struct ChosenSlice
    {
        std::shared_ptr<Info> record;
        std::optional<FileUrls> fileURLs;
        FileUrls kept;

        friend bool operator==(const ChosenSlice &, const ChosenSlice &) = default;
    };
    struct Choice
    {
        std::vector<ChosenSlice> slices;
        QStringList excludedPaths; ///< as stored

        friend bool operator==(const Choice &, const Choice &) = default;
    };
    /// What would be cleaned now. Equal to another choice when exactly the same would be removed.
    Choice choice() const;

    /// Bytes of the slices that are on; one that is not measured yet counts 0.
    qint64 totalSize() const;

    ExcludedPaths excludedPaths() const;

private:
    void restore();
    bool isExcluded(const Info &record) const;

    UserDefaults &m_defaults;
    FileAccess &m_access;
    HomeLayout m_layout;
    Records m_records;
};
