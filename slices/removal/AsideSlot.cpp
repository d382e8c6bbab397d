#include "slices/removal/AsideSlot.h"

#include "platform/system/SystemCalls.h"
#include "slices/removal/AsideNames.h"

#include <QtGlobal>
#include <cerrno>
#include <cstring>

AsideSlot::AsideSlot(const SystemCalls &calls, AsideNames *names, FolderUse use)
    : m_calls(calls), m_names(names), m_use(use)
{
    const auto number = names ? names->takeSlot() : std::nullopt;
    if (!number)
        return;
    m_number = *number;
    m_slot = names->privateName(m_number);
}

AsideSlot::~AsideSlot()
{
    if (m_number >= 0)
        m_names->giveBackSlot(m_number);
}

std::optional<AsideSlot::Outcome> AsideSlot::take(int folder, const char *name,
                                                  const FileStatus &expected)
{
    Q_ASSERT(!m_isHolding || m_folder == folder);
    // A move onto another name of the same file does nothing, and reports that all is well.
    const bool isSameFile = m_isHolding && m_inode == expected.inodeId();
    if (m_number < 0 || isSameFile || !m_names->note(m_number, name, expected.inode))
        return std::nullopt;
    const auto moved = m_isHolding ? m_calls.rename(folder, name, m_slot.constData())
                                   : m_calls.moveToFree(folder, name, m_slot.constData());
    if (!moved) {
        letGoUnlessHeld(folder, name);
        return std::nullopt;
    }
    m_names->keepNote(m_number);
    m_isHolding = false;
    return compare(folder, name, expected);
}

/// A move that failed may have happened all the same, where a server or a program keeps the files.
/// Then what lies in the slot was not compared.
void AsideSlot::letGoUnlessHeld(int folder, const char *name)
{
    if (!m_isHolding)
        return;
    const auto found = m_calls.status(folder, m_slot.constData());
    if (!found || found->inodeId() == m_inode)
        return;
    m_isHolding = false;
    m_file.reset();
    (void)putBack(folder, name, ESTALE);
}

AsideSlot::Outcome AsideSlot::compare(int folder, const char *name, const FileStatus &expected)
{
    const auto found = look(folder);
    if (!found)
        return tl::unexpected(putBack(folder, name, found.error()));
    if (!ExactRemoval::isSame(*found, expected))
        return tl::unexpected(putBack(folder, name, ESTALE));
    m_isHolding = true;
    m_inode = expected.inodeId();
    m_folder = folder;
    std::strncpy(m_heldName.data(), name, m_heldName.size() - 1);
    return {};
}

/// Where others wait for the folder, the file is held open until it has been replaced: so the
/// system gives its blocks back when the folder is no longer locked.
SystemResult<FileStatus> AsideSlot::look(int folder)
{
    if (m_use == FolderUse::Alone)
        return m_calls.status(folder, m_slot.constData());
    auto file = m_calls.openEntry(folder, m_slot.constData());
    if (!file) // too many are open, perhaps; it only saves time
        return m_calls.status(folder, m_slot.constData());
    m_file = std::move(*file);
    return m_calls.statusOf(m_file.get());
}

/// The name may be taken, or the folder out of this thread's reach by now.
ExactRemoval::Failure AsideSlot::putBack(int folder, const char *name, int error) const
{
    const ExactRemoval removal(m_calls);
    const auto back = removal.moveToFree(folder, m_slot.constData(), name);
    if (back || back.error() == ENOENT)
        return {error, {}};
    QByteArray telling = ExactRemoval::privateName(name);
    const auto moved = removal.moveToFree(folder, m_slot.constData(), telling.constData());
    return {error, moved ? telling : m_slot};
}

std::optional<AsideSlot::Left> AsideSlot::empty()
{
    if (!m_isHolding)
        return std::nullopt;
    const auto removed = removeHeld();
    m_file.reset();
    m_isHolding = false;
    if (removed || removed.error() == ENOENT)
        return std::nullopt;
    return Left{m_folder, m_heldName.data(), putBack(m_folder, m_heldName.data(), removed.error())};
}

/// Somebody may have put something else there.
SystemResult<void> AsideSlot::removeHeld() const
{
    const auto found = m_calls.status(m_folder, m_slot.constData());
    if (!found)
        return tl::unexpected(found.error());
    if (found->inodeId() != m_inode)
        return tl::unexpected(ESTALE);
    return m_calls.removeFile(m_folder, m_slot.constData());
}
