#include "platform/system/Descent.h"
#include "platform/system/SystemResult.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// A file system that takes two names in capitals for the usual ones.
class CaselessCalls final : public ForwardingSystemCalls
{
public:
    SystemResult<FileDescriptor> openFolder(int parent, const char *path,
                                            Descent descent) const override
    {
        QByteArray small(path);
        small.replace("DOWNLOADS", "downloads").replace("GET", "Get").replace("SNAP", "snap");
        return ForwardingSystemCalls::openFolder(parent, small.constData(), descent);
    }
};

} // namespace

/// What the user's own file and the environment may add to a home, and what they may not.
class TestFreedesktopSurvey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesDownloadsFromTheUsersFile_data();
    void takesDownloadsFromTheUsersFile();
    void emptiesNoDownloadsWhileTheUsersFileIsUnreadable_data();
    void emptiesNoDownloadsWhileTheUsersFileIsUnreadable();
    void emptiesNoDownloadsWhenReadingFails();
    void protectsTheUsersFoldersWhateverTheirNames_data();
    void protectsTheUsersFoldersWhateverTheirNames();
    void protectsOneFolderUnderTwoNames();
    void takesLittleFromTheEnvironment_data();
    void takesLittleFromTheEnvironment();
    void searchesTheUsersFolders_data();
    void searchesTheUsersFolders();
};

void TestFreedesktopSurvey::takesDownloadsFromTheUsersFile_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArray>("folder");
    const auto row = [](const char *name, const QByteArray &lines, const QByteArray &folder) {
        QTest::newRow(name) << lines << folder;
    };
    const auto download = [](const QByteArray &value) {
        return "XDG_DOWNLOAD_DIR=\"" + value + "\"\n";
    };
    row("Japanese", download("$HOME/ダウンロード"), "ダウンロード/");
    row("deep", download("$HOME/Data/Get"), "Data/Get/");
    row("inside another of the user's", download("$HOME/Documents/Get"), "Documents/Get/");
    row("gone", download("$HOME/Gone"), "");
    row("a link", download("$HOME/Linked"), "");
    row("through a link", download("$HOME/Linked/Get"), "");
    row("the home", download("$HOME"), "Downloads/");
    row("elsewhere", download("/etc"), "Downloads/");
    row("the documents", download("$HOME/Documents"), "");
    row("the documents by name",
        download("$HOME/Papiere") + "XDG_DOCUMENTS_DIR=\"$HOME/Papiere\"\n", "");
    row("around the documents", download("$HOME/Data") + "XDG_DOCUMENTS_DIR=\"$HOME/Data/Get\"\n",
        "");
    row("a slice's place", download("$HOME/.cache"), "");
    row("around a slice's place", download("$HOME/.local"), "");
    row("hidden", download("$HOME/.config"), "");
    row("programs' own", download("$HOME/snap"), "");
    row("the folder around the home", download("$HOME/.."), "Downloads/");
    row("out and in again", download("$HOME/../anna/Data"), "");
    row("up and down", download("$HOME/Documents/../Data"), "");
    row("no path", download("Data"), "Downloads/");
    row("a command", download("$HOME/$(touch x)"), "Downloads/");
    row("by the home's other path", download("/other/way/Data"), "Data/");
    row("the documents by the other path", "XDG_DOCUMENTS_DIR=\"/other/way/Downloads\"\n", "");
    row("the plain name may mean documents", "XDG_DOCUMENTS_DIR=\"$HOME/Downloads\";\n", "");
    row("it may mean documents to a shell", "export XDG_DOCUMENTS_DIR=$HOME/Downloads\n", "");
    row("it means documents in a roundabout way", "XDG_DOCUMENTS_DIR=\"$HOME/Data/../Downloads\"\n",
        "");
    row("it means documents behind a link", "XDG_DOCUMENTS_DIR=\"$HOME/Twice\"\n", "");
    row("it holds documents behind a link", "XDG_DOCUMENTS_DIR=\"$HOME/Twice/papers\"\n", "");
    row("the plain name means documents", "XDG_DOCUMENTS_DIR=\"$HOME/Downloads\"\n", "");
}

