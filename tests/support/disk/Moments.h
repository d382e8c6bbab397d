#pragma once

#include "platform/system/Moment.h"

/// What was made until now was there before; what is made from now on comes later. The clock that
/// stamps changes goes in ticks, and may be two of them behind.
Moment momentBetween();

/// A moment at which all that was made until now is a minute old.
Moment inAMinute();
