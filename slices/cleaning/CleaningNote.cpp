#include "slices/cleaning/CleaningNote.h"

#include "platform/base/Log.h"
#include "platform/base/LogText.h"
#include "platform/files/DurableFile.h"
#include "platform/system/SystemCalls.h"
#include "slices/removal/AsideSearch.h"

#include <QDir>
#include <QSet>
#include <cerrno>

namespace {

constexpr char kFileName[] = "cleaning";

/// A line of the note is one of these, and the folder's URL.
constexpr QByteArrayView kIn("in ");       ///< in the folder itself alone
constexpr QByteArrayView kBelow("below "); ///< in it and in all folders below

QByteArray line(QByteArrayView where, const QByteArray &folder)
{
    return where.toByteArray() + FileUrl::fromPath(folder, FileUrlKind::Folder).absoluteString();
}

/// A single file is moved aside in the folder around it; it may also be a package, with a tree of
/// its own.
QByteArrayList linesFor(const CleaningLocation &location)
{
    const QByteArray path = location.url.path();
    QByteArrayList lines;
    if (location.content == SliceContent::Files)
        lines.append(line(kIn, path.first(path.lastIndexOf('/'))));
    if (location.content == SliceContent::Folders || location.url.isFolder())
        lines.append(line(kBelow, path));
    return lines;
}

/// The folder of a line; nothing when nobody can have written the line.
std::optional<FileUrl> folderOf(const QByteArray &line)
{
    const qsizetype start = line.indexOf(' ') + 1;
    return FileUrl::fromString(QString::fromLatin1(line.sliced(start)));
}

} // namespace

CleaningNote::CleaningNote(const SystemCalls &calls, QString folder)
    : m_calls(calls), m_folder(std::move(folder))
{
}

QList<CleaningRefusal> CleaningNote::putBack(const FileAccess &access, const std::stop_token &stop)
{
    QList<CleaningRefusal> left;
    m_unfinished.clear();
    for (const QByteArray &line : read()) {
        const auto url = folderOf(line);
        const auto path = url ? access.anchoredPath(*url) : std::nullopt;
        if (url && !path) // of another home, which may be granted again
            m_unfinished.append(line);
        if (!path || !path->anchor || hasDotComponent(path->relativePath))
            continue;
        AsideSearch search(m_calls, m_folder, stop);
        if (line.startsWith(kBelow))
            search.lookThrough(*path);
        else
            search.lookIn(*path);
        QByteArray root = url->path().chopped(path->relativePath.size());
        if (!root.endsWith('/'))
            root += '/';
        for (const QByteArray &found : search.found())
            qCInfo(logVantor, "got its name back: %s", logText(root + found).constData());
        for (const QByteArray &name : search.left())
            left.append({root + name, RefusalReason::Changed, EEXIST});
        if (!search.isComplete() || !search.left().isEmpty())
            m_unfinished.append(line);
    }
    if (m_unfinished.isEmpty())
        AsideNames::forgetAll(m_calls, m_folder);
    return left;
}

void CleaningNote::begin(const CleaningPlan &plan)
{
    QByteArrayList lines = m_unfinished;
    QSet<QByteArray> all(lines.begin(), lines.end());
    for (const CleaningLocation &location : plan.locations()) {
        for (const QByteArray &line : linesFor(location)) {
            if (!all.contains(line))
                lines.append(line);
            all.insert(line);
        }
    }
    m_hasBegun = lines != m_unfinished;
    if (!m_hasBegun)
        return;
    if (write(lines))
        m_names.emplace(m_calls, m_folder);
}

void CleaningNote::end()
{
    if (m_hasBegun || read() != m_unfinished)
        write(m_unfinished);
    m_hasBegun = false;
    if (m_names)
        m_names->forget();
    m_names.reset();
}

/// Whatever stands there leads to no more than names given back, so a damaged note counts as none.
QByteArrayList CleaningNote::read() const
{
    auto file = DurableFile::in(m_calls, m_folder, kFileName);
    if (!file)
        return {};
    const DurableContent content = file->read(Generation::Current);
    const bool isGood = content.state == DurableState::Good && !content.bytes.isEmpty();
    return isGood ? content.bytes.split('\n') : QByteArrayList();
}

bool CleaningNote::write(const QByteArrayList &lines) const
{
    QDir().mkpath(m_folder);
    auto file = DurableFile::in(m_calls, m_folder, kFileName);
    const bool isWritten = file && file->write(lines.join('\n'), Replace::Anything);
    if (!isWritten)
        qCWarning(logVantor, "no note of the cleaning could be written");
    return isWritten;
}
