#pragma once

#include "app/grant/ResourceManager.h"
#include "platform/system/HostSystemCalls.h"

/// Begins another run of the program for the granted home folder. The program itself cannot do
/// this: the grant with which a run began stays in force. Waits for background threads; no other
/// thread may use the manager meanwhile, and no code may keep the result of access().
class ResourceManagerReset final
{
public:
    /// Begins a run without a source.
    static void beginRun();
    /// Begins a run in which this grant is stored.
    static void beginRun(ResourceManager::GrantSource source,
                         const SystemCalls &calls = hostSystemCalls());
};
