#include "tests/slices/kit/EveryLocation.h"
#include "tests/slices/kit/PlanKit.h"
#include "tests/support/run/TestMain.h"

/// The exact plans of the cleaning of all slices, for homes of every make.
class TestSlicesToClean final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plansJustWhatAHomeHas_data();
    void plansJustWhatAHomeHas();
    void plansWhatIsInSandboxes_data();
    void plansWhatIsInSandboxes();
    void plansEveryBrowser();
    void plansEveryProfile();
    void plansAndSearchesWhatTheUserNames_data();
    void plansAndSearchesWhatTheUserNames();
    void takesTheTrashAndTheCacheOfTheEnvironment();
    void keepsWhatARecordKeeps();
    void holdsEachSliceToTheTimeOfItsChoice();
    void holdsAFileToWhatWasPicked();
    void plansTheFixedPlacesBesideALibrary_data();
    void plansTheFixedPlacesBesideALibrary();
};

void TestSlicesToClean::plansJustWhatAHomeHas_data()
{
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<QByteArrayList>("plan");
    QTest::addColumn<QByteArrayList>("refusals");
    const auto row = [](const char *name, const QByteArrayList &paths, const QByteArrayList &plan,
                        const QByteArrayList &refusals = {}) {
        QTest::newRow(name) << paths << plan << refusals;
    };
    row("nothing", {}, {});
    row("a plain desktop", kPlainHome, plainPlan());
    row("a book of sizes that is a link",
        {".local/share/Trash/files/x", ".local/share/Trash/directorysizes -> ../../../book",
         "book"},
        {"Trash: empty, read-only folders too, .local/share/Trash/files/"},
        {"not a file: .local/share/Trash/directorysizes"});
    row("a book of sizes alone",
        {".local/share/Trash/info/x.trashinfo", ".local/share/Trash/directorysizes"},
        {"Trash: empty of lone records .local/share/Trash/info/"});
    const QByteArray users = ".wine/drive_c/users/";
    const QByteArray iTunes = "/AppData/Roaming/Apple Computer/iTunes/";
    row("Wine with two users",
        {users + "anna" + iTunes + "iPad Software Updates/1.ipsw",
         users + "anna" + iTunes + "iPhone Software Updates/2.ipsw",
         users + "anna" + iTunes + "iTunes Library.itl",
         users + "anna" + iTunes + "Mac Software Updates/keep",
         users + "bert" + iTunes + "iPad Software Updates/3.ipsw",
         users + "bert" + iTunes + "iPod Software Updates/4.ipsw", users + "bert/Downloads/keep"},
        each("Old iOS: empty " + users, {"anna" + iTunes + "iPad Software Updates/",
                                         "bert" + iTunes + "iPad Software Updates/",
                                         "bert" + iTunes + "iPod Software Updates/",
                                         "anna" + iTunes + "iPhone Software Updates/"}));
    row("mail",
        {".claws-mail/mimetmp/1.pdf", ".claws-mail/imapcache/keep", ".sylpheed-2.0/mimetmp/2.pdf",
         ".sylpheed-2.0/addrbook.xml", ".thunderbird/a/ImapMail/keep",
         ".local/share/geary/a/attachments/keep", ".local/share/local-mail/keep"},
        {"Mail Downloads: empty .claws-mail/mimetmp/",
         "Mail Downloads: empty .sylpheed-2.0/mimetmp/"});
}

void TestSlicesToClean::plansJustWhatAHomeHas()
{
    QFETCH(const QByteArrayList, paths);
    const MadeHome home;
    makeAll(home, paths);
    const CleaningPlan plan = planOfEverything(home, home.survey());
    QTEST(linesOf(home, plan), "plan");
    QTEST(refusalsOf(home, plan), "refusals");
}

