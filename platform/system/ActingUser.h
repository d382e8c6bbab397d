#pragma once

#include "platform/system/ActingUser.h"

#include <cstdint>

/// The user as whom this process touches files.
struct ActingUser
{
    std::uint32_t user = 0;
    bool ownsEverything = false; ///< may act as the owner of any file, like the administrator
};
