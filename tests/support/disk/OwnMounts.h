#pragma once

#include "tests/support/disk/MadeTree.h"

/// The mounts of a child process: no other process sees them, and they end with the child. Needs
/// the administrator's rights. Made in a child only (see runInChild): the process cannot go back.
class OwnMounts final
{
public:
    /// Leaves the mounts that the process shares with all others. Opens the tree again, because a
    /// descriptor shows the mounts that existed when it was opened.
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
