#include "slices/removal/AsideNames.h"

#include "platform/files/FolderListing.h"
#include "platform/system/Attempts.h"
#include "platform/system/SystemCalls.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <bit>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <vector>

namespace {

/// A slot is called this, the run, a full stop and the number of the slot.
constexpr QByteArrayView kSlotPrefix(".vantor-slot.");
/// The file is called this and the run.
constexpr QByteArrayView kFilePrefix("aside-");
constexpr qsizetype kRunDigits = 16;
/// So a file is called of whose name no note is left.
constexpr QByteArrayView kRecovered("recovered.");

/// A slot has two notes: while one is written, the other still stands.
constexpr int kNotesOfSlot = 2;

struct Note
{
    std::uint64_t turn = 0; ///< counts the notes of the slot; 0 for none
    std::uint64_t inode = 0;
    std::array<char, NAME_MAX + 1> name{};
};

constexpr std::size_t kNotes = std::size_t{AsideNames::kSlots} * kNotesOfSlot;
using Notes = std::array<Note, kNotes>;

SystemResult<FileDescriptor> openSettings(const SystemCalls &calls, const QString &folder)
{
    const QString resolved = QFileInfo(folder).canonicalFilePath();
    return calls.openRoot(QFile::encodeName(resolved.isEmpty() ? folder : resolved).constData());
}

QByteArray fileName(const QByteArray &run)
{
    return kFilePrefix.toByteArray() + run;
}

QByteArray newRun()
{
    return QByteArray::number(qulonglong(QRandomGenerator::system()->generate64()), 16)
        .rightJustified(kRunDigits, '0');
}

/// Zeros first, so that notes need no further room on most disks.
SystemResult<void> fill(const SystemCalls &calls, int file)
{
    const Notes none{};
    std::span<const char> rest(reinterpret_cast<const char *>(none.data()), sizeof none);
    while (!rest.empty()) {
        const auto count = attempted([&] { return calls.write(file, rest); });
        if (!count)
            return tl::unexpected(count.error());
        if (*count == 0)
            return tl::unexpected(EIO);
        rest = rest.subspan(*count);
    }
    return calls.sync(file);
}

bool readAll(const SystemCalls &calls, int file, Notes &notes)
{
    std::span<char> rest(reinterpret_cast<char *>(notes.data()), sizeof notes);
    while (!rest.empty()) {
        const auto count = attempted([&] { return calls.read(file, rest); });
        if (!count || *count == 0)
            return false;
        rest = rest.subspan(*count);
    }
    return true;
}

struct SlotName
{
    QByteArray run;
    int slot = 0;
};

std::optional<SlotName> parsed(QByteArrayView name)
{
    constexpr qsizetype kDot = kSlotPrefix.size() + kRunDigits;
    if (!name.startsWith(kSlotPrefix) || name.size() < kDot + 2 || name[kDot] != '.')
        return std::nullopt;
    bool isNumber = false;
    const int slot = name.sliced(kDot + 1).toInt(&isNumber);
    const QByteArray run = name.sliced(kSlotPrefix.size(), kRunDigits).toByteArray();
    bool isRun = false;
    (void)run.toULongLong(&isRun, 16);
    if (!isNumber || !isRun || slot < 0 || slot >= AsideNames::kSlots)
        return std::nullopt;
    return SlotName{run, slot};
}

/// Of a note that may be damaged.
std::optional<QByteArray> nameIn(const Note &note)
{
    const std::size_t size = strnlen(note.name.data(), note.name.size());
    const QByteArray name(note.name.data(), static_cast<qsizetype>(size));
    const bool isName = note.turn != 0 && !name.isEmpty() && size < note.name.size() &&
                        name != "." && name != ".." && !name.contains('/');
    return isName ? std::optional(name) : std::nullopt;
}

/// The note of the very file, or else the last one: then another file has come into its place in
/// the instant of the kill.
const Note &noteOf(const Notes &notes, int slot, std::uint64_t inode)
{
    const Note &one = notes[std::size_t(slot) * kNotesOfSlot];
    const Note &other = notes[std::size_t(slot) * kNotesOfSlot + 1];
    const Note &last = one.turn > other.turn ? one : other;
    const Note &former = one.turn > other.turn ? other : one;
    return former.inode == inode && last.inode != inode ? former : last;
}

} // namespace

