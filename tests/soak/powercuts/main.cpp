#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsUnderway.h"
#include "tests/slices/kit/KillCase.h"
#include "tests/soak/kit/SoakPart.h"
#include "tests/soak/powercuts/CutDisk.h"
#include "tests/soak/powercuts/LoopMount.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/disk/MountNamespace.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <fcntl.h>
#include <limits>
#include <random>
#include <thread>

/// The soak of power cuts: the power of a disk is cut while settings are saved on it, or a home is
/// cleaned. Then the file system is mounted again and looked at.

namespace {

/// A file system to be tried.
struct FileSystem
{
    const char *name;
    const char *maker; ///< the program that makes one
    const char *arguments;
    std::size_t sector; ///< what it expects a disk to write wholly or not at all
    qint64 size;
};

QList<FileSystem> fileSystems()
{
    constexpr qint64 kMegabyte = 1024 * 1024;
    return {{"ext4", "mkfs.ext4", "-q -F -b 4096 -E lazy_itable_init=0,lazy_journal_init=0", 4096,
             32 * kMegabyte},
            {"xfs", "mkfs.xfs", "-q", 512, 320 * kMegabyte},
            {"btrfs", "mkfs.btrfs", "-q", 4096, 128 * kMegabyte}};
}

/// Calls that never wait for the disk: what is acknowledged with them may be lost.
class NeverSyncing final : public ForwardingSystemCalls
{
public:
    SystemResult<void> sync(int) const override { return {}; }
};

/// Calls that let the disk follow what they do, and stop before one of them. Any thread.
class CallsUntilTheCut final : public ForwardingSystemCalls
{
public:
    /// `folder` is open, on the disk.
    CallsUntilTheCut(int folder, int last, quint32 seed, std::function<void()> atTheLast)
        : m_folder(folder), m_last(last), m_seed(seed), m_atTheLast(std::move(atTheLast))
    {
    }

private:
    int beforeCall(const CallMade &) const override
    {
        const int number = m_count++;
        if (number == m_last) {
            m_atTheLast();
            for (;;)
                ::pause();
        }
        if (std::mt19937(m_seed + quint32(number))() % 3 == 0)
            ::syncfs(m_folder);
        return 0;
    }

    const int m_folder;
    const int m_last;
    const quint32 m_seed;
    const std::function<void()> m_atTheLast;
    mutable std::atomic<int> m_count = 0;
};

/// What is tried again and again on one file system.
class Trial final
{
public:
    Trial(const FileSystem &fileSystem, const SystemCalls &calls)
        : m_fileSystem(fileSystem), m_calls(calls)
    {
        makeFolder(m_ground / "disk");
        makeFolder(m_ground / "mounted");
        QFile image(QString::fromUtf8(m_ground / "image"));
        must(image.open(QIODevice::WriteOnly) && image.resize(fileSystem.size), "an image");
        image.close();
        const QStringList arguments = QString::fromLatin1(fileSystem.arguments).split(u' ');
        QProcess maker;
        maker.setStandardOutputFile(QProcess::nullDevice());
        maker.start(QString::fromLatin1(fileSystem.maker),
                    arguments + QStringList{image.fileName()});
        must(maker.waitForFinished() && maker.exitCode() == 0, "a file system");
    }

    /// Returns what must not be; empty where all is well.
    QByteArray cutWhileSaving(quint32 seed)
    {
        constexpr int kEndless = std::numeric_limits<int>::max() - 1;
        const SettingsUnderway settings(QString::fromUtf8(m_ground / "mounted/settings"));
        constexpr unsigned kLongest = 60'000; // microseconds
        std::mt19937 random(seed);
        const auto moment = std::chrono::microseconds(random() % kLongest);
        int acknowledged = 0;
        const QByteArray wrong =
            cut({.prepare = [] {},
                 .work = [&] { settings.save(m_calls, 1, kEndless); },
                 .awaitTheCut =
                     [&] {
                         // It comes at any moment of the work, so there is nothing to wait for.
                         std::this_thread::sleep_for(moment);
                         acknowledged = settings.acknowledged();
                     },
                 .look = [&] { return settings.wrong(hostSystemCalls(), acknowledged); }},
                seed);
        m_saves += std::uint64_t(acknowledged);
        return wrong;
    }
    /// The work stops before one of its calls, and then the power is cut.
    QByteArray cutWhileCleaning(quint32 seed)
    {
        constexpr KillWorld kWorld{"", KillWorld::Excluded::Inside, KillingCalls::Medium::Memory,
                                   true};
        constexpr int kMostCalls = 160; // some cleanings make fewer: those are done at the cut
        std::mt19937 random(seed);
        const int last = int(random() % kMostCalls);
        const SharedMemory<std::atomic<bool>> isReached;
        std::optional<KillHome> home;
        return cut({.prepare = [&] { home.emplace(m_ground / "mounted", kWorld, seed); },
                    .work =
                        [&] {
                            const FileDescriptor disk(openedFolder(m_ground / "mounted"));
                            home->clean(CallsUntilTheCut(disk.get(), last, seed,
                                                         [&] { *isReached = true; }));
                            *isReached = true;
                            ::pause();
                        },
                    .awaitTheCut =
                        [&] {
                            while (!*isReached)
                                std::this_thread::yield();
                            // The other process may be in the midst of a sync.
                            std::this_thread::sleep_for(std::chrono::microseconds(random() % 500));
                        },
                    .look =
                        [&] {
                            m_partlyCleaned += home->isPartlyCleaned() ? 1 : 0;
                            return wrongAfterKill(*home);
                        }},
                   seed);
    }

