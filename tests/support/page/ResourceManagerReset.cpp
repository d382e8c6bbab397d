#include "tests/support/page/ResourceManagerReset.h"

#include "tests/support/run/BackgroundThreadsAwaited.h"

void ResourceManagerReset::beginRun()
{
    awaitBackgroundThreads();
    ResourceManager::currentRun() = std::make_unique<ResourceManager::Run>();
}

void ResourceManagerReset::beginRun(ResourceManager::GrantSource source, const SystemCalls &calls)
{
    beginRun();
    ResourceManager::setGrantSource(std::move(source), calls);
}
