#pragma once

#include "tests/slices/kit/NotedCleaning.h"
#include "tests/slices/kit/StepsOfRemoval.h"
#include "tests/support/calls/KillingCalls.h"
#include "tests/support/run/KilledProcess.h"

#include <QRandomGenerator>

/// A cleaning that is killed, and the judgement of what it left and of the cleanings after it.

/// In what world it happens.
struct KillWorld
{
    enum class Excluded {
        Nothing,
        Beside, ///< something on the same disk: each entry is moved aside before it goes
        Inside, ///< something in each of the locations
    };

    const char *name = "";
    Excluded excluded = Excluded::Inside;
    KillingCalls::Medium medium = KillingCalls::Medium::Memory;
    bool isConfined = false;
};

/// A small random home, made in a folder that is there already.
class KillHome final
{
public:
    KillHome(QByteArray folder, const KillWorld &world, quint32 seed)
        : m_folder(std::move(folder)), m_world(world), m_random(seed)
    {
        makeFile(m_folder + "/outside/precious");
        for (const char *name : {"Downloads/kept/inside", "Documents/kept", "Library/one",
                                 "Library/two", "Downloads/file", "Downloads/folder/file"})
            makeFile(home() + '/' + name, name);
        grow();
        for (const QByteArray &relative : tree(home()))
            m_inodes[relative] = inodeOf(home() + '/' + relative);
        m_precious = inodeOf(m_folder + "/outside/precious");
    }

    QByteArray home() const { return m_folder + "/home"; }

    CleaningReport clean(const SystemCalls &calls) const
    {
        const GrantedFolder granted(home());
        FileUrls excluded;
        if (m_world.excluded == KillWorld::Excluded::Beside)
            excluded = {granted.file("Documents/kept")};
        if (m_world.excluded == KillWorld::Excluded::Inside)
            excluded = {granted.file("Downloads/kept/inside"), granted.file("Library/two")};
        const LogRecorder silenced;
        return cleanNoted(m_folder + "/settings", granted,
                          {contentsOf({granted.folder("Downloads")}),
                           theFiles({granted.file("Library/one"), granted.file("Library/two")})},
                          excluding(excluded), calls);
    }

    /// The same on a thread that the kernel confines or not, killed before one of its calls.
    void cleanUntilKilled(int call) const
    {
        KillingCalls calls(call, m_world.medium);
        if (!m_world.isConfined)
            calls.letNothingBeConfined();
        clean(calls);
    }

    /// Whether something has gone, and something that was to go has not.
    bool isPartlyCleaned() const
    {
        const auto left = tree(home());
        const bool hasPrivate = std::any_of(left.begin(), left.end(), [](const QByteArray &each) {
            return isPrivateName(nameOf(each));
        });
        return hasPrivate || (left.size() < m_inodes.size() && !wrongAtLast().isEmpty());
    }

    /// What was to stay and is not there, or is not the same any more; empty where all is well.
    QByteArray lost() const
    {
        if (inodeOf(m_folder + "/outside/precious") != m_precious)
            return "lost outside";
        QByteArrayList kept{"Documents/kept"};
        if (m_world.excluded == KillWorld::Excluded::Inside)
            kept += {"Downloads/kept/inside", "Library/two"};
        for (const QByteArray &relative : kept) {
            std::ifstream file(native(home() + '/' + relative), std::ios::binary);
            const std::string content(std::istreambuf_iterator<char>(file), {});
            if (inodeOf(home() + '/' + relative) != m_inodes.at(relative) ||
                content != relative.toStdString())
                return "lost: " + relative;
        }
        return {};
    }
    /// What else must not be after the kill.
    QByteArray wrongWhenKilled() const
    {
        for (const QByteArray &relative : tree(home())) {
            if (!isKnown(relative))
                return "a stranger: " + relative;
        }
        return lost();
    }
    /// And after the next cleaning.
    QByteArray wrongWhenCleanedAgain() const
    {
        for (const QByteArray &relative : tree(home())) {
            if (isPrivateName(nameOf(relative)))
                return "not put back: " + relative;
        }
        return wrongWhenKilled();
    }
    /// And after one more.
    QByteArray wrongAtLast() const
    {
        for (const QByteArray &relative : tree(home())) {
            static const QByteArrayList places{"Documents", "Documents/kept", "Downloads",
                                               "Library"};
            static const QByteArrayList inside{"Downloads/kept", "Downloads/kept/inside",
                                               "Library/two"};
            const bool isKept =
                m_world.excluded == KillWorld::Excluded::Inside && inside.contains(relative);
            if (!isKept && !places.contains(relative))
                return "never cleaned: " + relative;
        }
        return wrongWhenCleanedAgain();
    }

private:
    static constexpr char kPrivate[] = ".vantor-aside.";
    static constexpr int kMostNodes = 7;