void TestFreedesktopSurvey::takesDownloadsFromTheUsersFile()
{
    QFETCH(const QByteArray, lines);
    QFETCH(const QByteArray, folder);
    MadeHome home(kPlainHome);
    for (const char *path : {"ダウンロード/x", "Data/Get/x", "Documents/Get/x", "Papiere/x",
                             "snap/tool/common/x", ".config/x"})
        home.make(path);
    home.link("Linked", "Data");
    home.link("Once", "Downloads");
    home.link("Twice", "Once");
    makeLink(home.outside("alias"), "anna");
    home.nameUserDirs(QByteArray(lines).replace("/other/way", home.outside("alias")));
    const QByteArrayList expected = folder.isEmpty() ? QByteArrayList() : QByteArrayList{folder};
    const HomeLayout layout = home.survey({{}, {}, home.outside("alias")});
    QCOMPARE(home.relative(*layout.locations(SliceKind::Downloads)), expected);
}

void TestFreedesktopSurvey::emptiesNoDownloadsWhileTheUsersFileIsUnreadable_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QByteArrayList>("found");
    const QByteArrayList none;
    QTest::newRow("no file") << QByteArray() << QByteArrayList{"Downloads/", "var/cache/"};
    QTest::newRow("a link beside it") << QByteArray("here") << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("a link into the home")
        << QByteArray("../dots/u") << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("a full link") << QByteArray("HOME/dots/u")
                                 << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("a link to a link") << QByteArray("link") << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("through a link")
        << QByteArray("../linked/u") << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("out of the home") << QByteArray("../../elsewhere") << none;
    QTest::newRow("a full one out of it") << QByteArray("HOME/../elsewhere") << none;
    QTest::newRow("around") << QByteArray("../dots/../dots/u")
                            << QByteArrayList{"Get/", "var/cache/"};
    QTest::newRow("to itself") << QByteArray("user-dirs.dirs") << none;
    QTest::newRow("to nothing") << QByteArray("gone") << none;
    QTest::newRow("to a folder") << QByteArray("../dots") << none;
    QTest::newRow("too large") << QByteArray("large") << none;
}

void TestFreedesktopSurvey::emptiesNoDownloadsWhileTheUsersFileIsUnreadable()
{
    QFETCH(QByteArray, link);
    QFETCH(const QByteArrayList, found);
    const QByteArray lines = "XDG_DOWNLOAD_DIR=\"$HOME/Get\"\n";
    const MadeHome home({"Downloads/x", "Get/x", "var/cache/x"});
    home.make(".config/here", lines);
    home.make("dots/u", lines);
    home.make(".config/large", lines + QByteArray(64 * 1024, '#'));
    makeFile(home.outside("elsewhere"), lines);
    home.link("linked", "dots");
    home.link(".config/link", "here");
    if (!link.isEmpty())
        home.link(".config/user-dirs.dirs", link.replace("HOME", home.path()));
    const HomeLayout layout = home.survey({{}, home.path("var/cache")});
    QCOMPARE(home.relative(*layout.locations(SliceKind::Downloads) +
                           *layout.locations(SliceKind::Cache)),
             found);
    QList<PlaceOutOfReach> told;
    if (found.isEmpty())
        told.append({".config/user-dirs.dirs", Obstacle::UnclearUserDirs});
    for (const SliceKind kind :
         {SliceKind::Downloads, SliceKind::Cache, SliceKind::Trash, SliceKind::LargeFiles})
        QCOMPARE(layout.outOfReach(kind), told);
}

void TestFreedesktopSurvey::emptiesNoDownloadsWhenReadingFails()
{
    const MadeHome home({"Downloads/x"});
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/Get\"\n");
    const auto downloads = [&](const SystemCalls &calls) {
        return home.relative(*home.survey({}, calls).locations(SliceKind::Downloads));
    };
    for (const char *call : {"openFile", "read"}) {
        const ForwardingSystemCalls failing(
            [&](int, std::string_view name) { return name == call ? EIO : 0; });
        QCOMPARE(downloads(failing), QByteArrayList());
        QCOMPARE(home.survey({}, failing).outOfReach(SliceKind::Downloads),
                 (QList<PlaceOutOfReach>{{".config/user-dirs.dirs", Obstacle::UnclearUserDirs}}));
    }
    const MadeHome linked({"Downloads/x"});
    linked.link(".config", linked.outside("dots"));
    QCOMPARE(linked.survey().locations(SliceKind::Downloads), FileUrls());
}

void TestFreedesktopSurvey::protectsTheUsersFoldersWhateverTheirNames_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("lost"); ///< of the locations that are found otherwise
    QTest::newRow("none") << QByteArray() << QByteArrayList();
    QTest::newRow("a name of one's own")
        << QByteArray("XDG_PROJECTS_DIR=\"$HOME/Downloads/Jobs\"\n")
        << QByteArrayList{"Downloads/"};
    QTest::newRow("hidden") << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/.cache/papers\"\n")
                            << QByteArrayList{".cache/"};
    QTest::newRow("a cache that is one")
        << QByteArray("XDG_PROJECTS_DIR=\"$HOME/var/cache\"\n") << QByteArrayList{"var/cache/"};
    QTest::newRow("a link into the downloads")
        << QByteArray("XDG_MUSIC_DIR=\"$HOME/Linked\"\n") << QByteArrayList{"Downloads/"};
    QTest::newRow("downloads in a cache")
        << QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/.cache/papers\"\n")
        << QByteArrayList{".cache/", "Downloads/"};
}

