#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/SystemResult.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

class SystemCalls;

/// Notes on the disk which names the files have that lie in slots (AsideSlot), so that they get
/// them back after a kill. One for each cleaning, with a file of its own beside the settings.
/// Without room for that there are no slots. After a power cut a note may be missing or old; then
/// the file gets another name. Any thread.
class AsideNames final
{
public:
    /// How many slots there are at a time.
    static constexpr int kSlots = 16;

    /// Makes the file in this folder.
    AsideNames(const SystemCalls &calls, const QString &folder);

    /// A slot that no one has; nothing when all are taken, or there is no file.
    std::optional<int> takeSlot();
    void giveBackSlot(int slot);

    /// The private name that is the slot.
    QByteArray privateName(int slot) const;
    /// Notes what comes into the slot next: this file, which has this name. One thread for each
    /// slot. The note that is kept stays.
    SystemResult<void> note(int slot, const char *name, std::uint64_t inode);
    /// The file has come: its note is kept, in place of the one before it.
    void keepNote(int slot) { ++m_turns[std::size_t(slot)]; }

    /// Removes the file: nothing lies in a slot any more.
    void forget();
    /// Removes the files of all cleanings.
    static void forgetAll(const SystemCalls &calls, const QString &folder);

    /// Whether this is the name of a slot, and not of a file of the user's.
    static bool isPrivate(const char *name);
    /// A name that people can see, for a file of whose own no note is left.
    static QByteArray recoveredName(const QByteArray &privateName);
    /// The name of a file that a kill has left in a slot, or else the recovered one.
    static QByteArray nameOf(const SystemCalls &calls, const QString &folder,
                             const QByteArray &privateName, std::uint64_t inode);

private:
    const SystemCalls &m_calls;
    QByteArray m_run;
    FileDescriptor m_folder;
    FileDescriptor m_file;
    std::atomic<std::uint32_t> m_taken = 0; ///< a bit for each slot
    std::array<std::uint64_t, kSlots> m_turns{};
};
