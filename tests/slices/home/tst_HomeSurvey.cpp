#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// A grant that holds for the first question alone.
class AnsweringOnce final : public FileAccess
{
public:
    explicit AnsweringOnce(const FileAccess &access) : m_access(access) {}

    void startAccessing() override {}
    void stopAccessing() override {}
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        return std::exchange(m_isOver, true) ? std::nullopt : m_access.anchoredPath(url);
    }

private:
    const FileAccess &m_access;
    mutable bool m_isOver = false;
};

} // namespace

/// What a survey finds in homes of every kind, and that it finds nothing else.
class TestHomeSurvey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheFixedLayoutWhereThereIsALibrary();
    void takesNoLinkForALibrary();
    void knowsALibraryByWhatItHolds_data();
    void knowsALibraryByWhatItHolds();
    void asksLittleForAPlainLibrary();
    void takesNoSilenceForAKind();
    void asksForTheHomeOnce();
    void endsSoonOnceItIsToldTo();
    void findsAPlainDesktop();
    void findsNothingInAnEmptyHome();
    void findsSandboxedPrograms();
    void leavesTheLogsOfARepository();
    void takesNoProfileForLogs();
    void followsARevisionOfASnapAlone();
    void findsTheUpdatesOfEveryUserOfWine();
    void findsAttachmentsButNoMail();
    void findsEveryBrowserProfile();
};

void TestHomeSurvey::keepsTheFixedLayoutWhereThereIsALibrary()
{
    MadeHome home(kPlainHome);
    home.make("Library/Logs/");
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/Elsewhere\"\n");
    const HomeLayout layout = home.survey({home.path("data"), home.path("cache")});
    QCOMPARE(layout.kind(), HomeKind::Library);
    for (const SliceDescription &slice : sliceCatalogue()) {
        QCOMPARE(layout.locations(slice.kind), sliceLocations(slice.kind, home.url()));
        QCOMPARE(layout.details(slice.kind), QString::fromUtf16(slice.details));
        for (const FileUrl &url : layout.locations(slice.kind).value_or(FileUrls()))
            QVERIFY(!layout.isInTrash(url));
    }
    QCOMPARE(home.relative(layout.trashFolder()), QByteArray(".Trash/"));
    QVERIFY(layout.programs().empty() && layout.searchFolders().isEmpty());
}

void TestHomeSurvey::takesNoLinkForALibrary()
{
    const MadeHome linked({"Books/"});
    linked.make("Books/Caches/");
    linked.link("Library", "Books");
    QCOMPARE(linked.survey().kind(), HomeKind::Freedesktop);
    QVERIFY(!hasPlainLibrary(hostSystemCalls(), linked.access(), linked.url()));
    QCOMPARE(MadeHome({"Library"}).survey().kind(), HomeKind::Freedesktop); // a file
}

void TestHomeSurvey::knowsALibraryByWhatItHolds_data()
{
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<HomeKind>("kind");
    QTest::addColumn<bool>("isPlain");
    const auto add = [](const char *name, const QByteArrayList &paths, HomeKind kind,
                        bool isPlain = false) {
        QTest::addRow("%s", name) << paths << kind << isPlain;
    };
    add("nothing", {"Library/"}, HomeKind::Freedesktop);
    add("books", {"Library/Novels/a.epub", "Library/Cache/"}, HomeKind::Freedesktop);
    add("a location's way", {"Library/iTunes/", "Library/Safari/"}, HomeKind::Freedesktop);
    add("a file for a folder", {"Library/Caches", "Library/Logs"}, HomeKind::Freedesktop);
    add("a folder for a file", {"Library/Safari/History.plist/"}, HomeKind::Freedesktop);
    add("caches", {"Library/Caches/"}, HomeKind::Library, true);
    add("logs", {"Library/Logs/"}, HomeKind::Library);
    add("updates", {"Library/iTunes/iPod Software Updates/"}, HomeKind::Library);
    add("a history", {"Library/Safari/History.plist"}, HomeKind::Library);
}

