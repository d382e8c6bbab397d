#pragma once

#include "tests/slices/kit/NotedCleaning.h"
#include "tests/support/calls/FailingCalls.h"

/// One cleaning of a made home while calls of the system fail, and the judgement of what is left.

/// In what world it happens.
struct FaultWorld
{
    enum class Tree {
        Small, ///< few calls, for pairs of faults
        Large, ///< every kind of entry, and deeper than the remover holds folders open
    };

    const char *name = "";
    Tree tree = Tree::Large;
    FailingCalls::Medium medium = FailingCalls::Medium::Memory;
    bool hasExclusions = true;
    bool isConfined = false;
};

struct FaultOutcome
{
    QByteArray wrong; ///< what must not be, for people; empty where all is well
    std::vector<const char *> calls;
    std::size_t faults = 0; ///< that happened
    std::size_t left = 0;
    bool isSilent = false; ///< nothing was reported
};

/// A home with something to clean in each of the ways in which the slices are cleaned, and with
/// entries that are excluded.
class FaultHome final
{
public:
    explicit FaultHome(const FaultWorld &world) : m_world(world)
    {
        makeFile(m_scratch / "outside/precious");
        const bool isLarge = world.tree == FaultWorld::Tree::Large;
        for (const QByteArray &name : isLarge ? kLarge : kSmall)
            makeFile(home() + '/' + name);
        makeFolder(home() + "/Downloads/empty");
        makeLink(home() + "/Downloads/link", m_scratch / "outside");
        ::chmod((home() + kReadOnly).constData(), kReadOnlyRights);
        for (const QByteArray &path : kept())
            m_identities[path] = inodeOf(path);
    }

    QByteArray home() const { return m_scratch / "home"; }

    CleaningReport clean(const SystemCalls &calls) const
    {
        const GrantedFolder granted(home());
        FileUrls excluded;
        if (m_world.hasExclusions)
            excluded = {granted.folder("Downloads/Keep"), granted.file("Downloads/h/kept"),
                        granted.file("Library/two")};
        const LogRecorder silenced;
        return cleanNoted(m_scratch / "settings", granted, slices(granted), excluding(excluded),
                          calls);
    }

    /// What must not be; empty where all is well.
    QByteArray wrong(const CleaningReport &report, bool maySayNothing) const
    {
        for (const auto &[path, inode] : m_identities) {
            if (inodeOf(path) != inode)
                return "lost: " + path;
        }
        if (maySayNothing)
            return {};
        for (const QByteArray &path : left()) {
            if (!isExplained(path, report))
                return "left without a word: " + path;
        }
        return wrongRights(report);
    }

    /// All that is left in the home, but what is kept and the folders on the way to it.
    QByteArrayList left() const
    {
        QByteArrayList paths;
        for (const QByteArray &relative : tree(home())) {
            const QByteArray path = home() + '/' + relative;
            const bool isMeant =
                kPlaces.contains(relative) ||
                std::any_of(m_identities.begin(), m_identities.end(), [&](const auto &each) {
                    return each.first == path || each.first.startsWith(path + '/');
                });
            if (!isMeant)
                paths.append(path);
        }
        return paths;
    }

private:
    static inline const QByteArrayList kPlaces{"Downloads",
                                               "Library",
                                               "Browser",
                                               ".local",
                                               ".local/share",
                                               ".local/share/Trash",
                                               ".local/share/Trash/files",
                                               ".local/share/Trash/info"};
    static inline const QByteArrayList kSmall{"Downloads/Keep/a", "Downloads/b",   "Downloads/c/d",
                                              "Downloads/h/kept", "Downloads/h/i", "Library/one",
                                              "Library/two"};
    static inline const QByteArrayList kLarge =
        kSmall + QByteArrayList{"Downloads/c/e/f",
                                "Downloads/c/e/.g",
                                "Downloads/h/j/k",
                                "Downloads/P.app/k",
                                "Downloads/q/1/2/3/4/5/6/7/8/9/10/11/12/13/14/deep",
                                "Downloads/q/1/2/r",
                                "Browser/cookies.sqlite",
                                "Browser/cookies.sqlite-wal",
                                ".local/share/Trash/directorysizes",
                                ".local/share/Trash/files/x",
                                ".local/share/Trash/files/locked/y",
                                ".local/share/Trash/info/x.trashinfo",
                                ".local/share/Trash/info/locked.trashinfo"};
    static constexpr char kReadOnly[] = "/.local/share/Trash/files/locked";
    static constexpr mode_t kReadOnlyRights = 0500;

