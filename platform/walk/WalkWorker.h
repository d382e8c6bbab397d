#pragma once

#include "platform/system/DirectoryEntries.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/FileSystemTraits.h"
#include "platform/system/SystemResult.h"
#include "platform/walk/WalkOptions.h"
#include "platform/walk/WalkPool.h"

#include <span>

class SystemCalls;

/// One thread of a walk. Goes down folder by folder with its own stack on the heap. On the stack
/// are the current folder and the folders above it that still have subfolders to enter. It hands
/// work to the pool while other threads are idle. The lowest levels stay open. Beyond its bound it
/// closes the upper ones, and opens them again from below when it comes back to them.
class WalkWorker final
{
public:
    WalkWorker(const SystemCalls &calls, const WalkOptions &options, WalkPool &pool,
               DirectoryVisitor &visitor, const FileSystemTraits &fileSystem,
               std::size_t openLevels);

    /// Enters the folder where the walk starts, and walks all that this thread does not give away.
    void begin(FileDescriptor start);
    /// Takes work from the pool and walks it until there is none left.
    void takeWork();

private:
    WalkLevel &top() { return m_levels.back(); }
    int topDescriptor() const { return m_levels.back().descriptor->get(); }
    bool isStopped() const { return m_pool.isStopped(); }
    bool isSkipped(const char *name) const;

    void walkLevels();
    void enterNextSubfolder();
    WalkLevel levelOf(WalkedFolderRef folder, const FileStatus &status, FileDescriptor descriptor);
    SystemResult<FileDescriptor> openSubfolder(const char *name);
    void push(WalkLevel level);
    void listTop();
    void lookAt(std::span<const char> entries);
    void lookAt(const DirectoryEntry &entry);
    void addSubfolder(const char *name);

    void leaveTop();
    SystemResult<FileDescriptor> climb(const WalkLevel &from, const WalkLevel &to);
    void giveUpWaiting(int error);
    void closeUpperLevels(std::size_t openLevels);

    void shareEntries(std::span<const char> entries);
    void shareSubfolders();
    void failed(const char *name, int error);

    const SystemCalls &m_calls;
    const WalkOptions m_options;
    WalkPool &m_pool;
    DirectoryVisitor &m_visitor;
    const FileSystemTraits m_fileSystem; ///< of all that is walked
    const std::size_t m_openLimit;

    std::vector<char> m_buffer;
    std::vector<WalkLevel> m_levels;
    std::size_t m_firstOpen = 0; ///< levels above it are closed; it and those below are open
    std::size_t m_waiting = 0;   ///< subfolders that wait, on all levels
};
