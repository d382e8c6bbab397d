#pragma once

#include "tests/support/run/SharedMemory.h"

#include <QByteArray>
#include <atomic>
#include <cstdint>
#include <sys/types.h>

/// A disk that loses what was not synced when its power is cut. It is a file "disk" in a small file
/// system of its own, made for loop devices: what is written stays in memory until a sync, and a
/// cut drops it, or a part of it. A process of its own serves it, in the mount namespace of the
/// caller. For root. One thread.
class CutDisk final
{
public:
    /// Begins with the content of the image, which is never changed. The folder is empty. The disk
    /// writes so many bytes, a sector, wholly or not at all.
    CutDisk(const QByteArray &image, QByteArray folder, std::size_t sector);
    ~CutDisk();
    CutDisk(const CutDisk &) = delete;
    CutDisk &operator=(const CutDisk &) = delete;

    QByteArray file() const;

    /// How much of what was not synced survives: each sector of each write with this chance.
    enum class Survives { Nothing, Half, NearlyAll };
    /// From now on every use of what was open before fails. Who opens the file anew finds what has
    /// survived.
    void cut(Survives survives, std::uint32_t seed);

    /// How many bytes the last cut has dropped.
    std::uint64_t dropped() const { return m_power->dropped; }

    /// What the process that serves the disk is told, and tells.
    struct Power
    {
        std::atomic<std::uint32_t> cuts = 0;
        std::atomic<int> survivingPercent = 0;
        std::atomic<std::uint32_t> seed = 0;
        std::atomic<std::uint64_t> dropped = 0;
        std::atomic<bool> isServed = false;
    };

private:
    const QByteArray m_folder;
    const SharedMemory<Power> m_power;
    pid_t m_server = -1;
};
