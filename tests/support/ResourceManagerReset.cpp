#include "tests/support/ResourceManagerReset.h"

void ResourceManagerReset::beginRun()
{
    ResourceManager::currentRun() = std::make_unique<ResourceManager::Run>();
}

void ResourceManagerReset::beginRun(ResourceManager::GrantSource source, const SystemCalls &calls)
{
    beginRun();
    ResourceManager::setGrantSource(std::move(source), calls);
}
