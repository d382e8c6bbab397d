#include "tests/soak/powercuts/DiskServer.h"

#include "tests/support/run/Must.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

char *copyOf(int file, std::size_t size)
{
    void *const memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE, file, 0);
    must(memory != MAP_FAILED, "the copy of an image");
    return static_cast<char *>(memory);
}

} // namespace

DiskContent::DiskContent(const QByteArray &image, std::size_t sector, CutDisk::Power &power)
    : m_sector(sector), m_power(power)
{
    const int file = ::open(image.constData(), O_RDONLY | O_CLOEXEC);
    struct stat found
    {
    };
    must(file >= 0 && ::fstat(file, &found) == 0, "the image of a disk");
    m_size = static_cast<std::size_t>(found.st_size);
    m_current = copyOf(file, m_size);
    m_durable = copyOf(file, m_size);
    ::close(file);
}

void DiskContent::write(std::size_t offset, const char *bytes, std::size_t count)
{
    std::memcpy(m_current + offset, bytes, count);
    m_written.push_back({offset, {bytes, bytes + count}});
}

void DiskContent::sync()
{
    for (const Written &each : m_written)
        std::memcpy(m_durable + each.offset, each.bytes.data(), each.bytes.size());
    m_written.clear();
}

std::uint32_t DiskContent::cuts()
{
    if (const std::uint32_t cuts = m_power.cuts; cuts != m_cuts) {
        m_cuts = cuts;
        drop();
    }
    return m_cuts;
}

/// A sector that was written more than once may keep any of its states.
void DiskContent::drop()
{
    std::mt19937 random(m_power.seed);
    std::uniform_int_distribution<int> percent(1, 100);
    const int surviving = m_power.survivingPercent;
    std::uint64_t dropped = 0;
    const std::vector<Written> written = std::move(m_written);
    m_written.clear();
    for (const Written &each : written) {
        std::size_t count = 0;
        for (std::size_t done = 0; done < each.bytes.size(); done += count) {
            count = m_sector - (each.offset + done) % m_sector;
            count = std::min(count, each.bytes.size() - done);
            if (percent(random) <= surviving)
                std::memcpy(m_durable + each.offset + done, each.bytes.data() + done, count);
            else
                dropped += count;
        }
    }
    for (const Written &each : written)
        std::memcpy(m_current + each.offset, m_durable + each.offset, each.bytes.size());
    m_power.dropped = dropped;
}
