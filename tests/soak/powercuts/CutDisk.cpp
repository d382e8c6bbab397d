#include "tests/soak/powercuts/CutDisk.h"

#include "tests/soak/powercuts/DiskServer.h"

#include <csignal>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

CutDisk::CutDisk(const QByteArray &image, QByteArray folder, std::size_t sector)
    : m_folder(std::move(folder))
{
    m_server = ::fork();
    must(m_server >= 0, "a process");
    if (m_server == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        DiskContent content(image, sector, *m_power);
        ::_exit(serveDisk(content, m_folder, m_power->isServed) ? 0 : 1);
    }
    while (!m_power->isServed) {
        must(::waitpid(m_server, nullptr, WNOHANG) == 0, "a disk whose power can be cut");
        std::this_thread::yield();
    }
}

CutDisk::~CutDisk()
{
    ::umount2(m_folder.constData(), MNT_DETACH);
    ::kill(m_server, SIGKILL);
    ::waitpid(m_server, nullptr, 0);
}

QByteArray CutDisk::file() const
{
    return m_folder + "/disk";
}

void CutDisk::cut(Survives survives, std::uint32_t seed)
{
    constexpr int kHalf = 50;
    constexpr int kNearlyAll = 95;
    m_power->survivingPercent = survives == Survives::Nothing ? 0
                                : survives == Survives::Half  ? kHalf
                                                              : kNearlyAll;
    m_power->seed = seed;
    ++m_power->cuts;
}
