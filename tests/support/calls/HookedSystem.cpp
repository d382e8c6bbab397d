#include "tests/support/calls/HookedSystem.h"

#include "tests/support/calls/ForwardingSystemCalls.h"

HookedSystem::HookedSystem(Hook hook, const SystemCalls &next)
    : m_calls(std::make_unique<ForwardingSystemCalls>(std::move(hook), next))
{
}

HookedSystem::~HookedSystem() = default;

HookedSystem::operator const SystemCalls &() const
{
    return *m_calls;
}

void HookedSystem::setHook(Hook hook)
{
    m_calls->setHook(std::move(hook));
}

void HookedSystem::letNothingBeConfined()
{
    m_calls->letNothingBeConfined();
}

int HookedSystem::callCount() const
{
    return m_calls->callCount();
}

HookedSystem::Hook HookedSystem::failing(int number, int error)
{
    return ForwardingSystemCalls::failing(number, error);
}

HookedSystem::Hook HookedSystem::killedBefore(int number)
{
    return ForwardingSystemCalls::killedBefore(number);
}
