#pragma once

#include "platform/files/FileAccess.h"
#include "slices/home/HomeLayout.h"
#include "slices/home/KeptPlaces.h"

#include <QStringList>

class SystemCalls;

/// The locations at and inside these locations that programs of the layout may use, each once. Some
/// may lie in others, and they need not exist.
FileUrls programLocations(const HomeLayout &layout, const FileUrls &locations);

/// The locations at and inside this location whose programs run at this very moment. Their locks
/// below the home, which `anchor` holds open, and the process list tell that. None lies in another,
/// and they need not exist. Not for the main thread.
FileUrls locationsInUse(const SystemCalls &calls, const AnchoredPath &anchor,
                        const HomeLayout &layout, const FileUrl &location);

/// Whether a look could see all running programs; see SystemCalls::seesAllProcesses().
enum class ProgramsSeen : std::uint8_t { All, Some };

/// The programs of a layout that were running when they were looked for, and those of their
/// locations that existed. These are left out of a cleaning: a browser writes its cookies back when
/// it ends, and breaks when they vanish while it runs. In doubt a program runs. Also the places
/// among the caches that are no cache, whoever runs. A value.
class ProgramsInUse final
{
public:
    ProgramsInUse() = default;

    /// Looks at the locks in the home and at the process list; not for the main thread. The caller
    /// holds the access.
    static ProgramsInUse find(const SystemCalls &calls, const FileAccess &access,
                              const HomeLayout &layout);

    /// Where only some programs could be seen, those that are here may be running.
    ProgramsSeen seen() const { return m_seen; }
    /// The locations without those that are left out.
    FileUrls without(const FileUrls &locations) const;
    /// What stays inside these locations, none of it in another.
    FileUrls keptInside(const FileUrls &locations) const;
    /// The places inside these locations that are kept because they are no cache.
    QList<FoundKeptPlace> keptPlaces(const FileUrls &locations) const;
    /// The names of the programs that keep some of these locations or something inside, each once.
    QStringList programs(const FileUrls &locations) const;

    friend bool operator==(const ProgramsInUse &, const ProgramsInUse &) = default;

private:
    QList<ProgramFiles> m_programs;
    ProgramsSeen m_seen = ProgramsSeen::All;
    QList<FoundKeptPlace> m_keptPlaces;
};
