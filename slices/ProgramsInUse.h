#pragma once

#include "platform/SystemCalls.h"
#include "slices/FileAccess.h"
#include "slices/HomeLayout.h"

#include <QStringList>

/// Whether a program of the layout that uses this location runs at this very moment, as its lock
/// below the home tells, which `anchor` holds open; not for the main thread.
bool isUsedByAProgram(const SystemCalls &calls, const AnchoredPath &anchor,
                      const HomeLayout &layout, const FileUrl &location);

/// The programs of a layout that were running when they were looked for, and the places that are
/// therefore left out: a browser writes its cookies back when it ends, and breaks when they vanish
/// under it. In doubt a program runs. A value.
class ProgramsInUse final
{
public:
    ProgramsInUse() = default;

    /// Looks at the locks in the home and at the process list; not for the main thread. The caller
    /// holds the access.
    static ProgramsInUse find(const SystemCalls &calls, const FileAccess &access,
                              const HomeLayout &layout);

    /// The locations without those that are left out.
    FileUrls without(const FileUrls &locations) const;
    /// The names of those that keep some of these locations, each once.
    QStringList programs(const FileUrls &locations) const;

private:
    struct Program
    {
        QString name;
        FileUrls places;
    };
    QList<Program> m_programs;
};
