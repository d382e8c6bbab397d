#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <QHash>
#include <optional>

/// The folders that a freedesktop home's file "user-dirs.dirs" names: where the user keeps
/// documents, downloads and the like, often in the language of the desktop. The file is a piece of
/// shell; it is read by the narrow rules of the programs that write it and never run. A value.
class UserDirs final
{
public:
    UserDirs() = default;

    /// Reads the file's bytes. Lines that do not follow the rules are passed over; of several lines
    /// for one name the last counts.
    static UserDirs parse(const QByteArray &text);

    /// The folder for a name such as "XDG_DOWNLOAD_DIR", relative to the home at this absolute
    /// path. Nothing when the file does not name it, or names the home itself, a place elsewhere, a
    /// hidden folder or one inside such a folder: people keep no downloads where programs keep
    /// settings and keys.
    std::optional<QByteArray> folder(const QByteArray &name, const QByteArray &homePath) const;

    /// All folders below the home that the file names for anything but this, hidden ones included:
    /// where something of the user's may lie, also for names that nobody knows.
    QByteArrayList allBut(const QByteArray &name, const QByteArray &homePath) const;

private:
    std::optional<QByteArray> place(const QByteArray &name, const QByteArray &homePath) const;

    QHash<QByteArray, QByteArray> m_values; ///< absolute paths, or "$HOME" with what follows
};

/// The path below the home, without "." and the like, of an absolute one; nothing for one that is
/// not strictly below it, or that goes through "..". Compares bytes and looks at no disk.
std::optional<QByteArray> pathBelowHome(const QByteArray &path, const QByteArray &homePath);

/// Where a link below the home leads: the path, also relative to the home, that the link at
/// `linkPath` stands for by its bytes. Nothing unless it is strictly below the home and goes up, if
/// at all, before it goes down. Looks at no disk.
std::optional<QByteArray> linkTargetBelowHome(const QByteArray &linkPath, const QByteArray &target,
                                              const QByteArray &homePath);

/// Whether a name on the path is hidden.
bool hasHiddenComponent(const QByteArray &relativePath);