void TestSlicesToClean::plansWhatIsInSandboxes_data()
{
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<QByteArrayList>("plan");
    const auto row = [](const char *name, const QByteArrayList &paths, const QByteArrayList &plan) {
        QTest::newRow(name) << paths << plan;
    };
    row("Flatpak",
        {".var/app/org.a.A/cache/x", ".var/app/org.a.A/config/a/logs/x",
         ".var/app/org.a.A/config/a/settings", ".var/app/org.a.A/data/Trash/files/x",
         ".var/app/org.a.A/data/Trash/info/x.trashinfo",
         ".var/app/org.a.A/data/Trash/directorysizes", ".var/app/org.a.A/data/keep",
         ".var/app/org.b.B/cache/x", ".var/app/org.b.B/data/Trash/expunged/1",
         ".var/app/org.b.B/data/a/logs/x"},
        {"Trash: remove .var/app/org.a.A/data/Trash/directorysizes",
         "Trash: empty, read-only folders too, .var/app/org.a.A/data/Trash/files/",
         "Trash: empty of lone records .var/app/org.a.A/data/Trash/info/",
         "Trash: empty, read-only folders too, .var/app/org.b.B/data/Trash/expunged/",
         "Cache: empty .var/app/org.a.A/cache/", "Cache: empty .var/app/org.b.B/cache/",
         "App Logs: empty .var/app/org.a.A/config/a/logs/"});
    row("snap",
        {"snap/a/common/.cache/x", "snap/a/common/.local/share/Trash/files/x",
         "snap/a/common/.local/share/Trash/directorysizes", "snap/a/common/keep",
         "snap/a/11/.local/share/Trash/files/old", "snap/a/12/.local/share/Trash/files/x",
         "snap/a/12/.local/share/Trash/info/x.trashinfo",
         "snap/a/12/.local/share/Trash/directorysizes", "snap/a/12/.cache/x",
         "snap/a/12/Documents/keep", "snap/a/current -> 12",
         "snap/b/current/.local/share/Trash/expunged/1", "snap/b/common/Downloads/keep"},
        {"Trash: remove snap/a/common/.local/share/Trash/directorysizes",
         "Trash: empty, read-only folders too, snap/a/common/.local/share/Trash/files/",
         "Trash: remove snap/a/12/.local/share/Trash/directorysizes",
         "Trash: empty, read-only folders too, snap/a/12/.local/share/Trash/files/",
         "Trash: empty of lone records snap/a/12/.local/share/Trash/info/",
         "Trash: empty, read-only folders too, snap/b/current/.local/share/Trash/expunged/",
         "Cache: empty snap/a/common/.cache/"});
}

void TestSlicesToClean::plansWhatIsInSandboxes()
{
    QFETCH(const QByteArrayList, paths);
    const MadeHome home;
    makeAll(home, paths);
    const CleaningPlan plan = planOfEverything(home, home.survey());
    QTEST(linesOf(home, plan), "plan");
    QVERIFY(plan.refusals().isEmpty());
}

void TestSlicesToClean::plansEveryBrowser()
{
    const MadeHome home;
    makeBrowsers(home, Journals::OfAll);
    const CleaningPlan plan = planOfEverything(home, home.survey());
    QCOMPARE(linesOf(home, plan), each("Browser Data: remove ", everyBrowserFile(Journals::OfAll)));
    QVERIFY(plan.refusals().isEmpty());
}

void TestSlicesToClean::plansEveryProfile()
{
    const QByteArray chrome = ".config/google-chrome/";
    const QByteArray firefox = ".mozilla/firefox/";
    const MadeHome home({chrome + "Default/History", chrome + "Default/History-journal",
                         chrome + "Profile 1/Network/Cookies", chrome + "Profile 12/Web Data",
                         chrome + "Profile 12/Login Data", chrome + "Crashpad/History",
                         chrome + "System Profile/History", firefox + "ab/cookies.sqlite",
                         firefox + "ab/cookies.sqlite-wal", firefox + "cd.work/formhistory.sqlite",
                         firefox + "cd.work/places.sqlite", firefox + "Crash Reports/cookies"});
    home.make(chrome + "Local State",
              R"({"profile":{"info_cache":{"Default":{},"Profile 1":{},"Profile 12":{}}}})");
    listProfiles(home, ".mozilla/firefox", {"ab", "cd.work"});
    const CleaningPlan plan = planOfEverything(home, home.survey());
    QCOMPARE(linesOf(home, plan), each("Browser Data: remove " + chrome,
                                       {"Default/History", "Default/History-journal",
                                        "Profile 1/Network/Cookies", "Profile 12/Web Data"}) +
                                      each("Browser Data: remove " + firefox,
                                           {"ab/cookies.sqlite", "ab/cookies.sqlite-wal",
                                            "cd.work/formhistory.sqlite"}));
    QVERIFY(plan.refusals().isEmpty());
}

