#pragma once

#include "platform/system/HostSystemCalls.h"

class SystemCalls;

/// The calls of the system that Vantor runs on; lives as long as the process. Whoever only hands
/// them on need not know what they are.
const SystemCalls &hostSystemCalls();
