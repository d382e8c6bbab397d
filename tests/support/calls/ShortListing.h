#pragma once

#include <cstddef>
#include <memory>

class SystemCalls;

/// A file system that lists only a few entries at a time, however much room there is, as a server
/// may do. Any thread.
class ShortListing final
{
public:
    explicit ShortListing(std::size_t bytesAtATime);
    ~ShortListing();

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

private:
    class Calls;

    const std::unique_ptr<const Calls> m_calls;
};
