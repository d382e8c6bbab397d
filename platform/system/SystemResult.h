#pragma once

#include "platform/system/SystemResult.h"

#include <tl/expected.hpp>

/// A call's value, or the errno with which it failed.
template <typename T> using SystemResult = tl::expected<T, int>;
