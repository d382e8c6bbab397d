#pragma once

#include "tests/slices/kit/CleaningKit.h"
#include "tests/slices/kit/StepsOfRemoval.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/Outside.h"

#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <map>

/// Does something hostile right before some of the calls, so that every moment is tried on purpose.
class Interloper final : public HookedCalls
{
public:
    using Action = std::function<void()>;

    /// The actions by the number of the call. In memory one thread removes, and makes the same
    /// calls every time.
    explicit Interloper(std::map<int, Action> actions = {}, bool isForOneThread = true)
        : m_actions(std::move(actions)), m_isForOneThread(isForOneThread)
    {
    }

    bool isForOneThread(int) const override { return m_isForOneThread; }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        const auto found = m_actions.find(m_count++);
        if (found != m_actions.end()) {
            m_interrupted = QByteArray(call) + ' ' + name;
            doOutside(found->second);
        }
        return {};
    }
    int count() const { return m_count; }
    /// The call before which the last action came, and the name in the call. For one thread.
    QByteArray interrupted() const { return m_interrupted; }

private:
    std::map<int, Action> m_actions;
    bool m_isForOneThread;
    mutable std::atomic<int> m_count = 0;
    mutable QByteArray m_interrupted;
};

inline void move(const QByteArray &from, const QByteArray &to)
{
    std::error_code ignored; // what is gone already cannot be moved any more
    std::filesystem::rename(native(from), native(to), ignored);
}

/// Each takes the other's place in one instant.
inline void exchange(const QByteArray &one, const QByteArray &other)
{
    (void)::renameat2(AT_FDCWD, one.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE);
}

/// Does something right before one certain call on one certain name; "takeAside" stands for the
/// first step of its removal, "afterTakingAside" for the call after that.
class Swapper final : public HookedCalls
{
public:
    Swapper(const QByteArray &call, const QByteArray &name, std::function<void()> swap,
            bool isForOneThread = true)
        : m_call(call), m_name(name), m_swap(std::move(swap)), m_isForOneThread(isForOneThread)
    {
    }

    bool isForOneThread(int) const override { return m_isForOneThread; }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        if (m_isDue) // the entry has left its name with the call before
            doOutside(std::exchange(m_swap, [] {}));
        const bool isIt = m_call == "takeAside" || m_call == "afterTakingAside"
                              ? takesAside(call, name)
                              : m_call == call;
        if (!isIt || m_name != name)
            return {};
        if (m_call == "afterTakingAside")
            m_isDue = true;
        else
            doOutside(m_swap);
        return {};
    }

private:
    QByteArray m_call;
    QByteArray m_name;
    mutable std::function<void()> m_swap;
    mutable bool m_isDue = false;
    bool m_isForOneThread;
};

/// Does something between the look at an entry of this name and the first step of its removal.
class AfterTheLook final : public HookedCalls
{
public:
    AfterTheLook(QByteArrayView name, std::function<void()> action)
        : m_name(name), m_action(std::move(action))
    {
    }

    bool isForOneThread(int) const override { return true; }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        if (takesAside(call, name) && m_name == name)
            doOutside(m_action);
        return {};
    }

private:
    QByteArrayView m_name;
    std::function<void()> m_action;
};
