#include "platform/walk/WalkWorker.h"

#include "platform/system/SystemCalls.h"

#include <algorithm>
#include <cerrno>

namespace {

constexpr std::size_t kBufferBytes = 32'768;
// Only when a buffer is filled further than this, the longest directory entry may no longer fit:
// the folder most likely has more.
constexpr std::size_t kFullBufferBytes = kBufferBytes - 512;

/// An entry that is gone or became something else in the meantime is no failure; neither is one on
/// another mount.
bool isTolerated(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == EXDEV;
}

bool isOutOfDescriptors(int error)
{
    return error == EMFILE || error == ENFILE;
}

} // namespace

WalkWorker::WalkWorker(const SystemCalls &calls, const WalkOptions &options, WalkPool &pool,
                       DirectoryVisitor &visitor, const FileSystemTraits &fileSystem,
                       std::size_t openLevels)
    : m_calls(calls),
      m_options(options),
      m_pool(pool),
      m_visitor(visitor),
      m_fileSystem(fileSystem),
      m_openLimit(openLevels),
      m_buffer(kBufferBytes)
{
}

void WalkWorker::begin(FileDescriptor start)
{
    const auto status = m_calls.statusOf(start.get());
    if (!status) {
        const WalkedFolderRef unknown = WalkedFolderRef::start({});
        m_visitor.failed(*unknown, "", status.error());
        return;
    }
    push(levelOf(WalkedFolderRef::start(*status), *status, std::move(start)));
    listTop();
    walkLevels();
}

void WalkWorker::takeWork()
{
    while (auto share = m_pool.take()) {
        m_waiting += share->level.waiting.count();
        push(std::move(share->level));
        lookAt(share->entries);
        walkLevels();
    }
}

void WalkWorker::walkLevels()
{
    while (m_waiting > 0 && !isStopped()) {
        if (top().waiting.isEmpty()) {
            leaveTop();
            continue;
        }
        if (m_waiting > 1 && m_pool.wantsWork())
            shareSubfolders();
        else
            enterNextSubfolder();
    }
    m_levels.clear();
    m_firstOpen = 0;
    m_waiting = 0;
}

void WalkWorker::enterNextSubfolder()
{
    const char *name = top().waiting.takeLast();
    --m_waiting;
    auto opened = openSubfolder(name);
    if (!opened)
        return failed(name, opened.error());
    const auto status = m_calls.statusOf(opened->get());
    if (!status)
        return failed(name, status.error());
    // A sub-volume is a file system of its own, but it has no mount point by which it could be
    // noticed.
    if (status->device != top().id.device)
        return;

    WalkLevel level = levelOf(top().folder.child(name, *status), *status, std::move(*opened));
    if (top().waiting.isEmpty())
        m_levels.pop_back(); // no thread has to come back to it
    push(std::move(level));
    listTop();
}

WalkLevel WalkWorker::levelOf(WalkedFolderRef folder, const FileStatus &status,
                              FileDescriptor descriptor)
{
    const EntryDetail detail = m_visitor.entered({*folder, status, descriptor.get()});
    return {std::move(folder),
            status.inodeId(),
            std::make_shared<const FileDescriptor>(std::move(descriptor)),
            detail,
            {}};
}

SystemResult<FileDescriptor> WalkWorker::openSubfolder(const char *name)
{
    auto opened = m_calls.openFolder(topDescriptor(), name, Descent::Strict);
    if (opened || !isOutOfDescriptors(opened.error()))
        return opened;
    closeUpperLevels(1);
    return m_calls.openFolder(topDescriptor(), name, Descent::Strict);
}

void WalkWorker::push(WalkLevel level)
{
    m_levels.push_back(std::move(level));
    closeUpperLevels(m_openLimit);
}

void WalkWorker::closeUpperLevels(std::size_t openLevels)
{
    for (; m_levels.size() - m_firstOpen > openLevels; ++m_firstOpen)
        m_levels[m_firstOpen].descriptor.reset();
}

void WalkWorker::listTop()
{
    while (!isStopped()) {
        const auto filled = m_calls.readEntries(topDescriptor(), m_buffer);
        if (!filled)
            return failed("", filled.error());
        if (*filled == 0)
            return;
        const std::span<const char> entries = std::span(m_buffer).first(*filled);
        if (*filled > kFullBufferBytes && m_pool.wantsWork())
            shareEntries(entries);
        else
            lookAt(entries);
        if (m_fileSystem.listsToTheEnd && *filled <= kFullBufferBytes)
            return;
    }
}