/// People give folders of their own any name.
void TestHomeSurvey::knowsALibraryByWhatItHolds()
{
    QFETCH(QByteArrayList, paths);
    const MadeHome home(paths);
    QTEST(home.survey().kind(), "kind");
    QTEST(hasPlainLibrary(hostSystemCalls(), home.access(), home.url()), "isPlain");
}

void TestHomeSurvey::asksLittleForAPlainLibrary()
{
    const MadeHome home({"Library/Caches/"});
    QByteArrayList calls;
    const HookedSystem watched([&](int, std::string_view name) {
        calls.append(QByteArray(name.data(), static_cast<qsizetype>(name.size())));
        return 0;
    });
    QVERIFY(hasPlainLibrary(watched, home.access(), home.url()));
    QCOMPARE(calls, (QByteArrayList{"status", "status"}));
    calls.clear();
    const MadeHome other(kPlainHome);
    QVERIFY(!hasPlainLibrary(watched, other.access(), other.url()));
    QCOMPARE(calls, QByteArrayList{"status"});
}

void TestHomeSurvey::takesNoSilenceForAKind()
{
    const MadeHome home(kPlainHome);
    const HookedSystem silent(HookedSystem::failing(1, EIO));
    QVERIFY(!hasPlainLibrary(silent, home.access(), home.url()));
    const HomeLayout layout = home.survey({}, HookedSystem(HookedSystem::failing(1, EACCES)));
    QCOMPARE(layout.kind(), HomeKind::Unknown);
    QVERIFY(!layout.locations(SliceKind::Trash));
    const MadeHome stray({"Library/"});
    for (int call = 1; call <= 6; ++call) {
        const HookedSystem failing(HookedSystem::failing(call, EIO));
        QCOMPARE(stray.survey({}, failing).kind(), HomeKind::Unknown);
    }
}

void TestHomeSurvey::asksForTheHomeOnce()
{
    const MadeHome home(kPlainHome);
    const AnsweringOnce access(home.access());
    const HomeLayout layout = surveyHome(hostSystemCalls(), access, home.url(), {});
    QCOMPARE(locationsOf(home, layout), kPlainLocations);
}

void TestHomeSurvey::endsSoonOnceItIsToldTo()
{
    const MadeHome home(kPlainHome);
    std::stop_source stop;
    int listings = 0;
    const HookedSystem calls([&](int, std::string_view name) {
        if (name == "readEntries") {
            ++listings;
            stop.request_stop();
        }
        return 0;
    });
    const HomeLayout layout = surveyHome(calls, home.access(), home.url(), {}, stop.get_token());
    QCOMPARE(layout.kind(), HomeKind::Unknown);
    QVERIFY(listings <= 2);
}

void TestHomeSurvey::findsAPlainDesktop()
{
    const MadeHome home(kPlainHome);
    const HomeLayout layout = home.survey();
    QCOMPARE(layout.kind(), HomeKind::Freedesktop);
    QCOMPARE(locationsOf(home, layout), kPlainLocations);
    QVERIFY(!layout.locations(SliceKind::LargeFiles));
    QCOMPARE(home.relative(layout.trashFolder()), QByteArray(".local/share/Trash/files/"));
    const FileUrls trash = *layout.locations(SliceKind::Trash);
    for (const FileUrl &url : trash)
        QVERIFY(layout.isInTrash(url));
    QVERIFY(!layout.isInTrash(layout.locations(SliceKind::Cache)->constFirst()));
}

void TestHomeSurvey::findsNothingInAnEmptyHome()
{
    const MadeHome home;
    QCOMPARE(locationsOf(home, home.survey()), Found());
    QCOMPARE(home.survey().locations(SliceKind::Cache), std::optional(FileUrls()));
}

