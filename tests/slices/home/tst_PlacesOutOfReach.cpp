#include "platform/system/HostSystemCalls.h"
#include "slices/home/PlacesOutOfReach.h"
#include "slices/probe/HomeProbe.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <cstdio>

namespace {

using Places = QList<PlaceOutOfReach>;

} // namespace

/// Which places a slice would have, were there not something in the way.
class TestPlacesOutOfReach final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfALinkInTheWay_data();
    void tellsOfALinkInTheWay();
    void tellsOfAFolderOnAnotherDisk();
    void tellsOfAFolderThatCannotBeRead();
    void tellsOfAPlaceOnce();
    void tellsNothingOfWhatIsThereOrMissing();
    void knowsThePlacesThatTheUserNames();
};

void TestPlacesOutOfReach::tellsOfALinkInTheWay_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<SliceKind>("kind");
    const auto add = [](const char *link, SliceKind kind) {
        QTest::addRow("%s", link) << QByteArray(link) << kind;
    };
    add(".cache", SliceKind::Cache);
    add("Downloads", SliceKind::Downloads);
    add(".local", SliceKind::Trash);
    add(".local/share/Trash", SliceKind::Trash);
    add(".local/share/Trash/files", SliceKind::Trash);
    add(".config", SliceKind::AppLogs);
    add(".local/state", SliceKind::AppLogs);
    add(".wine", SliceKind::OldIos);
    add(".claws-mail", SliceKind::MailDownloads);
    add(".mozilla", SliceKind::BrowserData);
    add(".config/chromium", SliceKind::BrowserData);
}

void TestPlacesOutOfReach::tellsOfALinkInTheWay()
{
    QFETCH(QByteArray, link);
    QFETCH(SliceKind, kind);
    const MadeHome home({"Big/", ".config/user-dirs.locale", ".local/share/Trash/info/"});
    const QByteArray aside = link + " aside";
    ::rename(home.path(link).constData(), home.path(aside).constData());
    home.link(link, home.path("Big"));
    const HomeLayout layout = home.survey();
    QVERIFY(layout.outOfReach(kind).contains(PlaceOutOfReach{link, Obstacle::Link}));
}

void TestPlacesOutOfReach::tellsOfAFolderOnAnotherDisk()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    MadeTree tree;
    tree.makeFolder("Downloads");
    tree.makeFolder(".cache");
    const QByteArray text =
        runInChild(ChildUser::Same, [&] {
            const OwnMounts mounts(tree);
            mounts.mountMemory("Downloads");
            const HomeProbe reader(hostSystemCalls(), tree.descriptor());
            const PlacesOutOfReach found = findPlacesOutOfReach(reader, {"Downloads", {}});
            const bool isRight = found[indexOf(SliceKind::Downloads)] ==
                                     Places{{"Downloads", Obstacle::OtherFileSystem}} &&
                                 found[indexOf(SliceKind::Cache)].isEmpty();
            std::fputs(!mounts.areMade() ? "not made" : isRight ? "told" : "not told", stderr);
            return 0;
        }).errorText;
    QCOMPARE(text, QByteArray("told"));
}

void TestPlacesOutOfReach::tellsOfAFolderThatCannotBeRead()
{
    const MadeHome home({".cache/a"});
    const HookedSystem silent(
        [](int, std::string_view name) { return name == "openFolder" ? EIO : 0; });
    const HomeProbe reader(silent, home.access().anchoredPath(home.url())->anchor);
    QCOMPARE(findPlacesOutOfReach(reader, {})[indexOf(SliceKind::Cache)],
             (Places{{".cache", Obstacle::Unreadable}}));
}

void TestPlacesOutOfReach::tellsOfAPlaceOnce()
{
    const MadeHome home({"Big/"});
    home.link(".local", home.path("Big"));
    const HomeLayout layout = home.survey();
    for (const SliceKind kind : {SliceKind::Trash, SliceKind::AppLogs})
        QCOMPARE(layout.outOfReach(kind), (Places{{".local", Obstacle::Link}}));
}

void TestPlacesOutOfReach::tellsNothingOfWhatIsThereOrMissing()
{
    const MadeHome plain(kPlainHome);
    const MadeHome empty;
    const MadeHome files({".cache", "Downloads", ".mozilla"});
    for (const SliceDescription &slice : sliceCatalogue()) {
        QCOMPARE(plain.survey().outOfReach(slice.kind), Places());
        QCOMPARE(empty.survey().outOfReach(slice.kind), Places());
        QCOMPARE(files.survey().outOfReach(slice.kind), Places());
    }
}

void TestPlacesOutOfReach::knowsThePlacesThatTheUserNames()
{
    const MadeHome home({"Big/"});
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/Get\"\n");
    home.link("Get", "Big");
    home.link("fast", "Big");
    const HomeLayout layout = home.survey({{}, home.path("fast/cache")});
    QCOMPARE(layout.outOfReach(SliceKind::Downloads), (Places{{"Get", Obstacle::Link}}));
    QCOMPARE(layout.outOfReach(SliceKind::Cache), (Places{{"fast", Obstacle::Link}}));
}

VANTOR_TEST_MAIN(TestPlacesOutOfReach)
#include "tst_PlacesOutOfReach.moc"