    void grow()
    {
        QByteArrayList folders{"Downloads", "Downloads/kept", "Downloads/folder"};
        for (int i = m_random.bounded(kMostNodes); i > 0; --i) {
            const QByteArray path = folders[m_random.bounded(int(folders.size()))] + '/' +
                                    QByteArray::number(i) +
                                    (m_random.bounded(4) == 0 ? ".app" : "");
            switch (m_random.bounded(6)) {
            case 0:
                makeLink(home() + '/' + path, m_folder + "/outside");
                break;
            case 1:
                std::filesystem::create_hard_link(native(home() + "/Downloads/file"),
                                                  native(home() + '/' + path));
                break;
            case 2:
                makeFile(home() + '/' + path);
                break;
            default:
                makeFolder(home() + '/' + path);
                folders.append(path);
            }
        }
    }

    /// The path without what was put before a name to move the entry aside.
    static QByteArray nameOf(const QByteArray &relative)
    {
        return relative.sliced(relative.lastIndexOf('/') + 1);
    }
    /// Whether it was there before, in its folder. A slot does not tell a file's own name.
    bool isKnown(QByteArray relative) const
    {
        const ino_t inode = inodeOf(home() + '/' + relative);
        const QByteArray folder = relative.chopped(nameOf(relative).size());
        if (nameOf(relative).startsWith(".vantor-slot.")) {
            return std::any_of(m_inodes.begin(), m_inodes.end(), [&](const auto &known) {
                return known.second == inode &&
                       known.first.chopped(nameOf(known.first).size()) == folder;
            });
        }
        const auto was = m_inodes.find(relative.replace(kPrivate, ""));
        return was != m_inodes.end() && was->second == inode;
    }

    static ino_t inodeOf(const QByteArray &path)
    {
        struct stat found
        {
        };
        return ::lstat(path.constData(), &found) == 0 ? found.st_ino : 0;
    }

    const QByteArray m_folder;
    const KillWorld m_world;
    QRandomGenerator m_random;
    std::map<QByteArray, ino_t> m_inodes; ///< of all that was there, by its path in the home
    ino_t m_precious = 0;
};

struct KillOutcome
{
    WorkEnd end = WorkEnd::Failed;
    QByteArray wrong; ///< what must not be, for people; empty where all is well
};

/// Looks at what a kill has left, and cleans again, twice: what was moved aside gets its name back
/// first, and may go only in the next cleaning.
inline QByteArray wrongAfterKill(const KillHome &home)
{
    if (const QByteArray wrong = home.wrongWhenKilled(); !wrong.isEmpty())
        return wrong;
    home.clean(hostSystemCalls());
    if (const QByteArray wrong = home.wrongWhenCleanedAgain(); !wrong.isEmpty())
        return wrong;
    home.clean(hostSystemCalls());
    return home.wrongAtLast();
}

/// Kills a cleaning before one of its calls, which count from 0.
inline KillOutcome killAtCall(const KillWorld &world, quint32 seed, int call)
{
    const CleaningGround ground;
    const KillHome home(ground.path(), world, seed);
    KillOutcome outcome;
    outcome.end = runAndKill([&] { home.cleanUntilKilled(call); });
    outcome.wrong = wrongAfterKill(home);
    return outcome;
}

/// Kills a cleaning after this time.
inline KillOutcome killAtTime(const KillWorld &world, quint32 seed, std::chrono::microseconds after)
{
    constexpr int kNever = -1;
    const CleaningGround ground;
    const KillHome home(ground.path(), world, seed);
    KillOutcome outcome;
    outcome.end = runAndKill([&] { home.cleanUntilKilled(kNever); }, after);
    outcome.wrong = wrongAfterKill(home);
    return outcome;
}
