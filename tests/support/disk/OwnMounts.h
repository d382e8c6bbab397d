#pragma once

#include "tests/support/disk/MadeTree.h"

/// Mounts of a child process's own, which nobody else sees and which go with it; needs the
/// administrator's rights. Made in a child only (see runInChild): the process cannot go back.
class OwnMounts final
{
public:
    /// Leaves the mounts that the process shares with all others. The tree is opened anew, for a
    /// descriptor shows the mounts among which it was opened.
    explicit OwnMounts(MadeTree &tree);

    /// Shows `source` at `target` as well, both folders or both files of the tree.
    void bind(const QByteArray &source, const QByteArray &target) const;
    /// The same, but nothing can be changed there.
    void bindReadOnly(const QByteArray &source, const QByteArray &target) const;
    /// Puts an empty file system in memory over a folder of the tree.
    void mountMemory(const QByteArray &target) const;

    /// Whether every step was allowed and done.
    bool areMade() const { return m_areMade; }

private:
    void note(bool done) const;

    MadeTree &m_tree;
    mutable bool m_areMade = true;
};
