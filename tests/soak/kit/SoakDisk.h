#pragma once

#include "tests/support/run/ChildProcess.h"

#include <QByteArray>

/// An empty file system of this process's own: in memory, seen by no other process, and gone with
/// this one and its children. Made once, at the start, by a process with one thread. A disk that
/// cannot be made ends the process.
class SoakDisk final
{
public:
    enum class Kind { Memory, Ext4, Btrfs };

    /// From here on the process has the rights of `user` and no others. Kinds but Memory, and other
    /// users, need the administrator.
    SoakDisk(Kind kind, ChildUser user);

    /// Where it is mounted; it belongs to the user.
    QByteArray folder() const { return m_folder; }
    /// Whether the process may mount.
    bool isAdministrator() const { return m_isAdministrator; }
    /// For the table: "ext4, ordinary user".
    QByteArray where() const;

private:
    Kind m_kind;
    QByteArray m_folder;
    bool m_isAdministrator = false;
};
