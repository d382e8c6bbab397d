#pragma once

#include <QByteArray>
#include <sys/types.h>

/// The test's own folder among the temporary files, with a path of raw bytes. The destructor
/// removes it with all that it holds, even names that are no valid text, which QTemporaryDir
/// leaves. Its path holds no link. Every user may enter and list it.
class ScratchFolder final
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    QByteArray path() const { return m_path; }
    QByteArray path(const QByteArray &relativePath) const { return m_path + '/' + relativePath; }

    /// Makes a folder, and those above it where they are missing. Returns its path.
    QByteArray makeFolder(const QByteArray &relativePath) const;
    /// Makes a file of zeros, in a folder that exists. Returns its path.
    QByteArray makeFile(const QByteArray &relativePath, off_t size = 0) const;
    /// Makes a link that leads to `target`. Returns its path.
    QByteArray makeLink(const QByteArray &relativePath, const QByteArray &target) const;

private:
    QByteArray m_path;
};
