#pragma once

#include "platform/system/Descent.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "tests/support/calls/ForwardingSystemCalls.h"

#include <optional>

/// The host's system calls with a hook before each that can fail: a test can count them, fail them,
/// or do something behind the engine's back (doOutside()).
class HookedCalls : public ForwardingSystemCalls
{
public:
    /// Before the call of this name; an errno makes it fail with that instead.
    virtual std::optional<int> before(const char *call, int parent, const char *name) const = 0;

private:
    int beforeCall(const CallMade &made) const final
    {
        return before(made.name, made.folder, made.entry).value_or(0);
    }
};
