#include "slices/home/ProgramsInUse.h"

#include "platform/files/AnchoredFolder.h"
#include "platform/system/SystemCalls.h"
#include "slices/probe/FolderIdentity.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace {

using Style = ProgramLock::Style;

/// The process list shortens the names of processes, but not those of their files.
constexpr qsizetype kLongestProcessName = 15;

enum class Answer { Running, NotRunning };

/// What an error says about a lock: it is missing, or its state is unknown.
Answer answerTo(int error)
{
    return error == ENOENT ? Answer::NotRunning : Answer::Running;
}

Answer answerFor(bool isRunning)
{
    return isRunning ? Answer::Running : Answer::NotRunning;
}

/// "host-process": the process number means something only on that host, and nothing in a sandbox,
/// whether the program runs in one or Vantor does.
Answer judgedHostLink(const SystemCalls &calls, const QByteArray &text, Style style)
{
    const qsizetype dash = text.lastIndexOf('-');
    bool isNumber = false;
    const qint64 process = text.sliced(dash + 1).toLongLong(&isNumber);
    if (style == Style::SandboxedHostLink || dash < 0 || !isNumber || process <= 0 ||
        text.first(dash) != calls.hostName() || !calls.seesAllProcesses())
        return Answer::Running;
    return answerFor(calls.isRunning(process));
}

/// What the file with the file lock says. A lock whose state is unknown counts as held.
enum class FileLock { NoFile, Free, Held };

/// "address:+process". The plus says that the program had the file lock. The system takes the lock
/// back when the program ends. So if the lock is free, a crash left the link, and its number may
/// now belong to any other process; it may also be a sandbox's number. Without the plus the program
/// had no such lock, because the file system gives none. Such a home may be in use from another
/// machine.
Answer judgedAddressLink(const SystemCalls &calls, const QByteArray &text, FileLock lock)
{
    const qsizetype mark = text.lastIndexOf(":+");
    bool isNumber = false;
    const qint64 process = mark < 0 ? 0 : text.sliced(mark + 2).toLongLong(&isNumber);
    if (!isNumber || process <= 0 || !calls.seesAllProcesses())
        return Answer::Running;
    return answerFor(lock == FileLock::NoFile && calls.isRunning(process));
}

/// The program waits at a socket for the next start of itself. The number in its lock is wrong when
/// it runs in a sandbox that has the name of the machine.
Answer askSocket(const SystemCalls &calls, int folder)
{
    const auto socket = calls.readLink(folder, "SingletonSocket");
    return socket ? answerFor(calls.isListening(socket->constData())) : answerTo(socket.error());
}

Answer askHostLink(const SystemCalls &calls, int folder, Style style)
{
    const auto text = calls.readLink(folder, "SingletonLock");
    if (!text)
        return answerTo(text.error());
    const Answer judged = judgedHostLink(calls, *text, style);
    return judged == Answer::Running ? judged : askSocket(calls, folder);
}

FileLock fileLock(const SystemCalls &calls, int folder)
{
    const auto file = calls.openFile(folder, ".parentlock");
    if (!file)
        return file.error() == ENOENT ? FileLock::NoFile : FileLock::Held;
    return calls.isLocked(file->get()).value_or(true) ? FileLock::Held : FileLock::Free;
}

Answer askParentLock(const SystemCalls &calls, int folder)
{
    // Reads the link first: a program that starts takes the lock, and only then makes the link.
    const auto text = calls.readLink(folder, "lock");
    const FileLock lock = fileLock(calls, folder);
    if (lock == FileLock::Held)
        return Answer::Running;
    return text ? judgedAddressLink(calls, *text, lock) : answerTo(text.error());
}

/// Asks about each program, but reads the list of all processes only once.
class Inquiry final
{
public:
    Inquiry(const SystemCalls &calls, const AnchoredPath &home) : m_calls(calls), m_home(home) {}

    bool isRunning(const ProgramLock &lock)
    {
        return (lock.style == Style::ProcessName ? askProcesses(lock.place) : askLock(lock)) ==
               Answer::Running;
    }

private:
    Answer askProcesses(const QByteArray &name)
    {
        if (!m_names)
            m_names = m_calls.programNames();
        return answerFor(!m_calls.seesAllProcesses() || !*m_names ||
                         m_names->value().contains(name) ||
                         m_names->value().contains(name.left(kLongestProcessName)));
    }
    Answer askLock(const ProgramLock &lock) const
    {
        const auto folder = openAnchored(m_calls, {m_home.anchor, lock.place}, Descent::Strict);
        if (!folder)
            return answerTo(folder.error());
        return lock.style == Style::ParentLock ? askParentLock(m_calls, folder->get())
                                               : askHostLink(m_calls, folder->get(), lock.style);
    }