    QByteArrayList kept() const
    {
        QByteArrayList paths{m_scratch / "outside/precious"};
        if (m_world.hasExclusions)
            paths += {home() + "/Downloads/Keep/a", home() + "/Downloads/h/kept",
                      home() + "/Library/two"};
        return paths;
    }

    /// As the page asks for them.
    QList<SliceToClean> slices(const GrantedFolder &granted) const
    {
        QList<SliceToClean> all{
            contentsOf({granted.folder("Downloads")}),
            theFiles({granted.file("Library/one"), granted.file("Library/two")})};
        if (m_world.tree == FaultWorld::Tree::Small)
            return all;
        all.append(theFiles(
            {granted.file("Browser/cookies.sqlite"), granted.file("Browser/cookies.sqlite-wal")}));
        all.last().whatGoes = RemovalScope::RegularFiles;
        const FileUrl files = granted.folder(".local/share/Trash/files");
        all.append(theFiles({granted.file(".local/share/Trash/directorysizes")}));
        all.last().whatGoes = RemovalScope::RegularFiles;
        all.last().onlyWith = files;
        all.append(contentsOf({files}));
        all.last().readOnlyFolders = ReadOnlyFolders::Emptied;
        all.append(contentsOf({granted.folder(".local/share/Trash/info")}));
        all.last().readOnlyFolders = ReadOnlyFolders::Emptied;
        all.last().whatGoes = RemovalScope::LoneTrashInfo;
        return all;
    }

    static ino_t inodeOf(const QByteArray &path)
    {
        struct stat found
        {
        };
        return ::lstat(path.constData(), &found) == 0 ? found.st_ino : 0;
    }

    /// Something reported at the path or around it, or inside.
    static bool isReported(const QByteArray &path, const CleaningReport &report)
    {
        const auto isAt = [&](const auto &reported) {
            return path == reported.path || path.startsWith(reported.path + '/') ||
                   reported.path.startsWith(path + '/');
        };
        return std::any_of(report.failures.begin(), report.failures.end(), isAt) ||
               std::any_of(report.refusals.begin(), report.refusals.end(), isAt);
    }

    /// By the report, or because it belongs to something that is still there.
    bool isExplained(const QByteArray &path, const CleaningReport &report) const
    {
        const QByteArray trash = home() + "/.local/share/Trash/";
        if (path.startsWith(trash + "info/")) {
            const QByteArray item = path.sliced((trash + "info/").size());
            if (exists(trash + "files/" + item.chopped(qstrlen(".trashinfo"))))
                return true;
        }
        if (path == trash + "directorysizes" && isReported(trash + "files", report))
            return true;
        if (path.endsWith("-wal") && exists(path.chopped(qstrlen("-wal"))))
            return true;
        return isReported(path, report);
    }

    /// A folder that stays has its own rights, or the report names it.
    QByteArray wrongRights(const CleaningReport &report) const
    {
        struct stat found
        {
        };
        const QByteArray path = home() + kReadOnly;
        if (::lstat(path.constData(), &found) != 0 || (found.st_mode & 07777) == kReadOnlyRights)
            return {};
        const auto isIt = [&](const auto &reported) {
            return path == reported.path || path.startsWith(reported.path + '/');
        };
        const bool isTold = std::any_of(report.failures.begin(), report.failures.end(), isIt) ||
                            std::any_of(report.refusals.begin(), report.refusals.end(), isIt);
        return isTold ? QByteArray() : "other rights without a word: " + path;
    }

    const FaultWorld m_world;
    const CleaningGround m_scratch;
    std::map<QByteArray, ino_t> m_identities; ///< of what must stay, by its path
};

/// Cleans a new home with these faults.
inline FaultOutcome cleanWithFaults(const FaultWorld &world, const std::vector<Fault> &faults)
{
    const FaultHome home(world);
    FailingCalls calls(faults, world.medium);
    if (!world.isConfined)
        calls.letNothingBeConfined();
    const std::size_t descriptors = openDescriptors();
    const CleaningReport report = home.clean(calls);
    FaultOutcome outcome;
    outcome.calls = calls.made();
    outcome.faults = calls.happened();
    outcome.left = std::size_t(home.left().size());
    outcome.isSilent = report.failures.isEmpty() && report.refusals.isEmpty();
    // To be told that it is not there means that somebody else has removed it.
    outcome.wrong = home.wrong(report, calls.hasHappened(ENOENT));
    if (outcome.wrong.isEmpty() && openDescriptors() != descriptors)
        outcome.wrong = "a descriptor is left open";
    if (!outcome.wrong.isEmpty())
        outcome.wrong += ", after " + calls.text();
    return outcome;
}
