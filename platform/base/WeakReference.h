#pragma once

#include <memory>

/// Base of what others refer to without owning it: a WeakReference to it reads null from the
/// moment that it is gone, so nobody has to say goodbye.
class WeaklyReferable
{
public:
    WeaklyReferable &operator=(const WeaklyReferable &) = delete;

    /// Expires with the object.
    std::weak_ptr<const void> lifetime() const { return m_lifetime; }

protected:
    WeaklyReferable() = default;
    ~WeaklyReferable() = default;
    WeaklyReferable(const WeaklyReferable &) {} // a copy lives its own life

private:
    std::shared_ptr<const void> m_lifetime = std::make_shared<char>();
};

/// A pointer that does not own and does not dangle. For one thread.
template <class T> class WeakReference final
{
public:
    WeakReference() = default;
    WeakReference(T *object)
        : m_object(object), m_lifetime(object ? object->lifetime() : std::weak_ptr<const void>())
    {
    }

    T *get() const { return m_lifetime.expired() ? nullptr : m_object; }

private:
    T *m_object = nullptr;
    std::weak_ptr<const void> m_lifetime;
};
