#pragma once

#include "platform/system/HostSystemCalls.h"

#include <memory>
#include <optional>

class ThreadConfinement;

/// The host's system calls with a hook before each that can fail: a test can count them, fail them,
/// or do something behind the engine's back (doOutside()). To be derived from. It stands for
/// SystemCalls without being them, so that tests need not know which calls there are. Any thread.
class HookedCalls
{
public:
    explicit HookedCalls(const SystemCalls &next = hostSystemCalls());
    /// Waits for background threads that may be calling.
    virtual ~HookedCalls();
    HookedCalls(const HookedCalls &) = delete;
    HookedCalls &operator=(const HookedCalls &) = delete;

    /// Before the call of this name; an errno makes it fail with that instead. Runs on the thread
    /// of the call.
    virtual std::optional<int> before(const char *call, int parent, const char *name) const;
    /// What is said of the disk; the truth, unless a test says something else.
    virtual bool isForOneThread(int folder) const;
    /// How threads are confined; as the host does, unless a test does something else.
    virtual const ThreadConfinement &confinement() const;

    /// See ForwardingSystemCalls.
    void letNothingBeConfined();

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

private:
    class Calls;

    const std::unique_ptr<Calls> m_calls;
};
