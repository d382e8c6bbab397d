#pragma once

#include <QList>
#include <type_traits>

/// The element after the first one that is this very object; null for the last element and for an
/// object that is not in the list.
template <typename T> T *objectAfter(const QList<T *> &list, const std::type_identity_t<T> *object)
{
    const auto index = list.indexOf(object);
    return index >= 0 ? list.value(index + 1) : nullptr;
}

/// The element before the last one that is this very object; null for the first element and for an
/// object that is not in the list. Where a list holds an object twice, the two look-ups start from
/// different occurrences.
template <typename T> T *objectBefore(const QList<T *> &list, const std::type_identity_t<T> *object)
{
    const auto index = list.lastIndexOf(object);
    return index > 0 ? list.at(index - 1) : nullptr;
}
