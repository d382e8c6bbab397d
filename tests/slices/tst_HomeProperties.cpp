#include "slices/FolderSizing.h"
#include "slices/Info.h"
#include "slices/SlicesToClean.h"
#include "tests/slices/HomeKit.h"
#include "tests/support/TestMain.h"

#include <QProcess>
#include <algorithm>
#include <random>

namespace {

constexpr int kHomes = 400;

/// Pieces of which paths in a home are made, most of them such as mean something there.
const QByteArrayList kNames{
    ".local",    "share",       "Trash",   "files",     "info",    "expunged",
    ".cache",    "cache",       "data",    "logs",      ".config", "state",
    ".var",      "app",         "org.a.A", "snap",      "tool",    "common",
    "current",   "7",           "xorg",    ".npm",      "_logs",   "Downloads",
    "Documents", "chromium",    "Default", "Profile 1", "Network", ".mozilla",
    "firefox",   ".claws-mail", "mimetmp", "Desktop",   "Get",     "\xff",
};
const QByteArrayList kFolders{
    ".local/share/Trash/files",
    ".local/share/Trash/info",
    ".cache",
    ".local/share/xorg",
    ".config/editor/logs",
    ".var/app/org.a.A/cache",
    ".var/app/org.a.A/data/Trash/files",
    "snap/tool/common/.cache",
    "snap/tool/7/.local/share/Trash/files",
    "Downloads",
    "Documents",
    ".claws-mail/mimetmp",
    "data/Trash/files",
    "data/Trash/info",
    "var/cache",
    // One place in another, or around one.
    ".local/share/xorg/logs",
    ".cache/cache",
    ".cache/data/Trash/files",
    ".cache/data/Trash/info",
    "snap/tool/common/.cache/cache",
    "snap/cache",
};
/// What the user's file and the environment are likely to name.
const QByteArrayList kNamed{"data",        "var/cache",       ".cache/cache",
                            ".cache/data", "Documents/cache", "snap/tool/common/.cache/cache",
                            "snap",        "snap/cache",      ".local"};
const QByteArrayList kFiles{
    ".config/chromium/Default/Cookies", ".config/chromium/Default/Network/Cookies",
    ".mozilla/firefox/a/cookies.sqlite", ".mozilla/firefox/a/cookies.sqlite-wal"};
const QByteArrayList kVariables{"XDG_DOWNLOAD_DIR", "XDG_DOCUMENTS_DIR", "XDG_DESKTOP_DIR",
                                "XDG_MUSIC_DIR"};

/// A home of any make, with links anywhere, and whatever its files and the environment may say.
class RandomHome final
{
public:
    explicit RandomHome(unsigned seed) : m_random(seed)
    {
        fill();
        if (seed % 8 == 0)
            tryTo([&] { home.make("Library/Caches/item"); });
    }

    MadeHome home;
    HomeEnvironment environment;

private:
    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }
    const QByteArray &oneOf(const QByteArrayList &all)
    {
        return all[static_cast<qsizetype>(below(static_cast<std::size_t>(all.size())))];
    }
    QByteArray anyPath()
    {
        if (below(2) == 0)
            return oneOf(kFolders);
        QByteArray path = oneOf(kNames);
        for (std::size_t i = below(4); i > 0; --i)
            path += '/' + oneOf(kNames);
        return path;
    }
    QByteArray anyTarget()
    {
        switch (below(4)) {
        case 0:
            return home.path(anyPath());
        case 1:
            return home.outside("elsewhere");
        case 2:
            return "..";
        default:
            return oneOf(kNames);
        }
    }
    QByteArray anyPlace()
    {
        const QByteArrayList ends{home.path(), home.path() + "/..", "/", "/etc", ""};
        if (below(3) == 0)
            return oneOf(ends);
        return home.path(below(2) == 0 ? oneOf(kNamed) : anyPath());
    }
    void tryTo(const std::function<void()> &make)
    {
        try {
            make();
        } catch (const std::filesystem::filesystem_error &) {
            // Something else is in the way: then that is what this home has there.
        }
    }

    void fill()
    {
        makeFile(home.outside("elsewhere/files/keep"));
        for (int i = 0; i < 12; ++i)
            tryTo([&] { home.make(anyPath() + "/item"); });
        for (int i = 0; i < 3; ++i)
            tryTo([&] { home.make(oneOf(kFiles)); });
        for (int i = 0; i < 3; ++i)
            tryTo([&] { home.link(anyPath(), anyTarget()); });
        tryTo([&] { home.make("letter at the top"); });
        QByteArray lines;
        for (int i = 0; i < 3; ++i)
            lines += oneOf(kVariables) + "=\"" + anyPlace().replace(home.path(), "$HOME") + "\"\n";
        tryTo([&] { home.nameUserDirs(lines); });
        environment = {anyPlace(), anyPlace()};
    }

    std::mt19937 m_random;
};

CleaningPlan planFor(const MadeHome &home, const HomeLayout &layout)
{
    std::vector<std::shared_ptr<Info>> records;
    for (const SliceDescription &slice : sliceCatalogue())
        records.push_back(
            Info::infoWithName(QString::fromUtf16(slice.name), layout.locations(slice.kind)));
    return makeCleaningPlan(hostSystemCalls(), home.access(), slicesToClean(layout, records), {});
}