void TestSlicesToClean::plansAndSearchesWhatTheUserNames_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("downloads");
    QTest::addColumn<QByteArrayList>("searched");
    const QByteArray german = "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                              "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                              "XDG_MUSIC_DIR=\"$HOME/Musik\"\n"
                              "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                              "XDG_PUBLICSHARE_DIR=\"$HOME/Öffentlich\"\n"
                              "XDG_TEMPLATES_DIR=\"$HOME/Vorlagen\"\n"
                              "XDG_VIDEOS_DIR=\"$HOME/Videos\"\n";
    QTest::newRow("nothing") << QByteArray() << QByteArrayList{"Downloads/"}
                             << QByteArrayList{"Desktop/",  "Documents/", "Downloads/",
                                               "Dropbox/",  "Videos/",    "Music/",
                                               "Pictures/", "Public/",    "Sites/"};
    QTest::newRow("in German") << german + "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                               << QByteArrayList{"Downloads/"}
                               << QByteArrayList{"Schreibtisch/", "Dokumente/",  "Downloads/",
                                                 "Dropbox/",      "Videos/",     "Musik/",
                                                 "Bilder/",       "Öffentlich/", "Sites/"};
    QTest::newRow("in German, the downloads too")
        << german + "XDG_DOWNLOAD_DIR=\"$HOME/Geladenes\"\n"
        << QByteArrayList{"Geladenes/"}
        << QByteArrayList{"Schreibtisch/", "Dokumente/", "Geladenes/",  "Dropbox/", "Videos/",
                          "Musik/",        "Bilder/",    "Öffentlich/", "Sites/"};
    QTest::newRow("in Japanese") << QByteArray("XDG_DESKTOP_DIR=\"$HOME/デスクトップ\"\n"
                                               "XDG_DOWNLOAD_DIR=\"$HOME/ダウンロード\"\n"
                                               "XDG_TEMPLATES_DIR=\"$HOME/テンプレート\"\n"
                                               "XDG_PUBLICSHARE_DIR=\"$HOME/公開\"\n"
                                               "XDG_DOCUMENTS_DIR=\"$HOME/ドキュメント\"\n"
                                               "XDG_MUSIC_DIR=\"$HOME/音楽\"\n"
                                               "XDG_PICTURES_DIR=\"$HOME/画像\"\n"
                                               "XDG_VIDEOS_DIR=\"$HOME/ビデオ\"\n")
                                 << QByteArrayList{"ダウンロード/"}
                                 << QByteArrayList{
                                        "デスクトップ/", "ドキュメント/", "ダウンロード/",
                                        "Dropbox/",      "ビデオ/",       "音楽/",
                                        "画像/",         "公開/",         "Sites/"};
}

/// Something in all folders of all languages.
void TestSlicesToClean::plansAndSearchesWhatTheUserNames()
{
    QFETCH(const QByteArray, lines);
    QFETCH(const QByteArrayList, downloads);
    const MadeHome home(kPlainHome);
    for (const char *folder : {"Schreibtisch", "Dokumente", "Geladenes", "Musik", "Öffentlich",
                               "デスクトップ", "ドキュメント", "ダウンロード", "音楽", "公開"})
        home.make(QByteArray(folder) + "/x");
    if (!lines.isEmpty())
        home.nameUserDirs(lines);
    const HomeLayout layout = home.survey();
    const CleaningPlan plan = planOfEverything(home, layout);
    QCOMPARE(linesOf(home, plan), plainPlan(downloads));
    QVERIFY(plan.refusals().isEmpty());
    QTEST(home.relative(layout.searchFolders()), "searched");
}

