#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <QHash>
#include <QSet>
#include <optional>

/// The folders that a freedesktop home's file "user-dirs.dirs" names: where the user keeps
/// documents, downloads and the like, often in the language of the desktop. The file is a piece of
/// shell; it is read by the narrow rules of the programs that write it and never run. A value.
class UserDirs final
{
public:
    UserDirs() = default;

    /// Reads the file's bytes. Of several lines for one name the last that follows the rules
    /// counts.
    static UserDirs parse(const QByteArray &text);

    /// The absolute path for a name such as "XDG_DOWNLOAD_DIR", as it is written, in the home at
    /// this absolute path. Nothing when the file does not name it.
    std::optional<QByteArray> path(const QByteArray &name, const QByteArray &homePath) const;

    /// The paths that the file names for anything but this: where something of the user's may lie,
    /// also for names that nobody knows.
    QByteArrayList allBut(const QByteArray &name, const QByteArray &homePath) const;

    /// Whether nobody can tell what the file says about another name than this: a line for it does
    /// not follow the rules, and a shell or a laxer program may read something out of it.
    bool isUnclearBut(const QByteArray &name) const;

private:
    void readLine(const QByteArray &line);

    QHash<QByteArray, QByteArray> m_values; ///< absolute paths, or "$HOME" with what follows
    QSet<QByteArray> m_unclear;             ///< names with a line that is not understood
};