void TestHomeSurvey::findsSandboxedPrograms()
{
    MadeHome home(kPlainHome);
    for (const char *path :
         {".var/app/org.a.A/cache/x", ".var/app/org.a.A/data/Trash/files/y",
          ".var/app/org.a.A/data/Trash/info/y.trashinfo", ".var/app/org.a.A/config/a/logs/z",
          ".var/app/org.b.B/cache/", ".var/app/org.b.B/data/notes/keep",
          "snap/tool/common/.cache/x", "snap/tool/common/.local/share/Trash/files/y",
          "snap/tool/12/.local/share/Trash/expunged/z", "snap/tool/12/Documents/keep"})
        home.make(path);
    home.link("snap/tool/current", "12");
    QCOMPARE(
        locationsOf(home, home.survey()),
        plainWith(
            {{SliceKind::Trash, kPlainLocations.at(SliceKind::Trash) +
                                    QByteArrayList{".var/app/org.a.A/data/Trash/files/",
                                                   ".var/app/org.a.A/data/Trash/info/",
                                                   "snap/tool/common/.local/share/Trash/files/",
                                                   "snap/tool/12/.local/share/Trash/expunged/"}},
             {SliceKind::Cache,
              {".cache/", ".var/app/org.a.A/cache/", ".var/app/org.b.B/cache/",
               "snap/tool/common/.cache/"}},
             {SliceKind::AppLogs, kPlainLocations.at(SliceKind::AppLogs) +
                                      QByteArrayList{".var/app/org.a.A/config/a/logs/"}}}));
}

/// They are the only trace of what was in it before, and lie beside its head.
void TestHomeSurvey::leavesTheLogsOfARepository()
{
    MadeHome home;
    for (const char *folder : {".config/dotfiles", ".config/.git", ".local/share/yadm.git",
                               ".local/state/repo", ".var/app/org.a.A/config/repo"}) {
        for (const char *path : {"/HEAD", "/objects/pack/", "/logs/HEAD"})
            home.make(QByteArray(folder) + path);
    }
    home.make(".config/old/logs/HEAD");
    home.link(".config/old/HEAD", "refs/heads/main");
    for (const char *path : {".config/b/objects/", ".config/b/logs/x", ".config/c/HEAD/",
                             ".config/c/objects/", ".config/c/logs/x"})
        home.make(path);
    QCOMPARE(locationsOf(home, home.survey()),
             (Found{{SliceKind::AppLogs, {".config/b/logs/", ".config/c/logs/"}}}));
}

/// A user may call a profile what he likes.
void TestHomeSurvey::takesNoProfileForLogs()
{
    const MadeHome home({".config/chromium/logs/Bookmarks", ".config/chromium/logs/History",
                         ".config/opera/logs/Bookmarks", ".config/vivaldi/logs/chrome.log"});
    for (const char *browser : {"chromium", "opera"})
        home.make(QByteArray(".config/") + browser + "/Local State",
                  R"({"profile":{"info_cache":{"logs":{}}}})");
    QCOMPARE(locationsOf(home, home.survey()),
             (Found{{SliceKind::AppLogs, {".config/vivaldi/logs/"}},
                    {SliceKind::BrowserData, {".config/chromium/logs/History"}}}));
}

void TestHomeSurvey::followsARevisionOfASnapAlone()
{
    MadeHome home({"snap/a/current/.local/share/Trash/files/x", "snap/b/7/", "elsewhere/x",
                   "snap/c/9/inner/.local/share/Trash/files/x", "snap/d/", "snap/e/"});
    home.make("elsewhere/.local/share/Trash/files/x");
    home.link("snap/b/current", "../../elsewhere");
    home.link("snap/c/current", "9/inner");
    home.link("snap/d/current", home.path("elsewhere"));
    home.link("snap/e/current", ".");
    QCOMPARE(locationsOf(home, home.survey()),
             (Found{{SliceKind::Trash, {"snap/a/current/.local/share/Trash/files/"}}}));
}

void TestHomeSurvey::findsTheUpdatesOfEveryUserOfWine()
{
    const QByteArray users = ".wine/drive_c/users/";
    const QByteArray updates = "/AppData/Roaming/Apple Computer/iTunes/";
    MadeHome home({users + "anna" + updates + "iPhone Software Updates/a.ipsw",
                   users + "anna" + updates + "iPad Software Updates/a.ipsw",
                   users + "bert" + updates + "iPad Software Updates/a.ipsw",
                   users + "bert" + updates + "iPod Software Updates/a.ipsw",
                   users + "bert" + updates + "iTunes Library.itl"});
    home.link(users + "link", "anna");
    QCOMPARE(locationsOf(home, home.survey()),
             (Found{{SliceKind::OldIos,
                     {users + "anna" + updates + "iPad Software Updates/",
                      users + "bert" + updates + "iPad Software Updates/",
                      users + "bert" + updates + "iPod Software Updates/",
                      users + "anna" + updates + "iPhone Software Updates/"}}}));
}

