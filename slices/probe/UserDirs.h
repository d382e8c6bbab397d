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

    /// The paths that the file gives for all names except this one: files of the user's may lie
    /// there. Includes names that this program does not know.
    QByteArrayList allBut(const QByteArray &name, const QByteArray &homePath) const;

    /// Whether it is unclear what the file says about any name except this one: a line for it does
    /// not follow the rules, and a shell or a less strict program may still read something from it.
    bool isUnclearBut(const QByteArray &name) const;

private:
    void readLine(const QByteArray &line);

    QHash<QByteArray, QByteArray> m_values; ///< absolute paths, or "$HOME" with what follows
    QSet<QByteArray> m_unclear;             ///< names with a line that is not understood
};
