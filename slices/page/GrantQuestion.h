#pragma once

#include <functional>

/// Asks whether work would be done in exactly the folder that the user granted, and goes on with
/// `then` once that is certain. Otherwise tells the user why not, and then the caller. Of several
/// questions only the latest is answered, and none after the page is left.
using GrantQuestion =
    std::function<void(std::function<void()> then, std::function<void()> otherwise)>;