void TestSlicesToClean::takesTheTrashAndTheCacheOfTheEnvironment()
{
    const MadeHome home({"data/Trash/files/x", "data/Trash/info/x.trashinfo",
                         "data/Trash/directorysizes", "data/keep", "var/cache/x", "var/keep",
                         ".cache/x", ".local/share/Trash/files/x"});
    const CleaningPlan plan = planOfEverything(home, home.survey(environmentOfEveryLocation(home)));
    QCOMPARE(linesOf(home, plan),
             QByteArrayList({"Trash: empty, read-only folders too, .local/share/Trash/files/",
                             "Trash: remove data/Trash/directorysizes",
                             "Trash: empty, read-only folders too, data/Trash/files/",
                             "Trash: empty of lone records data/Trash/info/",
                             "Cache: empty .cache/", "Cache: empty var/cache/"}));
    QVERIFY(plan.refusals().isEmpty());
}

void TestSlicesToClean::keepsWhatARecordKeeps()
{
    const MadeHome home({".cache/mozilla/x", ".cache/y"});
    const HomeLayout layout = home.survey();
    const FileUrls kept{home.access().folder(".cache/mozilla")};
    const auto record = Info::infoWithName(QStringLiteral("Cache"), std::nullopt);
    record->setLocations(*layout.locations(SliceKind::Cache), kept);
    const QList<SliceToClean> slices = slicesToClean(layout, {record}, {});
    QCOMPARE(slices.size(), 1);
    QCOMPARE(slices.first().kept, kept);
}

/// Single files are meant as they were when they were picked, the others as they were confirmed.
void TestSlicesToClean::holdsEachSliceToTheTimeOfItsChoice()
{
    const MadeHome home({"Downloads/film", ".cache/y"});
    const HomeLayout layout = home.survey();
    const auto picked = Info::infoWithName(QStringLiteral("Large Files"),
                                           FileUrls{home.access().file("Downloads/film")});
    const auto cache =
        Info::infoWithName(QStringLiteral("Cache"), layout.locations(SliceKind::Cache));
    picked->setChoice({{1, 1, 1}, {}});
    const QList<SliceToClean> slices = slicesToClean(layout, {picked, cache}, {{2, 2, 2}, {}});
    QCOMPARE(slices.size(), 2);
    QCOMPARE(slices.first().confirmed.stamp, 1);
    QCOMPARE(slices.last().confirmed.stamp, 2);
}

/// A folder that was exchanged between the pick and the question has other files in it.
void TestSlicesToClean::holdsAFileToWhatWasPicked()
{
    const MadeHome home({"Downloads/film", "Downloads/unknown", "other/film"});
    const FileUrl film = home.access().file("Downloads/film");
    const FileUrl unknown = home.access().file("Downloads/unknown");
    const auto record = Info::infoWithName(QStringLiteral("Large Files"), FileUrls{film, unknown});
    record->setChoice({{1, 1, 1}, lookAtLocations(hostSystemCalls(), home.access(), {film})});
    QCOMPARE(
        std::rename(home.path("other/film").constData(), home.path("Downloads/film").constData()),
        0);
    const LocationIdentities asked =
        lookAtLocations(hostSystemCalls(), home.access(), {film, unknown});
    const QList<SliceToClean> slices = slicesToClean(home.survey(), {record}, {{2, 2, 2}, asked});
    const LocationIdentities known = slices.first().known.value_or(LocationIdentities());
    QVERIFY(known.value(film.path()) != asked.value(film.path()));
    QCOMPARE(known.value(film.path()), record->choice()->locations.value(film.path()));
    QCOMPARE(known.value(unknown.path()), asked.value(unknown.path()));
}

