#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

/// A static object that is never destroyed. For what background threads use: a thread that hangs in
/// a call outlives all other static objects, and must still find this one whole.
template <class Object> class Indestructible final
{
public:
    template <class... Arguments>
    explicit Indestructible(Arguments &&...arguments)
        : m_object(std::construct_at(reinterpret_cast<Object *>(m_space.data()),
                                     std::forward<Arguments>(arguments)...))
    {
    }
    Indestructible(const Indestructible &) = delete;
    Indestructible &operator=(const Indestructible &) = delete;

    Object &operator*() const { return *m_object; }

private:
    alignas(Object) std::array<std::byte, sizeof(Object)> m_space;
    Object *const m_object;
};
