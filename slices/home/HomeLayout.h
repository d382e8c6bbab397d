#pragma once

#include "slices/home/PlacesOutOfReach.h"
#include "slices/record/SliceCatalogue.h"

/// The two ways in which a home folder is laid out.
enum class HomeKind {
    Unknown,     ///< not looked at yet
    Library,     ///< the programs keep their files in the folder "Library"
    Freedesktop, ///< they keep them in hidden folders, by the freedesktop conventions
};

/// How a program shows that it is running, so that its files are in use.
struct ProgramLock
{
    enum class Style {
        /// A link "SingletonLock" to "host-process".
        HostLink,
        /// The same, made in a sandbox. The sandbox's process numbers mean nothing outside.
        SandboxedHostLink,
        /// A file ".parentlock" with a file lock on it, and a link "lock" to "address:+process".
        ParentLock,
        /// Nothing in the home; only the process list tells.
        ProcessName,
    };

    Style style = Style::HostLink;
    /// The folder that holds the lock, relative to the home; for ProcessName the program's whole
    /// name.
    QByteArray place;

    friend bool operator==(const ProgramLock &, const ProgramLock &) = default;
};

/// Locations that belong to one program, and how to see whether it is using them.
struct ProgramFiles
{
    QString program; ///< for people
    ProgramLock lock;
    FileUrls locations;

    friend bool operator==(const ProgramFiles &, const ProgramFiles &) = default;
};

/// Where everything is in one home. A value, made by a survey: a location that appears later is not
/// in it. Says nothing about the programs that run at present; see ProgramsInUse.
class HomeLayout final
{
public:
    /// What was found in a freedesktop home.
    struct Findings
    {
        std::array<FileUrls, kSliceCount> locations; ///< in the catalogue's order
        FileUrls searchFolders;
        FileUrl trashFolder;
        std::vector<ProgramFiles> programs;
        PlacesOutOfReach outOfReach;
    };

    /// The layout of a home that was not looked at yet: no slice has a location.
    HomeLayout() = default;
    /// The fixed layout; nothing is looked at.
    static HomeLayout withLibrary(const FileUrl &home);
    static HomeLayout freedesktop(const FileUrl &home, Findings findings);

    HomeKind kind() const { return m_kind; }
    const FileUrl &home() const { return m_home; }

    /// Where the slice's content lies; nothing for large files, which the user picks, and while the
    /// layout is unknown. Folders are emptied, files are removed.
    std::optional<FileUrls> locations(SliceKind kind) const;
    /// The slice's description, which names the programs of this kind of home.
    QString details(SliceKind kind) const;
    /// The folder that the slice Downloads stands for, as people read it, relative to the home;
    /// empty where it has the slice's own name, or there is none.
    QString nameOfDownloads() const;
    /// The folders in which large files are looked for, none inside another. Empty for the fixed
    /// layout, whose folders the search knows.
    const FileUrls &searchFolders() const { return m_findings.searchFolders; }
    /// The folder that shows what is in the trash; invalid while the layout is unknown.
    FileUrl trashFolder() const;
    /// Whether this is a folder of the trash. What the user threw away is removed there even from
    /// folders that were made read-only.
    bool isInTrash(const FileUrl &location) const;
    /// Where the slice would have had locations, but cannot get to them.
    const QList<PlaceOutOfReach> &outOfReach(SliceKind kind) const
    {
        return m_findings.outOfReach[indexOf(kind)];
    }
    /// The programs whose locations are left out while they run.
    const std::vector<ProgramFiles> &programs() const { return m_findings.programs; }

private:
    HomeKind m_kind = HomeKind::Unknown;
    FileUrl m_home;
    Findings m_findings;
};