/// Everything below the home without what the plan names, and below: what a cleaning leaves.
std::set<QByteArray> expectedRest(const MadeHome &home, const CleaningPlan &plan)
{
    std::set<QByteArray> rest = tree(home.path());
    for (const CleaningLocation &location : plan.locations()) {
        const QByteArray place = location.path.relativePath;
        std::erase_if(rest, [&](const QByteArray &path) {
            return path.startsWith(place + '/') ||
                   (path == place && location.mode == CleaningMode::TheVeryFiles);
        });
    }
    return rest;
}

/// What is wrong with a plan's places; nothing when all is well.
QByteArray flawIn(const MadeHome &home, const CleaningPlan &plan)
{
    std::set<QByteArray> places;
    std::set<std::pair<std::uint64_t, std::uint64_t>> identities;
    for (const CleaningLocation &location : plan.locations()) {
        const QByteArray path = location.url.path();
        if (!path.startsWith(home.path() + '/'))
            return "outside: " + path;
        const auto real = std::filesystem::canonical(native(path)).string();
        if (QByteArray::fromStdString(real) != path)
            return "behind a link: " + path;
        if (!identities.emplace(location.identity.device, location.identity.inode).second)
            return "twice: " + path;
        places.insert(path);
    }
    for (const QByteArray &inner : places) {
        for (const QByteArray &outer : places) {
            if (inner.startsWith(outer + '/'))
                return inner + " in " + outer;
        }
    }
    return {};
}

qint64 shown(const MadeHome &home, const FileUrls &places)
{
    qint64 bytes = 0;
    for (const FileUrl &place : places)
        bytes += measureFolder(hostSystemCalls(), *home.access().anchoredPath(place), {}, 1).bytes;
    return bytes;
}

/// As another program counts: the sizes of all files that are not hidden.
qint64 counted(const MadeHome &home, const QByteArrayList &places)
{
    qint64 bytes = 0;
    for (const QByteArray &place : places) {
        QProcess find;
        find.start(QStringLiteral("find"),
                   {QString::fromUtf8(home.path(place)), QStringLiteral("-mindepth"),
                    QStringLiteral("1"), QStringLiteral("-name"), QStringLiteral(".*"),
                    QStringLiteral("-prune"), QStringLiteral("-o"), QStringLiteral("-type"),
                    QStringLiteral("f"), QStringLiteral("-printf"), QStringLiteral("%s\n")});
        if (!find.waitForFinished() || find.exitCode() != 0)
            qFatal("find could not count in %s", place.constData());
        for (const QByteArray &size : find.readAllStandardOutput().split('\n'))
            bytes += size.toLongLong();
    }
    return bytes;
}

} // namespace

/// What holds for every home, whatever is in it.
class TestHomeProperties final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plansNothingTwiceNorOutside();
    void removesWhatIsPlannedAndNothingElse();
    void showsWhatAnIndependentCountFinds();
};

void TestHomeProperties::plansNothingTwiceNorOutside()
{
    std::size_t planned = 0;
    for (unsigned seed = 0; seed < kHomes; ++seed) {
        const RandomHome made(seed);
        const CleaningPlan plan = planFor(made.home, made.home.survey(made.environment));
        const QByteArray flaw = flawIn(made.home, plan);
        QVERIFY2(flaw.isEmpty(), "seed " + QByteArray::number(seed) + ": " + flaw);
        planned += plan.locations().size();
    }
    QVERIFY(planned > kHomes); // or the homes were too poor to try anything
}

void TestHomeProperties::removesWhatIsPlannedAndNothingElse()
{
    std::size_t removed = 0;
    for (unsigned seed = 0; seed < kHomes; ++seed) {
        const RandomHome made(seed);
        const CleaningPlan plan = planFor(made.home, made.home.survey(made.environment));
        const std::set<QByteArray> rest = expectedRest(made.home, plan);
        removed += performCleaning(hostSystemCalls(), plan, {}).removedItems;
        QVERIFY2(tree(made.home.path()) == rest, "seed " + QByteArray::number(seed));
        QVERIFY(exists(made.home.outside("elsewhere/files/keep")));
        QVERIFY(exists(made.home.path("letter at the top")));
    }
    QVERIFY(removed > kHomes);
}

/// The places are named here anew, by hand.
void TestHomeProperties::showsWhatAnIndependentCountFinds()
{
    MadeHome home(kPlainHome);
    home.make(".cache/app/big", QByteArray(123'456, 'x'));
    home.make(".cache/app/.hidden", QByteArray(1'000, 'x'));
    home.make(".var/app/org.a.A/cache/b", QByteArray(7'000, 'x'));
    home.make("Downloads/deep/er/c", QByteArray(89'000, 'x'));
    const HomeLayout layout = home.survey();
    const std::map<SliceKind, QByteArrayList> places{
        {SliceKind::Trash,
         {".local/share/Trash/files", ".local/share/Trash/info", ".local/share/Trash/expunged"}},
        {SliceKind::Cache, {".cache", ".var/app/org.a.A/cache"}},
        {SliceKind::AppLogs,
         {".local/share/xorg", ".local/share/app/logs", ".config/editor/logs",
          ".local/state/player/logs", ".npm/_logs"}},
        {SliceKind::Downloads, {"Downloads"}}};
    for (const auto &[kind, expected] : places) {
        const qint64 bytes = shown(home, *layout.locations(kind));
        QVERIFY(bytes > 0);
        QCOMPARE(bytes, counted(home, expected));
    }
}

VANTOR_TEST_MAIN(TestHomeProperties)
#include "tst_HomeProperties.moc"
