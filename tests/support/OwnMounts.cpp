#include "tests/support/OwnMounts.h"

#include <cstdio>
#include <sched.h>
#include <sys/mount.h>

OwnMounts::OwnMounts(MadeTree &tree) : m_tree(tree)
{
    const int user = ::geteuid() == 0 ? 0 : CLONE_NEWUSER; // whose root may mount
    note(::unshare(CLONE_NEWNS | user) == 0);
    note(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0);
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
