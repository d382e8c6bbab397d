#pragma once

#include <memory>

class SystemCalls;

/// A file system whose listings name the entries, but neither their kinds nor inode numbers that
/// mean anything. Any thread.
class PoorListing final
{
public:
    PoorListing();
    ~PoorListing();

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

private:
    class Calls;

    const std::unique_ptr<const Calls> m_calls;
};
