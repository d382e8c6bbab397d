#pragma once

#include "platform/system/Descent.h"

/// Which folders may be entered on the way down.
enum class Descent {
    /// Folders only, beneath the start, no link in any component, no other file system, no mount.
    Strict,
    /// The same, but mounts may be crossed: for the way to a folder that the user named.
    AcrossMounts,
};
