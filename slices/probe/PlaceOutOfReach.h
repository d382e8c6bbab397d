#pragma once

#include <QByteArray>
#include <cstdint>

/// Why a place is not a slice's location, although it would be one.
enum class Obstacle : std::uint8_t {
    Link,            ///< a link stands there: what it leads to may be anything
    OtherFileSystem, ///< it is on another disk
    Unreadable,      ///< it cannot be opened
    UnclearUserDirs, ///< the file that names the user's folders cannot be read or understood
};

/// A place at which no slice can get beyond an obstacle.
struct PlaceOutOfReach
{
    QByteArray path; ///< of the obstacle, relative to the home
    Obstacle obstacle = Obstacle::Link;

    friend bool operator==(const PlaceOutOfReach &, const PlaceOutOfReach &) = default;
};
