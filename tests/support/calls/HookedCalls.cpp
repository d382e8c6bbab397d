#include "tests/support/calls/HookedCalls.h"

#include "tests/support/calls/ForwardingSystemCalls.h"

class HookedCalls::Calls final : public ForwardingSystemCalls
{
public:
    Calls(const HookedCalls &owner, const SystemCalls &next)
        : ForwardingSystemCalls({}, next), m_owner(owner)
    {
    }

    bool isForOneThread(int folder) const override { return m_owner.isForOneThread(folder); }
    const ThreadConfinement &confinement() const override { return m_owner.confinement(); }

private:
    int beforeCall(const CallMade &made) const override
    {
        return m_owner.before(made.name, made.folder, made.entry).value_or(0);
    }

    const HookedCalls &m_owner;
};

HookedCalls::HookedCalls(const SystemCalls &next) : m_calls(std::make_unique<Calls>(*this, next))
{
}

HookedCalls::~HookedCalls() = default;

std::optional<int> HookedCalls::before(const char *, int, const char *) const
{
    return {};
}

bool HookedCalls::isForOneThread(int folder) const
{
    return m_calls->ForwardingSystemCalls::isForOneThread(folder);
}

const ThreadConfinement &HookedCalls::confinement() const
{
    return m_calls->ForwardingSystemCalls::confinement();
}

void HookedCalls::letNothingBeConfined()
{
    m_calls->letNothingBeConfined();
}

HookedCalls::operator const SystemCalls &() const
{
    return *m_calls;
}
