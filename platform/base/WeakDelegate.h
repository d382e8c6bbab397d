#pragma once

#include <QObject>
#include <QPointer>
#include <concepts>
#include <cstddef>

/// A reference to a delegate that empties itself when the delegate dies. Made from a pointer to any
/// QObject that implements the protocol. Thread: the delegate's own.
template <typename Protocol> class WeakDelegate final
{
public:
    WeakDelegate() = default;
    WeakDelegate(std::nullptr_t) {}
    template <typename Object>
    requires std::derived_from<Object, QObject> && std::derived_from<Object, Protocol>
    WeakDelegate(Object *object) : m_life(object), m_protocol(object)
    {
    }

    Protocol *get() const { return m_life ? m_protocol : nullptr; }

private:
    QPointer<QObject> m_life;
    Protocol *m_protocol = nullptr;
};
