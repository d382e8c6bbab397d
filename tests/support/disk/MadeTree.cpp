#include "tests/support/disk/MadeTree.h"

#include <QByteArrayList>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kFolderMode = 0777;
constexpr mode_t kFileMode = 0666;

void require(bool done, const char *what, const QByteArray &path)
{
    if (!done)
        qFatal("a test could not %s %s: %s", what, path.left(200).constData(),
               std::strerror(errno));
}

FileDescriptor openFolder(int parent, const QByteArray &name)
{
    FileDescriptor folder(
        ::openat(parent, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    require(folder.isValid(), "open", name);
    return folder;
}

FileDescriptor makeFolderIn(int parent, const QByteArray &name)
{
    require(::mkdirat(parent, name.constData(), kFolderMode) == 0, "make folder", name);
    return openFolder(parent, name);
}

void makeFileIn(int parent, const QByteArray &name, qint64 size)
{
    const FileDescriptor file(
        ::openat(parent, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
    require(file.isValid() && ::ftruncate(file.get(), size) == 0, "make file", name);
}

/// Removes all entries of a folder except its subfolders, and returns the name of one of these.
QByteArray removeFilesIn(const FileDescriptor &folder)
{
    QByteArray subfolder;
    DIR *listing = ::fdopendir(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(listing != nullptr, "list", {});
    while (const dirent *entry = ::readdir(listing)) {
        const QByteArray name = entry->d_name;
        if (name != "." && name != ".." && ::unlinkat(folder.get(), name.constData(), 0) != 0)
            subfolder = name;
    }
    ::closedir(listing);
    return subfolder;
}

/// Keeps one folder open at a time: the standard library cannot remove trees that are so deep.
void removeBeneath(int top)
{
    QByteArrayList way;
    FileDescriptor folder = openFolder(top, ".");
    for (;;) {
        const QByteArray subfolder = removeFilesIn(folder);
        if (!subfolder.isEmpty()) {
            folder = openFolder(folder.get(), subfolder);
            way.append(subfolder);
            continue;
        }
        if (way.isEmpty())
            return;
        folder = openFolder(folder.get(), "..");
        require(::unlinkat(folder.get(), way.last().constData(), AT_REMOVEDIR) == 0, "remove",
                way.last());
        way.removeLast();
    }
}

int attributesOf(const FileDescriptor &file)
{
    int attributes = 0;
    require(::ioctl(file.get(), FS_IOC_GETFLAGS, &attributes) == 0, "read attributes of", {});
    return attributes;
}

void setAttributesOf(const FileDescriptor &file, int attributes)
{
    require(::ioctl(file.get(), FS_IOC_SETFLAGS, &attributes) == 0, "set attributes of", {});
}

} // namespace

MadeTree::MadeTree()
    : m_descriptor(std::make_shared<const FileDescriptor>(openFolder(AT_FDCWD, m_scratch.path())))
{
    // The tests get exactly the permissions that they ask for, whatever the shell's mask.
    ::umask(0);
    require(::fchmod(m_descriptor->get(), kFolderMode) == 0, "open up", m_scratch.path());
}

MadeTree::~MadeTree()
{
    for (const FileDescriptor &file : m_withAttributes)
        setAttributesOf(file, attributesOf(file) & ~(FS_IMMUTABLE_FL | FS_APPEND_FL));
    removeBeneath(m_descriptor->get());
}

void MadeTree::reopen()
{
    m_descriptor = std::make_shared<const FileDescriptor>(openFolder(AT_FDCWD, m_scratch.path()));
}

QByteArray MadeTree::path(const QByteArray &relativePath) const
{
    return relativePath.isEmpty() ? m_scratch.path() : m_scratch.path(relativePath);
}

FileDescriptor MadeTree::open(const QByteArray &relativePath) const
{
    FileDescriptor folder = openFolder(m_descriptor->get(), ".");
    for (const QByteArray &name : relativePath.split('/')) {
        if (!name.isEmpty())
            folder = openFolder(folder.get(), name);
    }
    return folder;
}

MadeTree::Place MadeTree::placeOf(const QByteArray &relativePath) const
{
    const qsizetype slash = relativePath.lastIndexOf('/');
    return {open(relativePath.left(qMax(slash, qsizetype(0)))), relativePath.mid(slash + 1)};
}

void MadeTree::makeFolder(const QByteArray &relativePath) const
{
    const Place place = placeOf(relativePath);
    makeFolderIn(place.folder.get(), place.name);
}

void MadeTree::makeFile(const QByteArray &relativePath, qint64 size) const
{
    const Place place = placeOf(relativePath);
    makeFileIn(place.folder.get(), place.name, size);
}

void MadeTree::makeLink(const QByteArray &relativePath, const QByteArray &target) const
{
    const Place place = placeOf(relativePath);
    require(::symlinkat(target.constData(), place.folder.get(), place.name.constData()) == 0,
            "make link", relativePath);
}

void MadeTree::makePipe(const QByteArray &relativePath) const
{
    const Place place = placeOf(relativePath);
    require(::mkfifoat(place.folder.get(), place.name.constData(), kFileMode) == 0, "make pipe",
            relativePath);
}

QByteArray MadeTree::makeChain(const QByteArray &relativePath, const QByteArray &name, int levels,
                               const QByteArray &beside) const
{
    FileDescriptor folder = open(relativePath);
    QByteArray last = relativePath;
    for (int level = 0; level < levels; ++level) {
        if (!beside.isEmpty())
            makeFileIn(makeFolderIn(folder.get(), beside).get(), "file", 1);
        folder = makeFolderIn(folder.get(), name);
        last += last.isEmpty() ? name : '/' + name;
    }
    return last;
}

void MadeTree::rename(const QByteArray &from, const QByteArray &to) const
{
    const Place source = placeOf(from);
    const Place target = placeOf(to);
    require(::renameat(source.folder.get(), source.name.constData(), target.folder.get(),
                       target.name.constData()) == 0,
            "rename", from);
}

void MadeTree::remove(const QByteArray &relativePath) const
{
    const Place place = placeOf(relativePath);
    const char *name = place.name.constData();
    require(::unlinkat(place.folder.get(), name, 0) == 0 ||
                ::unlinkat(place.folder.get(), name, AT_REMOVEDIR) == 0,
            "remove", relativePath);
}

void MadeTree::setMode(const QByteArray &relativePath, unsigned mode) const
{
    const Place place = placeOf(relativePath);
    require(::fchmodat(place.folder.get(), place.name.constData(), mode, 0) == 0, "chmod",
            relativePath);
}

void MadeTree::setOwner(const QByteArray &relativePath, unsigned user) const
{
    const Place place = placeOf(relativePath);
    require(::fchownat(place.folder.get(), place.name.constData(), user, user,
                       AT_SYMLINK_NOFOLLOW) == 0,
            "chown", relativePath);
}

void MadeTree::setAttribute(const QByteArray &relativePath, Attribute attribute)
{
    const Place place = placeOf(relativePath);
    FileDescriptor file(
        ::openat(place.folder.get(), place.name.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    require(file.isValid(), "open", relativePath);
    const int flag = attribute == Attribute::Immutable ? FS_IMMUTABLE_FL : FS_APPEND_FL;
    setAttributesOf(file, attributesOf(file) | flag);
    m_withAttributes.push_back(std::move(file));
}
