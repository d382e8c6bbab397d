#include "tests/support/calls/PoorListing.h"

#include "tests/support/calls/ForwardingSystemCalls.h"

#include <dirent.h>

class PoorListing::Calls final : public ForwardingSystemCalls
{
public:
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        const auto filled = ForwardingSystemCalls::readEntries(folder, buffer);
        for (std::size_t at = 0; filled && at < *filled;) {
            auto *entry = reinterpret_cast<dirent64 *>(buffer.data() + at);
            entry->d_type = DT_UNKNOWN;
            entry->d_ino = 1;
            at += entry->d_reclen;
        }
        return filled;
    }
};

PoorListing::PoorListing() : m_calls(std::make_unique<Calls>())
{
}

PoorListing::~PoorListing() = default;

PoorListing::operator const SystemCalls &() const
{
    return *m_calls;
}
