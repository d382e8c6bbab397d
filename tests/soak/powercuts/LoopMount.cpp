#include "tests/soak/powercuts/LoopMount.h"

#include "platform/system/FileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <utility>

namespace {

struct Loop
{
    FileDescriptor device; ///< the device lasts until nothing holds it any more
    QByteArray path;
    int error = 0;
};

/// Another process may take the free device first.
Loop loopOf(const FileDescriptor &file)
{
    constexpr int kMostTries = 100;
    const FileDescriptor control(::open("/dev/loop-control", O_RDWR | O_CLOEXEC));
    for (int i = 0; i < kMostTries; ++i) {
        const int number = ::ioctl(control.get(), LOOP_CTL_GET_FREE);
        if (number < 0)
            return {{}, {}, errno};
        const QByteArray path = "/dev/loop" + QByteArray::number(number);
        FileDescriptor device(::open(path.constData(), O_RDWR | O_CLOEXEC));
        loop_config wanted{};
        wanted.fd = static_cast<unsigned>(file.get());
        wanted.info.lo_flags = LO_FLAGS_AUTOCLEAR;
        if (device.isValid() && ::ioctl(device.get(), LOOP_CONFIGURE, &wanted) == 0)
            return {std::move(device), path, 0};
        if (device.isValid() && errno != EBUSY)
            return {{}, {}, errno};
    }
    return {{}, {}, EBUSY};
}

} // namespace

LoopMount::LoopMount(const QByteArray &file, QByteArray folder, const char *fileSystem)
    : m_folder(std::move(folder))
{
    const FileDescriptor content(::open(file.constData(), O_RDWR | O_CLOEXEC));
    if (!content.isValid()) {
        m_error = errno;
        return;
    }
    const Loop loop = loopOf(content);
    m_error = loop.error;
    if (m_error == 0 &&
        ::mount(loop.path.constData(), m_folder.constData(), fileSystem, MS_NOATIME, nullptr) != 0)
        m_error = errno;
}

LoopMount::~LoopMount()
{
    if (m_error == 0 && ::umount2(m_folder.constData(), 0) != 0)
        ::umount2(m_folder.constData(), MNT_DETACH);
}
