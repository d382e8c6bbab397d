#include "platform/system/HostSystemCalls.h"
#include "slices/home/KeptPlaces.h"
#include "slices/probe/HomeProbe.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <set>

namespace {

/// What is kept in the caches of a home, as paths relative to it.
QByteArrayList keptIn(const MadeHome &home, const HomeEnvironment &environment = {},
                      const SystemCalls &calls = MadeMachine())
{
    const FileUrls caches = *home.survey(environment).locations(SliceKind::Cache);
    const auto inUse = ProgramsInUse::find(calls, home.access(), home.survey(environment));
    QByteArrayList kept = home.relative(inUse.keptInside(caches));
    std::sort(kept.begin(), kept.end());
    return kept;
}

} // namespace

/// What among the caches is no cache.
class TestKeptPlaces final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesEachPlaceOnceAndSaysWhatItHolds();
    void keepsWhatNothingMakesAnew_data();
    void keepsWhatNothingMakesAnew();
    void findsThemInEveryCache();
    void keepsALinkOnTheWay();
    void keepsWhatCannotBeLookedAt();
    void leavesTheNeighbours();
    void findsNoneWithALibrary();
};

void TestKeptPlaces::namesEachPlaceOnceAndSaysWhatItHolds()
{
    std::set<QByteArray> paths;
    for (const KeptPlace &place : keptPlaces()) {
        const QByteArray path = place.path;
        QVERIFY2(paths.insert(path).second, place.path);
        QVERIFY2(qstrlen(place.what) > 0, place.path);
        QVERIFY2(!path.startsWith('/') && !path.endsWith('/') && !path.contains("//"), place.path);
        for (const QByteArray &name : path.split('/'))
            QVERIFY2(name.count('*') <= 1 && name != "." && name != "..", place.path);
    }
}

void TestKeptPlaces::keepsWhatNothingMakesAnew_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("kept");
    const auto add = [](const char *file, const char *kept) {
        QTest::addRow("%s", file) << QByteArray(file) << QByteArray(kept);
    };
    add(".cache/rclone/vfs/remote/letter.odt", ".cache/rclone/vfs/");
    add(".cache/kioexec/krun/7_0/report.odt", ".cache/kioexec/");
    add(".cache/.fr-a1B2c3/report.odt", ".cache/.fr-a1B2c3/");
    add(".cache/inkscape/autosave-1.svg", ".cache/inkscape/");
    add(".cache/vim/undo/%home%a", ".cache/vim/undo/");
    add(".cache/JetBrains/IdeaIC2024.1/LocalHistory/changes",
        ".cache/JetBrains/IdeaIC2024.1/LocalHistory/");
    add(".cache/Google/AndroidStudio2024.1/LocalHistory/changes",
        ".cache/Google/AndroidStudio2024.1/LocalHistory/");
    add(".cache/RawTherapee5.9/profiles/a.pp3", ".cache/RawTherapee5.9/profiles/");
    add(".cache/pypoetry/virtualenvs/tool-py3.11/pyvenv.cfg", ".cache/pypoetry/virtualenvs/");
    add(".cache/sessions/xfce4-session-desk:0", ".cache/sessions/");
    add(".cache/huggingface/token", ".cache/huggingface/token");
}

void TestKeptPlaces::keepsWhatNothingMakesAnew()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, kept);
    QCOMPARE(keptIn(MadeHome({file, ".cache/other/a"})), QByteArrayList{kept});
}

void TestKeptPlaces::findsThemInEveryCache()
{
    const MadeHome home({".cache/thumbnails/", ".var/app/org.a.A/cache/rclone/vfs/a",
                         "snap/b/common/.cache/sessions/a", "fast/.cache/vim/undo/a",
                         "fast/.cache/vim/log", "Documents/vim/undo/a"});
    QCOMPARE(keptIn(home, {{}, home.path("fast/.cache")}),
             (QByteArrayList{".var/app/org.a.A/cache/rclone/vfs/", "fast/.cache/vim/undo/",
                             "snap/b/common/.cache/sessions/"}));
}

/// Who moves such a folder elsewhere puts a link in its place, and needs it.
void TestKeptPlaces::keepsALinkOnTheWay()
{
    const MadeHome home({".cache/rclone/", ".cache/JetBrains/", "Big/pypoetry/virtualenvs/a",
                         "Big/vfs/a", "Big/Idea/LocalHistory/"});
    home.link(".cache/pypoetry", "../Big/pypoetry");
    home.link(".cache/rclone/vfs", "../../Big/vfs");
    home.link(".cache/JetBrains/Idea1", "../../Big/Idea");
    QCOMPARE(keptIn(home),
             (QByteArrayList{".cache/JetBrains/Idea1", ".cache/pypoetry", ".cache/rclone/vfs"}));
}

void TestKeptPlaces::keepsWhatCannotBeLookedAt()
{
    const MadeHome home({".cache/sessions/a"});
    const FileUrls caches = *home.survey().locations(SliceKind::Cache);
    const auto anchor = home.access().anchoredPath(home.url())->anchor;
    const HookedSystem silent(
        [](int, std::string_view name) { return name == "status" ? EIO : 0; });
    const auto found = findKeptPlaces(HomeProbe(silent, anchor), home.url(), caches);
    const auto isSessions = [&](const FoundKeptPlace &place) {
        return home.relative(place.location).startsWith(".cache/sessions");
    };
    QVERIFY(std::ranges::any_of(found, isSessions));
}

void TestKeptPlaces::leavesTheNeighbours()
{
    QCOMPARE(keptIn(MadeHome({".cache/rclone/vfs2/a", ".cache/vim/view/a", ".cache/fr-a/b",
                              ".cache/JetBrains/Idea1/caches/a", ".cache/JetBrains/LocalHistory/a",
                              ".cache/huggingface/hub/a", ".cache/RawTherapee/images/a"})),
             QByteArrayList());
}

void TestKeptPlaces::findsNoneWithALibrary()
{
    const MadeHome home({"Library/Caches/sessions/a"});
    QCOMPARE(keptIn(home), QByteArrayList());
}

VANTOR_TEST_MAIN(TestKeptPlaces)
#include "tst_KeptPlaces.moc"