void WalkWorker::lookAt(std::span<const char> entries)
{
    DirectoryEntries list(entries);
    DirectoryEntry entry;
    while (!isStopped() && list.next(entry)) {
        if (!isSkipped(entry.name))
            lookAt(entry);
    }
}

bool WalkWorker::isSkipped(const char *name) const
{
    return m_options.hiddenItems == HiddenItems::Skipped && name[0] == '.';
}

void WalkWorker::lookAt(const DirectoryEntry &entry)
{
    if (entry.kind == FileKind::Folder)
        return addSubfolder(entry.name);
    const WalkLevel &level = top();
    const bool wantsStatus = level.detail == EntryDetail::Status;
    if (!wantsStatus && entry.kind != FileKind::Unknown)
        return m_visitor.found({*level.folder, entry.name, nullptr});

    const auto status = m_calls.status(topDescriptor(), entry.name);
    if (!status) {
        if (!isTolerated(status.error()))
            m_visitor.statusFailed(*level.folder, entry.name, status.error());
        return;
    }
    if (status->kind == FileKind::Folder)
        return addSubfolder(entry.name);
    m_visitor.found({*level.folder, entry.name, wantsStatus ? &*status : nullptr});
}

void WalkWorker::addSubfolder(const char *name)
{
    if (!m_visitor.shouldEnter(*top().folder, name))
        return;
    top().waiting.add(name);
    ++m_waiting;
}

/// Goes back to the nearest folder in which something waits. There is one: the next level of the
/// stack.
void WalkWorker::leaveTop()
{
    const WalkLevel left = std::move(top());
    m_levels.pop_back();
    if (top().descriptor)
        return;
    auto reopened = climb(left, top());
    if (!reopened)
        return giveUpWaiting(reopened.error());
    top().descriptor = std::make_shared<const FileDescriptor>(std::move(*reopened));
    m_firstOpen = m_levels.size() - 1;
}

/// Opens a folder somewhere above an open one. A folder on the way may have been moved in the
/// meantime, so the way up may end in another folder than the one wanted.
SystemResult<FileDescriptor> WalkWorker::climb(const WalkLevel &from, const WalkLevel &to)
{
    FileDescriptor held;
    int below = from.descriptor->get();
    for (const WalkedFolder *at = &*from.folder; at != &*to.folder; at = at->parent()) {
        auto opened = m_calls.openParent(below);
        if (!opened)
            return opened;
        held = std::move(*opened);
        below = held.get();
    }
    const auto status = m_calls.statusOf(below);
    if (!status)
        return tl::unexpected(status.error());
    if (status->inodeId() != to.id)
        return tl::unexpected(ESTALE);
    return held;
}

/// The way back up is lost, and with it everything that waits, because every level is closed now.
void WalkWorker::giveUpWaiting(int error)
{
    for (const WalkLevel &level : m_levels) {
        if (!level.waiting.isEmpty())
            m_visitor.failed(*level.folder, "", error);
    }
    m_waiting = 0;
}

void WalkWorker::shareEntries(std::span<const char> entries)
{
    const WalkLevel &level = top();
    m_pool.give({{level.folder, level.id, level.descriptor, level.detail, {}},
                 std::vector<char>(entries.begin(), entries.end())});
}

/// Gives from the uppermost open level, because the largest part of the work is most likely there.
void WalkWorker::shareSubfolders()
{
    const auto isWaiting = [](const WalkLevel &level) { return !level.waiting.isEmpty(); };
    const auto level = std::find_if(m_levels.begin() + static_cast<std::ptrdiff_t>(m_firstOpen),
                                    m_levels.end(), isWaiting);
    FolderNames half = level->waiting.takeFirstHalf();
    m_waiting -= half.count();
    m_pool.give(
        {{level->folder, level->id, level->descriptor, level->detail, std::move(half)}, {}});
    if (level->waiting.isEmpty() && &*level != &top())
        m_levels.erase(level);
}

void WalkWorker::failed(const char *name, int error)
{
    if (!isTolerated(error))
        m_visitor.failed(*top().folder, name, error);
}
