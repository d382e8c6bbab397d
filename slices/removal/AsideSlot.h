#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "slices/removal/ExactRemoval.h"

#include <QByteArray>
#include <array>
#include <climits>
#include <optional>

class AsideNames;
class SystemCalls;

/// Removes files as exactly as ExactRemoval, at the price of a single change of the folder for
/// each: a file is moved to a private name, where it replaces the one before it, which then is
/// gone. Only after that it is compared; another file gets its name back. So the last file still
/// lies in the slot when all have been taken: empty().
///
/// For one open folder after the other. Belongs to one thread; `names` outlives it.
class AsideSlot final
{
public:
    /// Whether other threads change the folder at the same time.
    enum class FolderUse { Alone, Shared };

    /// Takes nothing without names.
    AsideSlot(const SystemCalls &calls, AsideNames *names, FolderUse use);
    ~AsideSlot();
    AsideSlot(const AsideSlot &) = delete;
    AsideSlot &operator=(const AsideSlot &) = delete;

    using Outcome = tl::expected<void, ExactRemoval::Failure>;
    /// Takes a file that has only this name. Nothing if it was not touched and has to be removed in
    /// another way.
    std::optional<Outcome> take(int folder, const char *name, const FileStatus &expected);

    /// A file that was taken and could not be removed.
    struct Left
    {
        int folder = -1;
        QByteArray name;
        ExactRemoval::Failure failure;
    };
    /// Removes the last file. To be called while the folder is open, and before the folder is
    /// removed itself.
    std::optional<Left> empty();

private:
    SystemResult<FileStatus> look(int folder);
    void letGoUnlessHeld(int folder, const char *name);
    Outcome compare(int folder, const char *name, const FileStatus &expected);
    ExactRemoval::Failure putBack(int folder, const char *name, int error) const;
    SystemResult<void> removeHeld() const;

    const SystemCalls &m_calls;
    AsideNames *m_names;
    FolderUse m_use;
    int m_number = -1;
    QByteArray m_slot; ///< the private name

    bool m_isHolding = false;
    FileDescriptor m_file; ///< what lies in the slot, where the folder is shared
    InodeId m_inode;       ///< of that
    int m_folder = -1;
    std::array<char, NAME_MAX + 1> m_heldName{};
};