    /// How many saves were acknowledged before a cut.
    std::uint64_t saves() const { return m_saves; }
    /// How many homes were found partly cleaned after a cut.
    std::uint64_t partlyCleaned() const { return m_partlyCleaned; }
    std::uint64_t dropped() const { return m_dropped; }

private:
    struct Case
    {
        std::function<void()> prepare;
        std::function<void()> work; ///< in a process of its own, which lives until after the cut
        /// What that process is told after this, nobody is told in reality.
        std::function<void()> awaitTheCut;
        std::function<QByteArray()> look; ///< at what is found afterwards; what must not be
    };

    QByteArray cut(const Case &made, quint32 seed)
    {
        const QByteArray folder = m_ground / "mounted";
        CutDisk disk(m_ground / "image", m_ground / "disk", m_fileSystem.sector);
        {
            const LoopMount mounted(disk.file(), folder, m_fileSystem.name);
            if (mounted.error() != 0)
                return "not mounted: " + QByteArray(std::strerror(mounted.error()));
            made.prepare();
            syncAll(folder);
            workUntilCut(disk, made, seed);
        }
        m_dropped += disk.dropped();
        const LoopMount mounted(disk.file(), folder, m_fileSystem.name);
        if (mounted.error() != 0)
            return "not mounted again: " + QByteArray(std::strerror(mounted.error()));
        return made.look();
    }

    /// Another process syncs all the time, so that the disk follows what is done on it.
    void workUntilCut(CutDisk &disk, const Case &made, quint32 seed) const
    {
        std::mt19937 random(seed);
        const QByteArray folder = m_ground / "mounted";
        const RunningProcess syncer([&] {
            for (;;)
                syncAll(folder);
        });
        const RunningProcess worker(made.work);
        made.awaitTheCut();
        disk.cut(static_cast<CutDisk::Survives>(random() % 3), quint32(random()));
    }

    static void syncAll(const QByteArray &folder)
    {
        const FileDescriptor opened(::open(folder.constData(), O_RDONLY | O_CLOEXEC));
        if (opened.isValid())
            ::syncfs(opened.get());
    }

    const FileSystem m_fileSystem;
    const SystemCalls &m_calls;
    const CleaningGround m_ground;
    std::uint64_t m_saves = 0;
    std::uint64_t m_partlyCleaned = 0;
    std::uint64_t m_dropped = 0;
};

using Cut = QByteArray (Trial::*)(quint32);

/// Cuts the power so many times, and prints the row. A case that hangs ends the program.
void soak(SoakPart &part, const FileSystem &fileSystem, const char *what, const SystemCalls &calls,
          Cut cut, std::uint64_t wanted)
{
    const QByteArray where = QByteArray(fileSystem.name) + " on a disk with a cache";
    constexpr unsigned kLongestCase = 120; // seconds
    Trial trial(fileSystem, calls);
    std::uint64_t found = 0;
    for (std::uint64_t i = 0; i < wanted; ++i) {
        const auto seed = part.seed() + quint32(i);
        ::alarm(kLongestCase);
        const QByteArray wrong = (trial.*cut)(seed);
        ::alarm(0);
        if (wrong.isEmpty())
            continue;
        ++found;
        std::fprintf(stderr, "FOUND on %s, seed %u: %s\n", fileSystem.name, seed,
                     wrong.constData());
    }
    QByteArray words = found == 0 ? QByteArray("0 lost, 0 torn") : grouped(found) + " FOUND";
    words += "; " + grouped(trial.dropped()) + " bytes dropped";
    if (trial.saves() > 0)
        words += ", " + grouped(trial.saves()) + " saves acknowledged";
    if (trial.partlyCleaned() > 0)
        words += ", " + grouped(trial.partlyCleaned()) + " homes partly cleaned";
    part.print({what, where, grouped(wanted) + " power cuts", words, found, wanted, wanted});
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    const QCoreApplication application(argc, argv);
    SoakPart part({"Cuts the power while settings are saved, or a home is cleaned. For root.",
                   "How many power cuts in all.", "500"},
                  {soakOption("naive", "Saves without waiting for the disk.")});
    if (::geteuid() != 0 || !enterMountNamespace()) {
        part.print(
            {"power cuts", "all file systems", "0 power cuts", "not run (needs an administrator)"});
        return part.exitCode();
    }
    QList<FileSystem> found;
    for (const FileSystem &each : fileSystems()) {
        if (!QStandardPaths::findExecutable(QString::fromLatin1(each.maker)).isEmpty())
            found.append(each);
        else
            part.print({"power cuts", each.name, "0 power cuts",
                        QByteArray("not run (needs ") + each.maker + ')'});
    }
    if (found.isEmpty())
        return 1;
    const NeverSyncing neverSyncing;
    const bool isNaive = part.isSet("naive");
    const SystemCalls &calls = isNaive ? neverSyncing : hostSystemCalls();
    const auto rows = 2 * std::uint64_t(found.size());
    const std::uint64_t each = (part.amount() + rows - 1) / rows;
    for (const FileSystem &fileSystem : found) {
        soak(part, fileSystem, "power cuts while settings are saved", calls, &Trial::cutWhileSaving,
             each);
        if (!isNaive)
            soak(part, fileSystem, "power cuts while a home is cleaned", calls,
                 &Trial::cutWhileCleaning, each);
    }
    return part.exitCode();
}