AsideNames::AsideNames(const SystemCalls &calls, const QString &folder)
    : m_calls(calls), m_run(newRun())
{
    auto opened = openSettings(calls, folder);
    if (!opened)
        return;
    m_folder = std::move(*opened);
    auto file = calls.createFile(m_folder.get(), fileName(m_run).constData());
    if (file && fill(calls, file->get()))
        m_file = std::move(*file);
    else
        forget();
}

std::optional<int> AsideNames::takeSlot()
{
    std::uint32_t taken = m_taken;
    while (m_file.isValid()) {
        const int slot = std::countr_one(taken);
        if (slot >= kSlots)
            return std::nullopt;
        if (m_taken.compare_exchange_weak(taken, taken | (1U << unsigned(slot))))
            return slot;
    }
    return std::nullopt;
}

void AsideNames::giveBackSlot(int slot)
{
    m_taken &= ~(1U << unsigned(slot));
}

QByteArray AsideNames::privateName(int slot) const
{
    return kSlotPrefix.toByteArray() + m_run + '.' + QByteArray::number(slot);
}

SystemResult<void> AsideNames::note(int slot, const char *name, std::uint64_t inode)
{
    Note note;
    const std::size_t size = std::strlen(name);
    if (size >= note.name.size())
        return tl::unexpected(ENAMETOOLONG);
    note.turn = m_turns[std::size_t(slot)] + 1;
    note.inode = inode;
    std::memcpy(note.name.data(), name, size);
    // The rest of an older and longer name stands after the NUL; nobody reads it.
    const std::size_t length = offsetof(Note, name) + size + 1;
    const std::size_t number = std::size_t(slot) * kNotesOfSlot + note.turn % kNotesOfSlot;
    const auto written =
        m_calls.writeAt(m_file.get(), {reinterpret_cast<const char *>(&note), length},
                        static_cast<std::int64_t>(number * sizeof note));
    if (!written)
        return tl::unexpected(written.error());
    return *written == length ? SystemResult<void>() : tl::unexpected(EIO);
}

void AsideNames::forget()
{
    if (m_folder.isValid())
        (void)m_calls.removeFile(m_folder.get(), fileName(m_run).constData());
}

void AsideNames::forgetAll(const SystemCalls &calls, const QString &folder)
{
    std::vector<char> space(kListingSpace);
    const auto opened = openSettings(calls, folder);
    const auto listing = opened ? FolderListing::ofFolder(calls, opened->get(), space)
                                : tl::unexpected(opened.error());
    for (std::size_t i = 0; listing && i < listing->size(); ++i) {
        const char *const name = listing->name(listing->at(i));
        const QByteArrayView view(name);
        if (view.startsWith(kFilePrefix) && view.size() == kFilePrefix.size() + kRunDigits)
            (void)calls.removeFile(opened->get(), name);
    }
}

bool AsideNames::isPrivate(const char *name)
{
    return parsed(name).has_value();
}

QByteArray AsideNames::nameOf(const SystemCalls &calls, const QString &folder,
                              const QByteArray &privateName, std::uint64_t inode)
{
    const auto slot = parsed(privateName);
    const auto opened = slot ? openSettings(calls, folder) : tl::unexpected(EINVAL);
    const auto file = opened ? calls.openFile(opened->get(), fileName(slot->run).constData())
                             : tl::unexpected(opened.error());
    Notes notes{};
    const bool isRead = file && readAll(calls, file->get(), notes);
    const auto name = isRead ? nameIn(noteOf(notes, slot->slot, inode)) : std::nullopt;
    return name.value_or(recoveredName(privateName));
}

QByteArray AsideNames::recoveredName(const QByteArray &privateName)
{
    return kRecovered.toByteArray() + privateName.sliced(kSlotPrefix.size());
}