    const SystemCalls &m_calls;
    const AnchoredPath &m_home;
    std::optional<SystemResult<QByteArrayList>> m_names;
};

bool isAtOrInsideOne(const FileUrl &url, const FileUrls &locations)
{
    return std::any_of(locations.begin(), locations.end(), [&](const FileUrl &location) {
        return isAtOrInside(url.path(), location.path());
    });
}

/// Those of the candidates that are one of the locations or lie inside one.
FileUrls among(const FileUrls &candidates, const FileUrls &locations)
{
    FileUrls found;
    std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(found),
                 [&](const FileUrl &url) { return isAtOrInsideOne(url, locations); });
    return found;
}

bool isInsideOne(const FileUrl &location, const FileUrls &locations)
{
    return std::any_of(locations.begin(), locations.end(), [&](const FileUrl &around) {
        return location != around && isAtOrInside(location.path(), around.path());
    });
}

/// Several profiles of a program share one cache, and so do programs of one maker.
FileUrls outermost(const FileUrls &locations)
{
    FileUrls found;
    for (const FileUrl &location : locations) {
        if (!found.contains(location) && !isInsideOne(location, locations))
            found.append(location);
    }
    return found;
}

/// In doubt it exists.
bool isThere(const SystemCalls &calls, const FileAccess &access, const FileUrl &location)
{
    const auto path = access.anchoredPath(location);
    const auto status = path ? statusAnchored(calls, *path) : tl::unexpected(ENOENT);
    return status || status.error() != ENOENT;
}

} // namespace

FileUrls programLocations(const HomeLayout &layout, const FileUrls &locations)
{
    FileUrls found;
    for (const ProgramFiles &program : layout.programs()) {
        for (const FileUrl &location : among(program.locations, locations)) {
            if (!found.contains(location))
                found.append(location);
        }
    }
    return found;
}

FileUrls locationsInUse(const SystemCalls &calls, const AnchoredPath &anchor,
                        const HomeLayout &layout, const FileUrl &location)
{
    Inquiry inquiry(calls, anchor);
    FileUrls found;
    for (const ProgramFiles &program : layout.programs()) {
        const FileUrls locations = among(program.locations, {location});
        if (!locations.isEmpty() && inquiry.isRunning(program.lock))
            found += locations;
    }
    return outermost(found);
}

ProgramsInUse ProgramsInUse::find(const SystemCalls &calls, const FileAccess &access,
                                  const HomeLayout &layout)
{
    ProgramsInUse found;
    const auto home = access.anchoredPath(layout.home());
    if (!home || !home->anchor)
        return found; // nothing can be cleaned there either
    found.m_seen = calls.seesAllProcesses() ? ProgramsSeen::All : ProgramsSeen::Some;
    Inquiry inquiry(calls, *home);
    for (const ProgramFiles &program : layout.programs()) {
        ProgramFiles running = program;
        running.locations.removeIf(
            [&](const FileUrl &location) { return !isThere(calls, access, location); });
        if (!running.locations.isEmpty() && inquiry.isRunning(program.lock))
            found.m_programs.append(running);
    }
    if (layout.kind() == HomeKind::Freedesktop)
        found.m_keptPlaces = findKeptPlaces(HomeProbe(calls, home->anchor), layout.home(),
                                            *layout.locations(SliceKind::Cache));
    return found;
}

FileUrls ProgramsInUse::without(const FileUrls &locations) const
{
    FileUrls rest = locations;
    rest.removeIf([this](const FileUrl &location) {
        return std::any_of(m_programs.begin(), m_programs.end(), [&](const ProgramFiles &program) {
            return program.locations.contains(location);
        });
    });
    return rest;
}

FileUrls ProgramsInUse::keptInside(const FileUrls &locations) const
{
    FileUrls kept;
    for (const ProgramFiles &program : m_programs)
        kept += among(program.locations, locations);
    for (const FoundKeptPlace &place : keptPlaces(locations))
        kept.append(place.location);
    kept.removeIf([&](const FileUrl &location) { return locations.contains(location); });
    return outermost(kept);
}

QList<FoundKeptPlace> ProgramsInUse::keptPlaces(const FileUrls &locations) const
{
    QList<FoundKeptPlace> kept = m_keptPlaces;
    kept.removeIf(
        [&](const FoundKeptPlace &place) { return !isAtOrInsideOne(place.location, locations); });
    return kept;
}

QStringList ProgramsInUse::programs(const FileUrls &locations) const
{
    QStringList names;
    for (const ProgramFiles &program : m_programs) {
        if (!among(program.locations, locations).isEmpty())
            names.append(program.program);
    }
    names.removeDuplicates();
    return names;
}
