#pragma once

#include "platform/system/FileDescriptor.h"
#include "tests/support/disk/ScratchFolder.h"

#include <memory>
#include <vector>

/// The attributes that keep a file or folder from being changed.
enum class Attribute { Immutable, AppendOnly };

/// The test's own tree of files: paths of any length, any bytes and any depth, foreign owners and
/// attributes. Paths are relative to the tree's own folder, which every user may change. The
/// destructor removes everything, whatever the test did to it. A step that fails ends the test.
class MadeTree final
{
public:
    MadeTree();
    ~MadeTree();
    MadeTree(const MadeTree &) = delete;
    MadeTree &operator=(const MadeTree &) = delete;

    /// The tree's own folder, open.
    const std::shared_ptr<const FileDescriptor> &descriptor() const { return m_descriptor; }
    /// Opens the tree's folder again, by its path.
    void reopen();
    /// Absolute; for short paths only.
    QByteArray path(const QByteArray &relativePath = {}) const;

    void makeFolder(const QByteArray &relativePath) const;
    /// Makes a file that has this size but takes no room on the disk.
    void makeFile(const QByteArray &relativePath, qint64 size = 0) const;
    void makeLink(const QByteArray &relativePath, const QByteArray &target) const;
    void makePipe(const QByteArray &relativePath) const;
    /// Makes nested folders, all of the same name; the first one is in `relativePath`. Beside each
    /// it makes a folder of the name `beside` that holds a file "file" of 1 byte, unless `beside`
    /// is empty. Returns the path of the last folder.
    QByteArray makeChain(const QByteArray &relativePath, const QByteArray &name, int levels,
                         const QByteArray &beside = {}) const;

    void rename(const QByteArray &from, const QByteArray &to) const;
    void remove(const QByteArray &relativePath) const;
    void setMode(const QByteArray &relativePath, unsigned mode) const;
    void setOwner(const QByteArray &relativePath, unsigned user) const;
    /// Sets the attribute until the tree is destroyed.
    void setAttribute(const QByteArray &relativePath, Attribute attribute);

    /// Opens a folder of the tree name by name.
    FileDescriptor open(const QByteArray &relativePath) const;

private:
    struct Place
    {
        FileDescriptor folder;
        QByteArray name;
    };
    Place placeOf(const QByteArray &relativePath) const;

    ScratchFolder m_scratch;
    std::shared_ptr<const FileDescriptor> m_descriptor;
    std::vector<FileDescriptor> m_withAttributes;
};
