#pragma once

#include "tests/support/calls/HookedCalls.h"

#include <cerrno>

/// One file cannot be removed.
class FailingRemoval final : public HookedCalls
{
public:
    explicit FailingRemoval(const QByteArray &name) : m_name(name) {}

    std::optional<int> before(const char *call, int, const char *name) const override
    {
        // Where something is excluded, a file is moved to a name of the cleaning's own before.
        const bool isIt = qstrcmp(call, "removeFile") == 0 && QByteArrayView(name).endsWith(m_name);
        return isIt ? std::optional(EBUSY) : std::nullopt;
    }

private:
    const QByteArray m_name;
};
