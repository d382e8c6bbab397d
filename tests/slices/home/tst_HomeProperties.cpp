#include "platform/system/HostSystemCalls.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/PlanKit.h"
#include "tests/slices/kit/RandomHome.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/run/TestMain.h"

#include <QFileInfo>
#include <QProcess>
#include <algorithm>
#include <unistd.h>

namespace {

constexpr int kHomes = 800;

CleaningPlan planFor(const RandomHome &made)
{
    MadeMachine machine;
    machine.processes = {::getpid()}; // which has the locks
    machine.programs = made.running;
    FileUrls excluded;
    for (const QByteArray &path : made.excluded)
        excluded.append(FileUrl::fromPath(
            made.home.path(path), path.endsWith('/') ? FileUrlKind::Folder : FileUrlKind::File));
    return planOfEverything(made.home, made.home.survey(made.environment), excluded, machine);
}

/// Whether an excluded path keeps this one: it keeps what it holds and what holds it. Because the
/// rule compares the texts of URLs, it also keeps a file when one of the two names is a part of the
/// other.
bool keeps(const QByteArray &excluded, const QByteArray &path)
{
    return path.startsWith(excluded) || excluded.startsWith(path);
}

bool isAtOrInsideOne(const QByteArray &path, const QByteArrayList &places)
{
    return std::any_of(places.begin(), places.end(), [&](const QByteArray &place) {
        return path == place || path.startsWith(place + '/');
    });
}

/// Whether a program that runs uses it. Downloads in a folder of caches are downloads.
bool isInUse(const RandomHome &made, const QByteArray &path, SliceKind kind)
{
    const bool isFirefoxs = isAtOrInsideOne(path, {".mozilla/firefox/a"}) ||
                            (kind == SliceKind::Cache &&
                             isAtOrInsideOne(path, {".cache/mozilla", "var/cache/mozilla"}));
    return (made.isFirefoxRunning && isFirefoxs) ||
           (kind == SliceKind::Cache && made.running.contains("geary") &&
            isAtOrInsideOne(path, {".cache/geary", "var/cache/geary"})) ||
           (made.running.contains("brave") &&
            isAtOrInsideOne(path, {".var/app/com.brave.Browser/cache"}));
}

bool isKept(const RandomHome &made, const QByteArray &path, SliceKind kind)
{
    const QByteArray text = made.isFolder(path) ? path + '/' : path;
    return isInUse(made, path, kind) ||
           std::any_of(made.excluded.begin(), made.excluded.end(),
                       [&](const QByteArray &excluded) { return keeps(excluded, text); });
}

/// Whether it belongs to something that still exists: a journal to its database, a trash info file
/// to the trashed item. Behind a link the item's state is unknown.
bool isInNeed(const MadeHome &home, const std::set<QByteArray> &rest, const QByteArray &path)
{
    constexpr QByteArrayView kTrashInfo(".trashinfo");
    constexpr QByteArrayView kJournal("-wal");
    if (path.endsWith(kJournal))
        return rest.contains(path.chopped(kJournal.size()));
    if (!path.contains("/Trash/info/") || !path.endsWith(kTrashInfo))
        return false;
    const QByteArray thrownAway =
        QByteArray(path).chopped(kTrashInfo.size()).replace("/Trash/info/", "/Trash/files/");
    const QByteArray files = thrownAway.first(thrownAway.lastIndexOf('/'));
    return rest.contains(thrownAway) || std::filesystem::is_symlink(native(home.path(files)));
}

/// Everything below the home except what the plan names and what lies below that: what a cleaning
/// leaves.
std::set<QByteArray> expectedRest(const RandomHome &made, const CleaningPlan &plan)
{
    const std::set<QByteArray> before = tree(made.home.path());
    std::set<QByteArray> rest = before;
    for (const CleaningLocation &location : plan.locations()) {
        const QByteArray place = location.path.relativePath;
        std::erase_if(rest, [&](const QByteArray &path) {
            const bool isOfLocation = path.startsWith(place + '/') ||
                                      (path == place && location.content == SliceContent::Files);
            return isOfLocation && !isKept(made, path, *sliceKindNamed(location.slice));
        });
    }
    for (const QByteArray &path : before) {
        if (isInNeed(made.home, rest, path))
            rest.insert(path);
    }
    return rest;
}

/// What exists or is missing against the expectation; empty when all is as expected.
QByteArray difference(const std::set<QByteArray> &found, const std::set<QByteArray> &expected)
{
    QByteArrayList all;
    for (const QByteArray &path : found) {
        if (!expected.contains(path))
            all.append(path + " is left");
    }
    for (const QByteArray &path : expected) {
        if (!found.contains(path))
            all.append(path + " is gone");
    }
    return all.join(", ");
}

/// What is wrong with a plan's locations; nothing when all is well.
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

qint64 shown(const MadeHome &home, const HomeLayout &layout, SliceKind kind)
{
    const auto rule = kind == SliceKind::Trash ? ReadOnlyFolders::Emptied : ReadOnlyFolders::Stay;
    qint64 bytes = 0;
    const FileUrls places = *layout.locations(kind);
    for (const FileUrl &place : places) {
        const AnchoredPath path = *home.access().anchoredPath(place);
        bytes += measureFolder(hostSystemCalls(), path, {}, 1, {rule}).bytes;
    }
    return bytes;
}

/// The size as another program counts it: of the files, or of all files in a folder that are not
/// hidden.
qint64 counted(const MadeHome &home, const QByteArrayList &places)
{
    qint64 bytes = 0;
    for (const QByteArray &place : places) {
        const QString path = QString::fromUtf8(home.path(place));
        const bool isFolder = QFileInfo(path).isDir();
        QProcess find;
        find.start(QStringLiteral("find"),
                   {path, QStringLiteral("-mindepth"), QString::number(isFolder ? 1 : 0),
                    QStringLiteral("-name"), QStringLiteral(".*"), QStringLiteral("-prune"),
                    QStringLiteral("-o"), QStringLiteral("-type"), QStringLiteral("f"),
                    QStringLiteral("-printf"), QStringLiteral("%s\n")});
        if (!find.waitForFinished() || find.exitCode() != 0)
            qFatal("find could not count in %s", place.constData());
        for (const QByteArray &size : find.readAllStandardOutput().split('\n'))
            bytes += size.toLongLong();
    }
    return bytes;
}

const QByteArray kITunes = ".wine/drive_c/users/anna/AppData/Roaming/Apple Computer/iTunes/";

/// The locations, written out by hand for this test.
const std::map<SliceKind, QByteArrayList> kLocationsByHand{
    {SliceKind::Trash,
     {".local/share/Trash/files", ".local/share/Trash/info", ".local/share/Trash/expunged"}},
    {SliceKind::Cache, {".cache", ".var/app/org.a.A/cache"}},
    {SliceKind::AppLogs,
     {".local/share/xorg", ".local/share/app/logs", ".config/editor/logs",
      ".local/state/player/logs", ".npm/_logs"}},
    {SliceKind::OldIos, {kITunes + "iPad Software Updates", kITunes + "iPhone Software Updates"}},
    {SliceKind::Downloads, {"Downloads"}},
    {SliceKind::MailDownloads, {".claws-mail/mimetmp", ".sylpheed-2.0/mimetmp"}},
    {SliceKind::BrowserData,
     {".config/chromium/Default/Cookies", ".config/chromium/Default/Cookies-journal",
      ".mozilla/firefox/a/cookies.sqlite"}},
};

/// Something in all of them, and beside them what must not count.
void fillLocationsByHand(const MadeHome &home)
{
    const QByteArrayList files{
        ".local/share/Trash/files/folder/deep/er/a",
        ".cache/app/big",
        ".cache/app/.hidden",
        ".cache/mozilla/firefox/a/entry",
        ".var/app/org.a.A/cache/b",
        ".var/app/org.a.A/data/keep",
        kITunes + "iPad Software Updates/1.ipsw",
        kITunes + "iPhone Software Updates/2.ipsw",
        kITunes + "iTunes Library.itl",
        "Downloads/deep/er/c",
        ".claws-mail/mimetmp/1.pdf",
        ".claws-mail/imapcache/keep",
        ".sylpheed-2.0/mimetmp/2.pdf",
        ".config/chromium/Default/Cookies",
        ".config/chromium/Default/Cookies-journal",
        ".config/chromium/Default/Bookmarks",
        ".mozilla/firefox/a/cookies.sqlite",
        ".mozilla/firefox/a/places.sqlite",
    };
    qsizetype size = 1;
    for (const QByteArray &file : files)
        home.make(file, QByteArray(size *= 2, 'x')); // no two sums of them are the same
    home.nameFirefoxProfiles({"a"});
    ::chmod(home.path(".local/share/Trash/files/folder").constData(), 0500);
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
        const CleaningPlan plan = planFor(made);
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
        const CleaningPlan plan = planFor(made);
        const std::set<QByteArray> rest = expectedRest(made, plan);
        const auto nothingMoreInUse = [](const CleaningLocation &, const FileUrl &) {
            return FileUrls();
        };
        HookedSystem calls;
        calls.letNothingBeConfined(); // its threads take longer than all else
        removed += performCleaning(calls, plan, {}, nothingMoreInUse).removedItems;
        const QByteArray flaw = difference(tree(made.home.path()), rest);
        QVERIFY2(flaw.isEmpty(), "seed " + QByteArray::number(seed) + ": " + flaw);
        QVERIFY(exists(made.home.outside("elsewhere/files/keep")));
        QVERIFY(exists(made.home.path("letter at the top")));
    }
    QVERIFY(removed > kHomes);
}

void TestHomeProperties::showsWhatAnIndependentCountFinds()
{
    MadeHome home(kPlainHome);
    fillLocationsByHand(home);
    const HomeLayout layout = home.survey();
    for (const auto &[kind, places] : kLocationsByHand) {
        const qint64 bytes = shown(home, layout, kind);
        QVERIFY(bytes > 0);
        QCOMPARE(bytes, counted(home, places));
    }
    ::chmod(home.path(".local/share/Trash/files/folder").constData(), 0700);
}

VANTOR_TEST_MAIN(TestHomeProperties)
#include "tst_HomeProperties.moc"
