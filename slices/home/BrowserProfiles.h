#pragma once

#include "slices/home/HomeProbe.h"

/// The profiles of a browser in the folder that it keeps them in: those that it knows itself, and
/// that are there, by paths relative to the home. What merely lies beside them, such as a copy that
/// the user made of one, is none.

/// Of a browser of the Chromium family, sorted: "Default", "Profile" with a number, and whatever
/// the file "Local State" names.
QByteArrayList chromiumProfiles(const HomeProbe &home, const QByteArray &folder);

/// Of a program of the Firefox family: what the file "profiles.ini" names below the folder, at any
/// depth. None where it cannot be read.
QByteArrayList firefoxProfiles(const HomeProbe &home, const QByteArray &folder);