void TestFreedesktopSurvey::protectsTheUsersFoldersWhateverTheirNames()
{
    QFETCH(const QByteArray, lines);
    QFETCH(const QByteArrayList, lost);
    const MadeHome home({"Downloads/Jobs/x", ".cache/papers/x", "var/cache/x"});
    home.link("Linked", "Downloads/Jobs");
    home.nameUserDirs(lines);
    const HomeLayout layout = home.survey({{}, home.path("var/cache")});
    QByteArrayList expected{".cache/", "var/cache/", "Downloads/"};
    expected.removeIf([&](const QByteArray &location) { return lost.contains(location); });
    QCOMPARE(home.relative(*layout.locations(SliceKind::Cache) +
                           *layout.locations(SliceKind::Downloads)),
             expected);
}

/// As where upper and lower case are the same.
void TestFreedesktopSurvey::protectsOneFolderUnderTwoNames()
{
    const MadeHome home({"downloads/Papers/x", "Get/x", "snap/tool/common/.cache/x"});
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/DOWNLOADS\"\n"
                      "XDG_DOCUMENTS_DIR=\"$HOME/downloads/Papers\"\n");
    const CaselessCalls calls;
    QCOMPARE(home.survey({}, calls).locations(SliceKind::Downloads), FileUrls());
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/GET\"\n");
    QCOMPARE(home.relative(*home.survey({}, calls).locations(SliceKind::Downloads)),
             QByteArrayList{"GET/"});
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/SNAP\"\nXDG_DESKTOP_DIR=\"$HOME/DOWNLOADS\"\n"
                      "XDG_DOCUMENTS_DIR=\"$HOME/downloads/Papers\"\n");
    QCOMPARE(home.survey({}, calls).locations(SliceKind::Downloads), FileUrls());
    QVERIFY(!home.relative(home.survey({}, calls).searchFolders()).contains("downloads/Papers/"));
}

void TestFreedesktopSurvey::takesLittleFromTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("cache");
    QTest::addColumn<QByteArrayList>("added");
    const auto row = [](const char *name, const QByteArray &data, const QByteArray &cache,
                        const QByteArrayList &added) {
        QTest::newRow(name) << data << cache << added;
    };
    row("below", "HOME/data", "HOME/var/cache",
        {"data/Trash/files/", "data/Trash/info/", "var/cache/"});
    row("by the home's other path", "/other/way/data", "/other/way/var/cache",
        {"data/Trash/files/", "data/Trash/info/", "var/cache/"});
    row("where they are anyway", "HOME/.local/share", "HOME/.cache", {});
    row("the home", "HOME", "HOME", {});
    row("with a slash", "HOME/", "HOME/", {});
    row("its folder", "HOME/..", "HOME/..", {});
    row("up and down", "HOME/../anna/data", "HOME/../anna/var/cache", {});
    row("elsewhere", "/usr/share", "/var/cache", {});
    row("relative", "data", "var/cache", {});
    row("the documents", "HOME/Documents", "HOME/Documents", {});
    row("among the documents", "HOME/nothing", "HOME/Documents/cache", {});
    row("around a location", "HOME/.local", "HOME/.local", {});
    row("in a location", "HOME/.cache", "HOME/.cache/cache", {});
    row("in the downloads", "HOME/Downloads", "HOME/Downloads/cache", {});
    row("not called a cache", "HOME/half", "HOME/var", {});
    row("a link", "HOME/linked", "HOME/linked-cache", {});
    row("the keys", "HOME/.ssh", "HOME/.ssh", {});
    row("a mail store", "HOME/nothing", "HOME/.claws-mail/imapcache", {});
    row("a program's own", "HOME/nothing", "HOME/.claws-mail/cache", {});
    row("a sandbox's own", "HOME/nothing", "HOME/snap/cache", {});
    row("a hobby", "HOME/nothing", "HOME/Geocaches", {});
    row("a project", "HOME/nothing", "HOME/Projects/my-cache", {});
    row("in capitals", "HOME/nothing", "HOME/Projects/Cache", {});
    row("one for all programs", "HOME/nothing", "HOME/.xdg/MyCache", {".xdg/MyCache/"});
    row("a settings folder with a cache", "HOME/nothing", "HOME/.xdg", {});
    row("a hidden one", "HOME/nothing", "HOME/Projects/.cache", {"Projects/.cache/"});
    row("documents called a trash", "HOME/Papers", "HOME/Papers/cache", {});
    row("around the user's folders", "HOME/nothing", "HOME/my caches", {});
}

