#include "slices/home/CacheInUse.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"

#include <cerrno>
#include <set>

namespace {

/// The first names of those paths that lie in the folder.
std::set<QByteArray> entriesAround(const QByteArrayList &paths, const QByteArray &folder)
{
    const QByteArray inside = folder + '/';
    std::set<QByteArray> names;
    for (const QByteArray &path : paths) {
        if (path.startsWith(inside))
            names.insert(path.sliced(inside.size()).split('/').constFirst());
    }
    return names;
}

} // namespace

CacheInUse::CacheInUse(const SystemCalls &calls, HomeLayout layout, Age oldest)
    : m_calls(calls), m_layout(std::move(layout)), m_oldest(oldest)
{
}

FileUrls CacheInUse::entriesInUse(const AnchoredPath &path, const FileUrl &location)
{
    const bool isCache =
        m_layout.kind() == HomeKind::Freedesktop &&
        m_layout.locations(SliceKind::Cache).value_or(FileUrls()).contains(location);
    if (!isCache)
        return {};
    look(*path.anchor);
    if (!m_inUse)
        return m_calls.seesAllProcesses() ? FileUrls{location} : FileUrls();
    FileUrls entries;
    for (const QByteArray &name : entriesAround(*m_inUse, path.relativePath)) {
        const auto found = statusAnchored(m_calls, {path.anchor, path.relativePath + '/' + name});
        if (found || found.error() != ENOENT)
            entries.append(location.appending(name, FileUrlKind::Folder));
    }
    return entries;
}

void CacheInUse::look(const FileDescriptor &home)
{
    const auto now = std::chrono::steady_clock::now();
    if (m_lookedAt && now - *m_lookedAt < m_oldest)
        return;
    m_inUse = m_calls.filesInUse(home.get());
    m_lookedAt = now;
}
