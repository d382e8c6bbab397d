#include "tests/support/calls/ShortListing.h"

#include "tests/support/calls/ForwardingSystemCalls.h"

#include <algorithm>

class ShortListing::Calls final : public ForwardingSystemCalls
{
public:
    explicit Calls(std::size_t bytesAtATime) : m_bytes(bytesAtATime) {}

    FileSystemTraits fileSystemTraits(int) const override { return {}; }
    SystemResult<std::size_t> readEntries(int folder, std::span<char> buffer) const override
    {
        return ForwardingSystemCalls::readEntries(folder,
                                                  buffer.first(std::min(buffer.size(), m_bytes)));
    }

private:
    const std::size_t m_bytes;
};

ShortListing::ShortListing(std::size_t bytesAtATime)
    : m_calls(std::make_unique<const Calls>(bytesAtATime))
{
}

ShortListing::~ShortListing() = default;

ShortListing::operator const SystemCalls &() const
{
    return *m_calls;
}
