#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/EveryLocation.h"
#include "tests/slices/kit/PlanKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/SubVolume.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/TestMain.h"

#include <algorithm>
#include <cerrno>

namespace {

/// Makes a cleaning believe that everything lies in memory, so that it works on one thread: the
/// child of a process with several threads must start none.
class OneThreadCalls final : public HookedCalls
{
public:
    bool isForOneThread(int) const override { return true; }
};

QByteArrayList pathsOf(const Found &found,
                       const std::function<bool(const QByteArray &)> &isWanted = {})
{
    QByteArrayList all;
    for (const auto &[kind, paths] : found)
        std::copy_if(paths.begin(), paths.end(), std::back_inserter(all),
                     [&](const QByteArray &path) { return !isWanted || isWanted(path); });
    return all;
}

FileUrls urlsOf(const CleaningPlan &plan)
{
    FileUrls urls;
    for (const CleaningLocation &location : plan.locations())
        urls.append(location.url);
    return urls;
}

/// Folders with or without their slash.
bool isAtOrIn(const QByteArray &path, const QByteArray &folder)
{
    return (path + '/').startsWith(folder.endsWith('/') ? folder : folder + '/');
}

bool isAtOrInOne(const QByteArray &path, const QByteArrayList &folders)
{
    return std::any_of(folders.begin(), folders.end(),
                       [&](const QByteArray &folder) { return isAtOrIn(path, folder); });
}

/// What is no longer found although it is not behind the link: the folder of the settings says what
/// the user calls the downloads, and a trash that the environment names needs its folder "info".
QByteArrayList lostBesides(const QByteArray &link)
{
    if (link == ".config")
        return {"Downloads", "data/Trash", "var/cache"};
    if (link == "data/Trash/files" || link == "data/Trash/info")
        return {"data/Trash"};
    return {};
}

/// What makeEveryLocation() put there.
std::set<QByteArray> itemsIn(const Found &found)
{
    std::set<QByteArray> items;
    for (const QByteArray &path : pathsOf(found))
        items.insert(path.endsWith('/') ? path + "item" : path);
    return items;
}

/// Of a file just itself.
std::set<QByteArray> everythingAt(const QByteArray &path)
{
    if (std::filesystem::is_directory(native(path)))
        return tree(path);
    return exists(path) ? std::set<QByteArray>{path} : std::set<QByteArray>();
}

} // namespace

/// What is not found, because it lies behind something or cannot be read.
class TestHomeSurveyHazards final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsEveryPlaceWithoutALink();
    void followsNoLink_data();
    void followsNoLink();
    void leavesMountsAlone();
    void leavesSubVolumesAlone();
    void findsNothingItMayNotRead();
};

/// Without this the links would hide nothing.
void TestHomeSurveyHazards::findsEveryPlaceWithoutALink()
{
    const MadeHome home;
    makeEveryLocation(home);
    QCOMPARE(locationsOf(home, home.survey(environmentOfEveryLocation(home))), kEveryLocation);
    // No slice was forgotten; large files are picked.
    QCOMPARE(int(kEveryLocation.size()), kSliceCount - 1);
}

/// Every location and every folder on the way to it, each replaced by a link out of the home and by
/// a link to elsewhere in the home.
void TestHomeSurveyHazards::followsNoLink_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QByteArray>("target"); ///< from the home
    std::set<QByteArray> links;
    for (const QByteArray &place : pathsOf(kEveryLocation)) {
        for (qsizetype end = place.indexOf('/'); end >= 0; end = place.indexOf('/', end + 1))
            links.insert(place.first(end));
        if (!place.endsWith('/'))
            links.insert(place);
    }
    for (const QByteArray &link : links) {
        QTest::newRow(link + ", out of the home") << link << QByteArray("../moved");
        QTest::newRow(link + ", inside it") << link << QByteArray("Documents/moved");
    }
}

