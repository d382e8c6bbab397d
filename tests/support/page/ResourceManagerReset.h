#pragma once

#include "app/grant/ResourceManager.h"
#include "platform/system/HostSystemCalls.h"

/// Begins another run of the program as far as the granted home folder goes. The program itself
/// has no such thing: what a run began with stays in force. Waits for background threads; no other
/// thread may be using the manager, and nobody may keep what access() returned.
class ResourceManagerReset final
{
public:
    /// Without a source.
    static void beginRun();
    /// With this grant stored.
    static void beginRun(ResourceManager::GrantSource source,
                         const SystemCalls &calls = hostSystemCalls());
};
