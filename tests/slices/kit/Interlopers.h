#pragma once

#include "tests/slices/kit/CleaningKit.h"
#include "tests/slices/kit/HookedCalls.h"
#include "tests/support/run/Outside.h"

#include <functional>

/// Does something hostile right before one of the calls, so that every moment is tried on purpose.
class Interloper final : public HookedCalls
{
public:
    Interloper(int call, std::function<void()> action) : m_call(call), m_action(std::move(action))
    {
    }

    /// One thread: the same calls every time.
    bool isInMemory(int) const override { return true; }
    std::optional<int> before(const char *, int, const char *) const override
    {
        if (m_count++ == m_call)
            doOutside(m_action);
        return {};
    }
    int count() const { return m_count; }

private:
    int m_call;
    std::function<void()> m_action;
    mutable int m_count = 0;
};

inline void move(const QByteArray &from, const QByteArray &to)
{
    std::error_code ignored; // what is gone already cannot be moved any more
    std::filesystem::rename(native(from), native(to), ignored);
}

/// Does something right before one certain call on one certain name.
class Swapper final : public HookedCalls
{
public:
    Swapper(const QByteArray &call, const QByteArray &name, std::function<void()> swap,
            bool isInMemory = true)
        : m_call(call), m_name(name), m_swap(std::move(swap)), m_isInMemory(isInMemory)
    {
    }

    bool isInMemory(int) const override { return m_isInMemory; }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        if (m_call == call && m_name == name)
            doOutside(m_swap);
        return {};
    }

private:
    QByteArray m_call;
    QByteArray m_name;
    std::function<void()> m_swap;
    bool m_isInMemory;
};
