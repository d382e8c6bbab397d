#pragma once

#include "tests/soak/kit/SoakPart.h"

/// An empty file system of this process's own: in memory, seen by no other process, and gone with
/// this one and its children. Made once, at the start, by a process with one thread. A disk that
/// cannot be made ends the process.
class SoakDisk final
{
public:
    /// --on says what kind of disk it is, --as who works on it.
    static QList<QCommandLineOption> options();
    /// From here on the process has the rights of that user and no others. Kinds but tmpfs, and
    /// other users, need the administrator.
    explicit SoakDisk(const SoakPart &part);

    /// Where it is mounted; it belongs to the user.
    QByteArray folder() const { return m_folder; }
    /// Whether the process may mount.
    bool isAdministrator() const { return m_isAdministrator; }
    /// For the table: "ext4, ordinary user".
    QByteArray where() const;

private:
    QByteArray m_kind;
    QByteArray m_folder;
    bool m_isAdministrator = false;
};
