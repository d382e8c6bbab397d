#pragma once

#include <QByteArray>

/// A file that holds a file system, mounted on a folder through a loop device. The destructor
/// unmounts it, which may fail where the file has failed: then it is taken out of the tree. For
/// root, in a mount namespace of the caller's own. One thread.
class LoopMount final
{
public:
    LoopMount(const QByteArray &file, QByteArray folder, const char *fileSystem);
    ~LoopMount();
    LoopMount(const LoopMount &) = delete;
    LoopMount &operator=(const LoopMount &) = delete;

    /// errno of what did not work; 0 when it is mounted.
    int error() const { return m_error; }

private:
    const QByteArray m_folder;
    int m_error = 0;
};
