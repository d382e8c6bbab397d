#pragma once

#include "tests/support/ForwardingSystemCalls.h"

/// The system, on which no program runs whose name is asked for: what a test finds must not depend
/// on what else the machine does.
class QuietMachine final : public ForwardingSystemCalls
{
public:
    using ForwardingSystemCalls::ForwardingSystemCalls;

    bool isProgramRunning(const char *) const override { return false; }
};
