#pragma once

#include <QByteArray>

/// What a second start and the first program say to each other: the call is the activation in one
/// line of base64, the answer one word in a line.
namespace InstanceCall {

inline constexpr char kAnswer[] = "raised\n";
/// The longest call, in bytes; a permission of a desktop is much shorter.
inline constexpr qint64 kLongest = 8192;

} // namespace InstanceCall
