#pragma once

#include "platform/system/FileDescriptor.h"

#include <QStringList>
#include <vector>

/// Which of the programs with the same settings this one is.
enum class InstanceRole {
    First,   ///< the only one
    Second,  ///< another one runs
    Unknown, ///< nothing could be locked, so nobody can tell
};

/// The lock that only one of the running programs holds. The kernel keeps it: it ends with its
/// process, however that ends, and no file has to be removed. The programs that this one starts do
/// not inherit it. Owned by the start-up; one thread at a time.
class InstanceLock final
{
public:
    /// The files to lock; they are made when they are not there.
    explicit InstanceLock(QStringList files);

    /// Takes the lock, unless another program holds it; never waits. May be tried again and again.
    InstanceRole take();

private:
    QStringList m_files;
    std::vector<FileDescriptor> m_held;
};
