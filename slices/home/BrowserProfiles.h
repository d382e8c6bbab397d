#pragma once

#include "slices/probe/HomeProbe.h"

/// The profiles of a browser in the folder where it keeps them: those that the browser itself knows
/// and that exist, as paths relative to the home. A folder that merely lies beside them, such as
/// the user's own copy of a profile, is no profile.

/// Of a browser of the Chromium family, sorted: "Default", "Profile" with a number, and the folders
/// that the file "Local State" names.
QByteArrayList chromiumProfiles(const HomeProbe &home, const QByteArray &folder);

/// Of a program of the Firefox family: what the file "profiles.ini" names below the folder, at any
/// depth. None where it cannot be read.
QByteArrayList firefoxProfiles(const HomeProbe &home, const QByteArray &folder);