void TestFreedesktopSurvey::takesLittleFromTheEnvironment()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, cache);
    QFETCH(const QByteArrayList, added);
    MadeHome home(kPlainHome);
    for (const char *path : {"data/Trash/files/x",
                             "data/Trash/info/x",
                             "var/cache/x",
                             "Documents/cache/x",
                             "half/Trash/files/x",
                             ".ssh/id",
                             ".cache/cache/x",
                             "Downloads/cache/x",
                             ".claws-mail/imapcache/x",
                             ".claws-mail/cache/x",
                             "snap/cache/x",
                             "Geocaches/x",
                             "Projects/my-cache/x",
                             "Projects/Cache/x",
                             "Projects/.cache/x",
                             "Papers/Trash/files/x",
                             "Papers/Trash/info/x",
                             "Papers/cache/x",
                             "Downloads/Trash/files/x",
                             "Downloads/Trash/info/x",
                             "my caches/Pictures/x",
                             ".xdg/MyCache/fontconfig/CACHEDIR.TAG",
                             ".xdg/fontconfig/CACHEDIR.TAG"})
        home.make(path);
    home.nameUserDirs("XDG_PICTURES_DIR=\"$HOME/my caches/Pictures\"\n"
                      "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    home.link("linked", "data");
    home.link("linked-cache", "var/cache");
    const QByteArray alias = home.outside("alias");
    makeLink(alias, "anna");
    const HomeEnvironment environment{
        data.replace("HOME", home.path()).replace("/other/way", alias),
        cache.replace("HOME", home.path()).replace("/other/way", alias), alias};
    QByteArrayList found;
    for (const auto &[kind, paths] : locationsOf(home, home.survey(environment)))
        found += paths;
    for (const auto &[kind, paths] : kPlainLocations) {
        for (const QByteArray &path : paths)
            QVERIFY2(found.removeOne(path), path);
    }
    QCOMPARE(found, added);
}

void TestFreedesktopSurvey::searchesTheUsersFolders_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("folders");
    QTest::newRow("plain names") << QByteArray()
                                 << QByteArrayList{"Desktop/",  "Documents/", "Downloads/",
                                                   "Dropbox/",  "Videos/",    "Music/",
                                                   "Pictures/", "Public/",    "Sites/"};
    QTest::newRow("German") << QByteArray("XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                          "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                          "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                                          "XDG_MUSIC_DIR=\"$HOME/Musik\"\n"
                                          "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                                          "XDG_PUBLICSHARE_DIR=\"$HOME/Öffentlich\"\n"
                                          "XDG_TEMPLATES_DIR=\"$HOME/Vorlagen\"\n"
                                          "XDG_VIDEOS_DIR=\"$HOME/Videos\"\n")
                            << QByteArrayList{"Schreibtisch/", "Dokumente/",  "Downloads/",
                                              "Dropbox/",      "Videos/",     "Musik/",
                                              "Bilder/",       "Öffentlich/", "Sites/"};
    QTest::newRow("one for all") << QByteArray("XDG_DESKTOP_DIR=\"$HOME/Documents\"\n"
                                               "XDG_DOWNLOAD_DIR=\"$HOME/Documents\"\n"
                                               "XDG_MUSIC_DIR=\"$HOME/Dropbox/Music\"\n"
                                               "XDG_VIDEOS_DIR=\"$HOME/Music/../..\"\n"
                                               "XDG_PICTURES_DIR=\"$HOME/Documents/Old/Pictures\"\n"
                                               "XDG_PUBLICSHARE_DIR=\"$HOME/\"\n")
                                 << QByteArrayList{"Documents/", "Dropbox/", "Videos/", "Public/",
                                                   "Sites/"};
}

void TestFreedesktopSurvey::searchesTheUsersFolders()
{
    QFETCH(const QByteArray, lines);
    QFETCH(const QByteArrayList, folders);
    const MadeHome home;
    home.nameUserDirs(lines);
    QCOMPARE(home.relative(home.survey().searchFolders()), folders);
}

VANTOR_TEST_MAIN(TestFreedesktopSurvey)
#include "tst_FreedesktopSurvey.moc"