void TestHomeSurvey::findsAttachmentsButNoMail()
{
    const MadeHome home({".claws-mail/mimetmp/0.pdf", ".claws-mail/imapcache/keep",
                         ".sylpheed-2.0/mimetmp/1.pdf", ".sylpheed-2.0/addrbook.xml",
                         ".local/share/geary/account/attachments/keep",
                         ".thunderbird/p.default/ImapMail/keep", ".local/share/local-mail/keep"});
    const HomeLayout layout = home.survey();
    QCOMPARE(
        locationsOf(home, layout),
        (Found{{SliceKind::MailDownloads, {".claws-mail/mimetmp/", ".sylpheed-2.0/mimetmp/"}}}));
    QCOMPARE(layout.programs().size(), 2U);
    QCOMPARE(layout.programs().front().lock.place, QByteArray("claws-mail"));
}

void TestHomeSurvey::findsEveryBrowserProfile()
{
    const MadeHome home({
        ".config/google-chrome/Default/Cookies",
        ".config/google-chrome/Default/Cookies-journal",
        ".config/google-chrome/Default/History",
        ".config/google-chrome/Default/Web Data",
        ".config/google-chrome/Default/Login Data",
        ".config/google-chrome/Default/Bookmarks",
        ".config/google-chrome/Profile 2/Network/Cookies",
        ".config/google-chrome/Crashpad/History",
        ".config/google-chrome/Local State",
        ".config/BraveSoftware/Brave-Browser/Default/History-wal",
        ".var/app/org.chromium.Chromium/config/chromium/Default/History",
        ".mozilla/firefox/ab.default/cookies.sqlite",
        ".mozilla/firefox/ab.default/cookies.sqlite-wal",
        ".mozilla/firefox/ab.default/cookies.sqlite-shm",
        ".mozilla/firefox/ab.default/places.sqlite",
        ".mozilla/firefox/ab.default/logins.json",
        ".mozilla/firefox/ab.default/key4.db",
        ".mozilla/firefox/cd.work/formhistory.sqlite",
        ".var/app/org.mozilla.firefox/.mozilla/firefox/ef/cookies.sqlite",
        "snap/firefox/common/.mozilla/firefox/gh/formhistory.sqlite",
    });
    home.nameFirefoxProfiles({"cd.work", "ab.default"});
    home.nameFirefoxProfiles({"ef"}, ".var/app/org.mozilla.firefox/.mozilla/firefox");
    home.nameFirefoxProfiles({"gh"}, "snap/firefox/common/.mozilla/firefox");
    const HomeLayout layout = home.survey();
    QCOMPARE(locationsOf(home, layout)[SliceKind::BrowserData],
             QByteArrayList({
                 ".config/google-chrome/Default/Cookies",
                 ".config/google-chrome/Default/Cookies-journal",
                 ".config/google-chrome/Default/History",
                 ".config/google-chrome/Default/Web Data",
                 ".config/google-chrome/Profile 2/Network/Cookies",
                 ".config/BraveSoftware/Brave-Browser/Default/History-wal",
                 ".var/app/org.chromium.Chromium/config/chromium/Default/History",
                 ".mozilla/firefox/ab.default/cookies.sqlite",
                 ".mozilla/firefox/ab.default/cookies.sqlite-wal",
                 ".mozilla/firefox/ab.default/cookies.sqlite-shm",
                 ".mozilla/firefox/cd.work/formhistory.sqlite",
                 ".var/app/org.mozilla.firefox/.mozilla/firefox/ef/cookies.sqlite",
                 "snap/firefox/common/.mozilla/firefox/gh/formhistory.sqlite",
             }));
    QCOMPARE(layout.programs().size(), 7U);
}

VANTOR_TEST_MAIN(TestHomeSurvey)
#include "tst_HomeSurvey.moc"