/// The survey no longer finds exactly what lies behind the link, and a cleaning of everything that
/// is found leaves it. The link is relative: an absolute one may leave the home's file system, and
/// would be left alone for that reason already.
void TestHomeSurveyHazards::followsNoLink()
{
    QFETCH(const QByteArray, link);
    QFETCH(const QByteArray, target);
    const LogRecorder silence;
    const MadeHome home;
    makeEveryLocation(home);
    const QByteArray moved = home.path(target);
    std::filesystem::rename(native(home.path(link)), native(moved));
    home.link(link, QByteArray("../").repeated(link.count('/')) + target);
    QVERIFY(std::filesystem::exists(native(home.path(link))));
    const HomeLayout layout = home.survey(environmentOfEveryLocation(home));
    const Found found = locationsOf(home, layout);
    QCOMPARE(pathsOf(found), pathsOf(kEveryLocation, [&](const QByteArray &path) {
                 return !isAtOrIn(path, link) && !isAtOrInOne(path, lostBesides(link));
             }));

    const CleaningPlan plan = planOfEverything(home, layout);
    QCOMPARE(home.relative(urlsOf(plan)), pathsOf(found));
    QVERIFY(plan.refusals().isEmpty());
    const std::set<QByteArray> behind = everythingAt(moved);
    const std::set<QByteArray> before = tree(home.path());
    HookedSystem calls;
    calls.letNothingBeConfined(); // its threads take longer than all else
    QVERIFY(performCleaning(calls, plan, {}).removedItems > 0);
    QCOMPARE(everythingAt(moved), behind);
    const std::set<QByteArray> mayBeGone = itemsIn(found);
    const std::set<QByteArray> after = tree(home.path());
    for (const QByteArray &path : before)
        QVERIFY2(after.contains(path) || mayBeGone.contains(path), path);
}

/// A folder of documents that a desktop shows below the cache, and a cache that is a disk itself.
void TestHomeSurveyHazards::leavesMountsAlone()
{
    MadeTree tree;
    for (const char *folder :
         {".cache", ".cache/doc", ".var", ".var/app", ".var/app/org.a.A", ".var/app/org.a.A/cache"})
        tree.makeFolder(folder);
    tree.makeFile(".cache/old");
    const auto work = [&tree] {
        const OwnMounts mounts(tree);
        mounts.mountMemory(".cache/doc");
        mounts.mountMemory(".var/app/org.a.A/cache");
        makeFile(tree.path(".cache/doc/letter.odt"));
        makeFile(tree.path(".var/app/org.a.A/cache/item"));
        const GrantedFolder access(tree.path());
        const HomeLayout layout = surveyHome(
            hostSystemCalls(), access, FileUrl::fromPath(tree.path(), FileUrlKind::Folder), {});
        const FileUrls caches = *layout.locations(SliceKind::Cache);
        clean(access, {contentsOf(caches)}, {}, OneThreadCalls());
        const bool areLeft = exists(tree.path(".cache/doc/letter.odt")) &&
                             exists(tree.path(".var/app/org.a.A/cache/item"));
        const bool isGone = !exists(tree.path(".cache/old"));
        return mounts.areMade() && caches.size() == 1 && areLeft && isGone ? 0 : 1;
    };
    QCOMPARE(runInChild(ChildUser::Same, work).exitCode, 0);
}

void TestHomeSurveyHazards::leavesSubVolumesAlone()
{
    const MadeHome home(kPlainHome);
    const SubVolume calls(home.path(".cache"));
    Found expected = kPlainLocations;
    expected.erase(SliceKind::Cache);
    QCOMPARE(locationsOf(home, home.survey({}, calls)), expected);
}

/// Whichever call fails, the survey ends and finds no more than it would have found.
void TestHomeSurveyHazards::findsNothingItMayNotRead()
{
    const MadeHome home(kPlainHome);
    HookedSystem calls;
    home.survey({}, calls);
    const int count = calls.callCount();
    QVERIFY(count > 20);
    for (int number = 2; number <= count; ++number) {
        calls.setHook(HookedSystem::failing(number, EIO));
        for (const auto &[kind, paths] : locationsOf(home, home.survey({}, calls))) {
            for (const QByteArray &path : paths)
                QVERIFY2(kPlainLocations.at(kind).contains(path), path);
        }
    }
}

VANTOR_TEST_MAIN(TestHomeSurveyHazards)
#include "tst_HomeSurveyHazards.moc"
