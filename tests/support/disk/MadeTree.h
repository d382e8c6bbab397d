#pragma once

#include "platform/system/FileDescriptor.h"
#include "tests/support/disk/ScratchFolder.h"

#include <memory>
#include <vector>

/// The attributes that keep a file or folder from being changed.
enum class Attribute { Immutable, AppendOnly };

/// A tree of files of the test's own: paths of any length, any bytes and any depth, foreign owners
/// and attributes. Paths are relative to the tree's own folder, which every user may change. Takes
/// everything away when it goes, whatever the test did to it. A step that fails ends the test.
class MadeTree final
{
public:
    MadeTree();
    ~MadeTree();
    MadeTree(const MadeTree &) = delete;
    MadeTree &operator=(const MadeTree &) = delete;

    /// The tree's own folder, open.
    const std::shared_ptr<const FileDescriptor> &descriptor() const { return m_descriptor; }
    /// Opens it anew, by its path.
    void reopen();
    /// Absolute; for short paths only.
    QByteArray path(const QByteArray &relativePath = {}) const;

    void makeFolder(const QByteArray &relativePath) const;
    /// A file that claims this size, and takes no room.
    void makeFile(const QByteArray &relativePath, qint64 size = 0) const;
    void makeLink(const QByteArray &relativePath, const QByteArray &target) const;
    void makePipe(const QByteArray &relativePath) const;
    /// Folders within folders, all of the same name, the first one in `relativePath`; with a file
    /// "file" of 1 byte in a folder of the name `beside` beside each, unless that is empty. Returns
    /// the path of the last.
    QByteArray makeChain(const QByteArray &relativePath, const QByteArray &name, int levels,
                         const QByteArray &beside = {}) const;

    void rename(const QByteArray &from, const QByteArray &to) const;
    void remove(const QByteArray &relativePath) const;
    void setMode(const QByteArray &relativePath, unsigned mode) const;
    void setOwner(const QByteArray &relativePath, unsigned user) const;
    /// Until the tree goes.
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
