#pragma once

#include "slices/probe/PlaceOutOfReach.h"
#include "slices/record/SliceCatalogue.h"

#include <QList>
#include <array>

class HomeProbe;

/// By slice, in the catalogue's order.
using PlacesOutOfReach = std::array<QList<PlaceOutOfReach>, kSliceCount>;

/// Places that the user or the environment names, relative to the home; empty where none is.
struct NamedPlaces
{
    QByteArray downloads;
    QByteArray cache;
};

/// Looks at the places where the slices of a freedesktop home usually are, and at the named ones:
/// tells which of them cannot be reached. A place that is missing is not out of reach. Not for the
/// main thread.
PlacesOutOfReach findPlacesOutOfReach(const HomeProbe &reader, const NamedPlaces &named);
