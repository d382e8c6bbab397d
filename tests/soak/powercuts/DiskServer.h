#pragma once

#include "tests/soak/powercuts/CutDisk.h"

#include <QByteArray>
#include <random>
#include <vector>

/// The content of a disk: what a reader sees, and what would survive a cut of the power. One
/// thread.
class DiskContent final
{
public:
    DiskContent(const QByteArray &image, std::size_t sector, CutDisk::Power &power);

    std::size_t size() const { return m_size; }
    const char *bytes() const { return m_current; }

    void write(std::size_t offset, const char *bytes, std::size_t count);
    void sync();
    /// How often the power was cut. Looks whether it was cut again, and then drops what was not
    /// synced. To be asked before anything else is done.
    std::uint32_t cuts();

private:
    struct Written
    {
        std::size_t offset;
        std::vector<char> bytes;
    };

    void drop();

    const std::size_t m_sector;
    CutDisk::Power &m_power;
    std::uint32_t m_cuts = 0;
    std::size_t m_size = 0;
    char *m_current = nullptr; ///< both are copies of the image, made page by page on first change
    char *m_durable = nullptr;
    std::vector<Written> m_written; ///< since the last sync, in order
};

/// Serves the content as the file "disk" in the folder until the folder is unmounted. Returns
/// whether it was served at all.
bool serveDisk(DiskContent &content, const QByteArray &folder, std::atomic<bool> &isServed);
