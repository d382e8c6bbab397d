#pragma once

#include "platform/system/HostSystemCalls.h"

class SystemCalls;

/// The calls of the system that Vantor runs on; the object lives as long as the process. Code that
/// only hands them on needs this header alone, not SystemCalls.h.
const SystemCalls &hostSystemCalls();
