#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>
#include <vector>

/// Where a folder lies on its file system, whatever is mounted where. A value.
struct FolderPlace
{
    QByteArray device; ///< as a list of mounts writes it
    QByteArray path;   ///< from the root of the file system

    /// The place of the folder at an absolute path, which the mount of this number shows; nothing
    /// where the list of mounts does not tell.
    static std::optional<FolderPlace> of(const QByteArray &mounts, const QByteArray &mountNumber,
                                         const QByteArray &path);
};

/// The paths under which one folder, or a part of it, is shown: a sandbox and a bind mount give a
/// folder another path. Compares text alone and touches no file, so that no disk has to answer.
/// `mounts` is the content of a "mountinfo" file. A value.
class FolderNames final
{
public:
    /// The folder has this absolute path.
    void add(const QByteArray &path);
    /// The folder is shown by these mounts.
    void add(const QByteArray &mounts, const FolderPlace &place);

    /// Where an absolute path leads in the folder, as a relative path; empty for the folder itself
    /// and for what lies elsewhere.
    QByteArray pathInside(QByteArrayView path) const;

private:
    struct Name
    {
        QByteArray path;   ///< with a slash at its end
        QByteArray inside; ///< what of the folder is shown there, the same; empty for all of it
    };
    std::vector<Name> m_names;
};
