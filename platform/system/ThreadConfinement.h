#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/SystemResult.h"

/// What a confined thread may still do at and below a folder.
enum class FolderRights {
    /// Opens and lists folders, removes entries and gives them other names.
    Emptying,
    /// Removes entries of folders that are open already, and gives them other names. Opens no
    /// folder.
    RemovingEntries,
    /// Opens and lists folders.
    Listing,
};

/// Lets the kernel confine threads: whatever the code of a confined thread does, and wherever
/// others move the folders that it holds open, it changes entries only below the folders that were
/// named before. Behind an interface, so that tests can do without. Stateless; any thread.
class ThreadConfinement
{
public:
    virtual ~ThreadConfinement() = default;

    /// Whether this kernel can confine threads.
    virtual bool isAvailable() const = 0;
    /// Rules that allow nothing yet.
    virtual SystemResult<FileDescriptor> makeRules() const = 0;
    virtual SystemResult<void> allow(int rules, int folder, FolderRights rights) const = 0;
    /// Confines the calling thread, and all that it starts, for as long as they live.
    virtual SystemResult<void> enterForGood(int rules) const = 0;
};

/// The confinement of the system that the program runs on. Lives as long as the program.
const ThreadConfinement &hostConfinement();
