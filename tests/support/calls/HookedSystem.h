#pragma once

#include "platform/system/HostSystemCalls.h"

#include <functional>
#include <memory>
#include <string_view>

class ForwardingSystemCalls;

/// The system with a hook before every call. The hook gets the call's number (from 1) and name, and
/// may return an errno to fail the call. For tests that override no call: they need not know which
/// calls there are. Any thread; the hook is called in the thread of the call.
class HookedSystem final
{
public:
    /// 0 lets the call happen.
    using Hook = std::function<int(int number, std::string_view name)>;

    explicit HookedSystem(Hook hook = {}, const SystemCalls &next = hostSystemCalls());
    /// Waits for background threads that may be calling.
    ~HookedSystem();

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

    /// Sets another hook and counts from 1 again. No call may be under way.
    void setHook(Hook hook);

    /// See ForwardingSystemCalls.
    void letNothingBeConfined();

    /// The calls since the hook was set.
    int callCount() const;

    /// Fails one call.
    static Hook failing(int number, int error);
    /// Fails one call and all that follow. For the file system this is the same as a kill before
    /// that call.
    static Hook killedBefore(int number);

private:
    std::unique_ptr<ForwardingSystemCalls> m_calls;
};
