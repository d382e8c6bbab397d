#pragma once

#include "slices/HomeReader.h"
#include "slices/UserDirs.h"

/// The folders of a freedesktop home in which the user keeps what nobody may take for something
/// else. They are known by their paths and by what is there at present: one folder may have two
/// names, where upper and lower case are the same or a folder is shown in two places, and a link
/// may stand in its stead. Paths are relative to the home. One thread.
class UserFolders final
{
public:
    /// The reader must outlive it; `homePath` is absolute.
    UserFolders(const HomeReader &reader, const QByteArray &homePath);

    /// Adds a folder, which may be missing, and where it is a link also what that leads to.
    void add(const QByteArray &path);

    /// Whether the place is one of the folders, or lies around one.
    bool isAtOrAroundOne(const QByteArray &place) const;
    /// Whether the place is one of the folders, or lies in one.
    bool isAtOrInOne(const QByteArray &place) const;

private:
    struct Folder
    {
        QByteArray path;
        std::vector<HomeReader::Identity> way; ///< of every folder on the way that is there
        std::optional<HomeReader::Identity> itself;
    };

    void addFolder(const QByteArray &path);

    const HomeReader &m_reader;
    const QByteArray m_homePath;
    std::vector<Folder> m_folders;
};

/// Whether a path is another, or lies below it, by their bytes.
bool isAtOrInside(const QByteArray &path, const QByteArray &folder);
