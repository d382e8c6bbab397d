#define FUSE_USE_VERSION 35

#include "tests/soak/powercuts/DiskServer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fuse_lowlevel.h>
#include <sys/stat.h>
#include <thread>

namespace {

constexpr fuse_ino_t kDisk = FUSE_ROOT_ID + 1;
constexpr char kName[] = "disk";
constexpr std::chrono::microseconds kTimeOfSync{200};
constexpr double kForEver = 1e6; // seconds for which the kernel may remember what a file is

DiskContent &contentOf(fuse_req_t request)
{
    return *static_cast<DiskContent *>(fuse_req_userdata(request));
}

struct stat statusOf(fuse_ino_t inode, const DiskContent &content)
{
    struct stat status
    {
    };
    status.st_ino = inode;
    status.st_mode = inode == kDisk ? S_IFREG | 0600 : S_IFDIR | 0700;
    status.st_nlink = 1;
    status.st_size = inode == kDisk ? static_cast<off_t>(content.size()) : 0;
    return status;
}

void lookUp(fuse_req_t request, fuse_ino_t, const char *name)
{
    if (std::strcmp(name, kName) != 0) {
        fuse_reply_err(request, ENOENT);
        return;
    }
    fuse_entry_param entry{};
    entry.ino = kDisk;
    entry.attr = statusOf(kDisk, contentOf(request));
    entry.attr_timeout = kForEver;
    entry.entry_timeout = kForEver;
    fuse_reply_entry(request, &entry);
}

void getAttributes(fuse_req_t request, fuse_ino_t inode, fuse_file_info *)
{
    const struct stat status = statusOf(inode, contentOf(request));
    fuse_reply_attr(request, &status, kForEver);
}

void open(fuse_req_t request, fuse_ino_t, fuse_file_info *file)
{
    file->fh = contentOf(request).cuts();
    file->direct_io = 1; // the kernel must not keep what a cut drops
    fuse_reply_open(request, file);
}

/// What was open before the power was cut is gone.
bool isOff(fuse_req_t request, const fuse_file_info *file)
{
    if (contentOf(request).cuts() == file->fh)
        return false;
    fuse_reply_err(request, EIO);
    return true;
}

void read(fuse_req_t request, fuse_ino_t, std::size_t count, off_t offset, fuse_file_info *file)
{
    if (isOff(request, file))
        return;
    const DiskContent &content = contentOf(request);
    const auto first = std::min(static_cast<std::size_t>(offset), content.size());
    fuse_reply_buf(request, content.bytes() + first, std::min(count, content.size() - first));
}

void write(fuse_req_t request, fuse_ino_t, const char *bytes, std::size_t count, off_t offset,
           fuse_file_info *file)
{
    if (isOff(request, file))
        return;
    DiskContent &content = contentOf(request);
    const auto first = static_cast<std::size_t>(offset);
    if (first > content.size() || count > content.size() - first) {
        fuse_reply_err(request, ENOSPC);
        return;
    }
    content.write(first, bytes, count);
    fuse_reply_write(request, count);
}

void sync(fuse_req_t request, fuse_ino_t, int, fuse_file_info *file)
{
    // A sync takes its time on a disk, and the power may fail in it.
    std::this_thread::sleep_for(kTimeOfSync);
    if (isOff(request, file))
        return;
    contentOf(request).sync();
    fuse_reply_err(request, 0);
}

fuse_lowlevel_ops operations()
{
    fuse_lowlevel_ops all{};
    all.lookup = lookUp;
    all.getattr = getAttributes;
    all.open = open;
    all.read = read;
    all.write = write;
    all.fsync = sync;
    return all;
}

} // namespace

bool serveDisk(DiskContent &content, const QByteArray &folder, std::atomic<bool> &isServed)
{
    std::array<char, 16> name{"vantor-soak"};
    std::array<char *, 1> arguments{name.data()};
    fuse_args all = FUSE_ARGS_INIT(int(arguments.size()), arguments.data());
    const fuse_lowlevel_ops table = operations();
    fuse_session *const session = fuse_session_new(&all, &table, sizeof table, &content);
    if (!session)
        return false;
    const bool isMounted = fuse_session_mount(session, folder.constData()) == 0;
    if (isMounted) {
        isServed = true;
        fuse_session_loop(session);
        fuse_session_unmount(session);
    }
    fuse_session_destroy(session);
    return isMounted;
}
