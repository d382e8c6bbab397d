#pragma once

#include "platform/system/Moment.h"
#include "platform/system/SystemResult.h"

/// The host's part of SystemCalls::now() and clockDifference(); see there. Any thread.
Moment currentMoment();
SystemResult<std::int64_t> clockDifferenceOf(int folder);
