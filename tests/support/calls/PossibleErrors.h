#pragma once

#include <span>
#include <string_view>

/// The errors with which a call of the system can fail, by the name that ForwardingSystemCalls
/// gives it: what the manual tells of it, and what file systems of servers and of programs add.
/// None for a call that is not known.
std::span<const int> possibleErrors(std::string_view call);
