#pragma once

#include "platform/system/HostSystemCalls.h"

#include <functional>
#include <memory>
#include <string_view>

class ForwardingSystemCalls;

/// The system with a hook before every call, which sees the call's number (from 1) and name, and
/// may fail it by answering an errno. For tests that need not override a call: they do not know
/// what calls there are. Any thread; the hook is called in the thread of the call.
class HookedSystem final
{
public:
    /// 0 lets the call happen.
    using Hook = std::function<int(int number, std::string_view name)>;

    explicit HookedSystem(Hook hook = {}, const SystemCalls &next = hostSystemCalls());
    /// Waits for background threads that may be calling.
    ~HookedSystem();

    /// Stands for the calls wherever they are asked for.
    operator const SystemCalls &() const;

    /// Sets another hook and counts from 1 again. No call may be under way.
    void setHook(Hook hook);

    /// The calls since the hook was set.
    int callCount() const;

    /// Fails one call.
    static Hook failing(int number, int error);
    /// Fails one call and all that follow: to the file system, the same as a kill before it.
    static Hook killedBefore(int number);

private:
    std::unique_ptr<ForwardingSystemCalls> m_calls;
};
