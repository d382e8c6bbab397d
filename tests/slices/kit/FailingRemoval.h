#pragma once

#include "tests/slices/kit/StepsOfRemoval.h"
#include "tests/support/calls/HookedCalls.h"

#include <cerrno>

/// One file cannot be removed.
class FailingRemoval final : public HookedCalls
{
public:
    explicit FailingRemoval(const QByteArray &name) : m_name(name) {}

    std::optional<int> before(const char *call, int, const char *name) const override
    {
        const bool isIt = takesAside(call, name) && m_name == name;
        return isIt ? std::optional(EBUSY) : std::nullopt;
    }

private:
    const QByteArray m_name;
};
