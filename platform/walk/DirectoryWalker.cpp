#include "platform/walk/DirectoryWalker.h"

#include "platform/system/SystemCalls.h"
#include "platform/walk/WalkWorker.h"

#include <algorithm>
#include <thread>

namespace {

constexpr unsigned kMostThreads = 4;
// The folder at hand and the one above it.
constexpr std::size_t kFewestOpenLevels = 2;

} // namespace

unsigned usefulWalkThreads()
{
    return std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
}

void walkDirectory(const SystemCalls &calls, FileDescriptor start, const WalkOptions &options,
                   std::stop_token stop, std::span<DirectoryVisitor *const> visitors)
{
    const std::size_t openLevels =
        std::max(options.openFolders / visitors.size(), kFewestOpenLevels);
    const FileSystemTraits fileSystem = calls.fileSystemTraits(start.get());
    const auto workerFor = [&](WalkPool &pool, unsigned number) {
        return WalkWorker(calls, options, pool, *visitors[number], fileSystem, openLevels);
    };
    WalkPool pool(static_cast<unsigned>(visitors.size()), std::move(stop),
                  [&](unsigned number) { workerFor(pool, number).takeWork(); });
    WalkWorker first = workerFor(pool, 0);
    first.begin(std::move(start));
    first.takeWork();
}