void TestSlicesToClean::plansTheFixedPlacesBesideALibrary_data()
{
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<QByteArrayList>("plan");
    QTest::addColumn<QByteArrayList>("refusals");
    const QByteArray chrome = "Library/Application Support/Google/Chrome/Default/";
    const QByteArray mail = "Library/Containers/com.apple.mail/Data/Library/Mail Downloads/";
    const QByteArrayList none;
    QTest::newRow("nearly empty") << QByteArrayList{"Library/Logs/"}
                                  << QByteArrayList{"App Logs: empty Library/Logs/",
                                                    "Downloads: empty Downloads/"}
                                  << none;
    QTest::newRow("full")
        << QByteArrayList{".Trash/x",
                          "Library/Caches/x",
                          "Library/Logs/x",
                          "Library/iTunes/iPad Software Updates/x",
                          "Library/iTunes/iPod Software Updates/x",
                          "Library/iTunes/iPhone Software Updates/x",
                          mail + "x",
                          chrome + "Cookies",
                          chrome + "Cookies-journal",
                          chrome + "History",
                          chrome + "Web Data",
                          chrome + "Login Data",
                          "Library/Safari/Bookmarks",
                          "Library/Safari/History.plist",
                          "Library/Safari/WebpageIcons.db"}
        << QByteArrayList{"Trash: empty .Trash/",
                          "Cache: empty Library/Caches/",
                          "App Logs: empty Library/Logs/",
                          "Old iOS: empty Library/iTunes/iPad Software Updates/",
                          "Old iOS: empty Library/iTunes/iPod Software Updates/",
                          "Old iOS: empty Library/iTunes/iPhone Software Updates/",
                          "Downloads: empty Downloads/",
                          "Mail Downloads: empty " + mail} +
               each("Browser Data: remove, whatever it is, ",
                    {chrome + "Cookies", chrome + "History", chrome + "Web Data",
                     "Library/Safari/History.plist", "Library/Safari/WebpageIcons.db"})
        << none;
    QTest::newRow("links") << QByteArrayList{chrome + "History",
                                             ".Trash -> Documents",
                                             "Library/Caches -> ../Documents",
                                             "Library/Logs -> ../../elsewhere",
                                             "Library/iTunes -> ../Documents",
                                             "Library/Containers/com.apple.mail -> ../../Documents",
                                             "Library/Safari -> ../Documents",
                                             "Documents/iPad Software Updates/x",
                                             "Documents/History.plist"}
                           << QByteArrayList{"Downloads: empty Downloads/",
                                             "Browser Data: remove, whatever it is, " + chrome +
                                                 "History"}
                           << each("a link: ", {".Trash", "Library/Caches", "Library/Logs",
                                                "Library/iTunes/iPad Software Updates",
                                                "Library/iTunes/iPod Software Updates",
                                                "Library/iTunes/iPhone Software Updates",
                                                mail.chopped(1), "Library/Safari/History.plist",
                                                "Library/Safari/WebpageIcons.db"});
}

/// The plan does not depend on what lies in the freedesktop locations or on what is said about
/// them.
void TestSlicesToClean::plansTheFixedPlacesBesideALibrary()
{
    QFETCH(const QByteArrayList, paths);
    const MadeHome home(kPlainHome);
    makeBrowsers(home, Journals::OfAll);
    makeAll(home, {"Get/x", "data/Trash/files/x", "data/Trash/info/x", "var/cache/x"});
    makeAll(home, paths);
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"$HOME/Get\"\n");
    const HomeLayout layout = home.survey(environmentOfEveryLocation(home));
    const CleaningPlan plan = planOfEverything(home, layout);
    QTEST(linesOf(home, plan), "plan");
    QTEST(refusalsOf(home, plan), "refusals");
    QCOMPARE(layout.searchFolders(), FileUrls()); // the search knows them
}

VANTOR_TEST_MAIN(TestSlicesToClean)
#include "tst_SlicesToClean.moc"
