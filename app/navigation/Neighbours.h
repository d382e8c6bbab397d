#pragma once

#include <QList>
#include <type_traits>

/// The element after the first one that is this very object; null for the last one and for a
/// stranger.
template <typename T> T *objectAfter(const QList<T *> &list, const std::type_identity_t<T> *object)
{
    const auto index = list.indexOf(object);
    return index >= 0 ? list.value(index + 1) : nullptr;
}

/// The element before the last one that is this very object; null for the first one and for a
/// stranger. Where a list holds an object twice, the two look-ups speak of different occurrences.
template <typename T> T *objectBefore(const QList<T *> &list, const std::type_identity_t<T> *object)
{
    const auto index = list.lastIndexOf(object);
    return index > 0 ? list.at(index - 1) : nullptr;
}
