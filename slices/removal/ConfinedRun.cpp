#include "slices/removal/ConfinedRun.h"

#include <cerrno>
#include <new>
#include <system_error>
#include <thread>

void ConfinedRun::addLayer()
{
    if (!m_made || !m_confinement.isAvailable())
        return;
    auto rules = m_confinement.makeRules();
    if (rules)
        m_layers.push_back(std::move(*rules));
    else
        m_made = tl::unexpected(rules.error());
}

void ConfinedRun::allow(int folder, FolderRights rights)
{
    if (m_made && !m_layers.empty())
        m_made = m_confinement.allow(m_layers.back().get(), folder, rights);
}

SystemResult<void> ConfinedRun::run(const std::function<void()> &step)
{
    if (!m_made)
        return m_made;
    if (m_layers.empty())
        return enterAndDo(step);
    SystemResult<void> done;
    try {
        // Confinement is for good: the thread ends with the step.
        const std::jthread thread([&] { done = enterAndDo(step); });
    } catch (const std::system_error &error) {
        return tl::unexpected(error.code().value());
    } catch (const std::bad_alloc &) {
        return tl::unexpected(ENOMEM);
    }
    return done;
}

/// An exception that leaves its thread would end the program.
SystemResult<void> ConfinedRun::enterAndDo(const std::function<void()> &step) const noexcept
{
    try {
        const auto entered = enter();
        if (entered)
            step();
        return entered;
    } catch (const std::bad_alloc &) {
        return tl::unexpected(ENOMEM);
    }
}

SystemResult<void> ConfinedRun::enter() const
{
    for (const FileDescriptor &layer : m_layers) {
        if (const auto entered = m_confinement.enterForGood(layer.get()); !entered)
            return entered;
    }
    return {};
}
