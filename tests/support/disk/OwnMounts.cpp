#include "tests/support/disk/OwnMounts.h"

#include "tests/support/disk/MountNamespace.h"

#include <cstdio>
#include <sys/mount.h>

OwnMounts::OwnMounts(MadeTree &tree) : m_tree(tree)
{
    note(enterMountNamespace());
    m_tree.reopen();
}

void OwnMounts::bind(const QByteArray &source, const QByteArray &target) const
{
    note(::mount(m_tree.path(source).constData(), m_tree.path(target).constData(), nullptr, MS_BIND,
                 nullptr) == 0);
}

void OwnMounts::bindReadOnly(const QByteArray &source, const QByteArray &target) const
{
    bind(source, target);
    note(::mount(nullptr, m_tree.path(target).constData(), nullptr,
                 MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0);
}

void OwnMounts::mountMemory(const QByteArray &target) const
{
    note(::mount("none", m_tree.path(target).constData(), "tmpfs", 0, nullptr) == 0);
}

void OwnMounts::note(bool done) const
{
    if (!done)
        std::perror("a test could not mount");
    m_areMade = m_areMade && done;
}
