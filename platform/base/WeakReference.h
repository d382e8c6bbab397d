#pragma once

#include <memory>

/// Base of objects that others refer to without owning them. A WeakReference to such an object
/// reads null from the moment that the object is gone, so the object need not tell anyone that it
/// ends.
class WeaklyReferable
{
public:
    WeaklyReferable &operator=(const WeaklyReferable &) = delete;

    /// Expires with the object.
    std::weak_ptr<const void> lifetime() const { return m_lifetime; }

protected:
    WeaklyReferable() = default;
    ~WeaklyReferable() = default;
    WeaklyReferable(const WeaklyReferable &) {} // a copy has a lifetime of its own

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
