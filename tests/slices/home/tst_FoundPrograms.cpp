#include "slices/home/FoundPrograms.h"

#include "tests/slices/kit/UsedHomeKit.h"
#include "tests/support/run/TestMain.h"

namespace {

enum class Sandbox { None, Any };

/// What is removed from every profile, each with its journals.
const QByteArrayList kChromiumDatabases{"Cookies", "Network/Cookies", "History", "Web Data"};
const QByteArrayList kFirefoxDatabases{"cookies.sqlite", "formhistory.sqlite"};

/// What stays in every profile.
const QByteArrayList kKeptByChromium{
    "Account Web Data",
    "Bookmarks",
    "Bookmarks.bak",
    "Cookies.bak",
    "Extension Cookies",
    "Favicons",
    "History Provider Cache",
    "History-journal.bak",
    "Local Storage/leveldb/000003.log",
    "Login Data",
    "Login Data For Account",
    "Login Data For Account-journal",
    "Login Data-journal",
    "Network/Login Data",
    "Preferences",
    "Secure Preferences",
    "Sessions/Session_1",
    "Top Sites",
    "Visited Links",
};
const QByteArrayList kKeptByFirefox{
    "bookmarkbackups/bookmarks.jsonlz4",
    "cert9.db",
    "content-prefs.sqlite",
    "cookies.sqlite.bak",
    "favicons.sqlite",
    "key4.db",
    "logins-backup.json",
    "logins.json",
    "permissions.sqlite",
    "places.sqlite",
    "places.sqlite-shm",
    "places.sqlite-wal",
    "prefs.js",
    "sessionstore.jsonlz4",
    "storage/default/cookies.sqlite",
};

QByteArrayList withJournals(const QByteArray &profile, const QByteArrayList &databases)
{
    QByteArrayList paths;
    for (const QByteArray &database : databases) {
        for (const char *ending : {"", "-journal", "-wal", "-shm"})
            paths.append(profile + '/' + database + ending);
    }
    return paths;
}

QByteArrayList below(const QByteArray &folder, QByteArrayList paths)
{
    for (QByteArray &path : paths)
        path.prepend(folder + '/');
    return paths;
}

QByteArrayList browserData(const MadeHome &home)
{
    return home.relative(*home.survey().locations(SliceKind::BrowserData));
}

/// A profile with all that browsers of both families keep in one.
void fillProfile(const MadeHome &home, const QByteArray &profile)
{
    for (const QByteArray &path : withJournals(profile, kChromiumDatabases + kFirefoxDatabases) +
                                      below(profile, kKeptByChromium + kKeptByFirefox))
        home.make(path);
}

} // namespace

/// Every known browser, with the names that its makers give its folders and files.
class TestFoundPrograms final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsEveryChromium_data();
    void knowsEveryChromium();
    void knowsEveryFirefox_data();
    void knowsEveryFirefox();
    void knowsTheDatabaseOfAJournal();
};

/// The cache is what stays while the browser runs.
void TestFoundPrograms::knowsEveryChromium_data()
{
    QTest::addColumn<QByteArray>("cache");
    QTest::addColumn<bool>("areFilesKnown");
    QTest::addColumn<Sandbox>("sandbox");
    const auto row = [](const char *folder, const char *cache, bool areFilesKnown,
                        Sandbox sandbox = Sandbox::None) {
        QTest::newRow(folder) << QByteArray(cache) << areFilesKnown << sandbox;
    };
    row(".config/google-chrome", ".cache/google-chrome", true);
    row(".config/chromium", ".cache/chromium", true);
    row(".config/BraveSoftware/Brave-Browser", ".cache/BraveSoftware", true);
    row(".config/microsoft-edge", ".cache/microsoft-edge", true);
    row(".config/vivaldi", ".cache/vivaldi", true);
    row(".var/app/com.google.Chrome/config/google-chrome", ".var/app/com.google.Chrome/cache", true,
        Sandbox::Any);
    row(".var/app/org.chromium.Chromium/config/chromium", ".var/app/org.chromium.Chromium/cache",
        true, Sandbox::Any);
    row(".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser",
        ".var/app/com.brave.Browser/cache", true, Sandbox::Any);
    row(".var/app/com.microsoft.Edge/config/microsoft-edge", ".var/app/com.microsoft.Edge/cache",
        true, Sandbox::Any);
    row(".var/app/com.vivaldi.Vivaldi/config/vivaldi", ".var/app/com.vivaldi.Vivaldi/cache", true,
        Sandbox::Any);
    row("snap/chromium/common/chromium", "snap/chromium/common/.cache", false, Sandbox::Any);
    row(".config/google-chrome-beta", ".cache/google-chrome-beta", false);
    row(".config/google-chrome-unstable", ".cache/google-chrome-unstable", false);
    row(".config/microsoft-edge-beta", ".cache/microsoft-edge-beta", false);
    row(".config/microsoft-edge-dev", ".cache/microsoft-edge-dev", false);
    row(".config/vivaldi-snapshot", ".cache/vivaldi-snapshot", false);
    row(".config/opera", ".cache/opera", false);
}

void TestFoundPrograms::knowsEveryChromium()
{
    QFETCH(const QByteArray, cache);
    QFETCH(const bool, areFilesKnown);
    QFETCH(const Sandbox, sandbox);
    const QByteArray folder = QTest::currentDataTag();
    const MadeHome home;
    makeCaches(home);
    for (const char *profile : {"/Default", "/Profile 1", "/Profile 1 backup", "/Guest Profile"})
        fillProfile(home, folder + profile);
    home.make(folder + "/Local State");
    const QByteArrayList files = withJournals(folder + "/Default", kChromiumDatabases) +
                                 withJournals(folder + "/Profile 1", kChromiumDatabases);
    const QByteArrayList found = areFilesKnown ? files : QByteArrayList();
    QCOMPARE(browserData(home), found);

    MadeMachine machine;
    machine.processes = {77};
    const QByteArrayList kept = sorted(found + QByteArrayList{cache + '/'});
    const QByteArray lock = folder + "/SingletonLock";
    QCOMPARE(inUse(home, machine), QByteArrayList());
    for (const char *running : {"desk-77", "laptop-78"}) {
        home.link(lock, running);
        QCOMPARE(inUse(home, machine), kept);
        std::filesystem::remove(native(home.path(lock)));
    }
    home.link(lock, "desk-78"); // in a sandbox that number tells nothing
    QCOMPARE(inUse(home, machine), sandbox == Sandbox::None ? QByteArrayList() : kept);
}

void TestFoundPrograms::knowsEveryFirefox_data()
{
    QTest::addColumn<QByteArray>("cache");
    QTest::addColumn<bool>("areFilesKnown");
    const auto row = [](const char *folder, const char *cache, bool areFilesKnown) {
        QTest::newRow(folder) << QByteArray(cache) << areFilesKnown;
    };
    row(".mozilla/firefox", ".cache/mozilla", true);
    row(".config/mozilla/firefox", ".cache/mozilla", true);
    row(".var/app/org.mozilla.firefox/.mozilla/firefox", ".var/app/org.mozilla.firefox/cache",
        true);
    row(".var/app/org.mozilla.firefox/config/mozilla/firefox", ".var/app/org.mozilla.firefox/cache",
        true);
    row("snap/firefox/common/.mozilla/firefox", "snap/firefox/common/.cache", true);
    row(".librewolf", ".cache/librewolf", false);
    row(".thunderbird", ".cache/thunderbird", false);
    row(".var/app/org.mozilla.Thunderbird/.thunderbird", ".var/app/org.mozilla.Thunderbird/cache",
        false);
    row(".var/app/org.mozilla.thunderbird/.thunderbird", ".var/app/org.mozilla.thunderbird/cache",
        false);
    row("snap/thunderbird/common/.thunderbird", "snap/thunderbird/common/.cache", false);
}

/// A profile that the list names, one that it names deeper down, and one that it does not name:
/// even that one may be in use.
void TestFoundPrograms::knowsEveryFirefox()
{
    QFETCH(const QByteArray, cache);
    QFETCH(const bool, areFilesKnown);
    const QByteArray folder = QTest::currentDataTag();
    const MadeHome home;
    makeCaches(home);
    home.nameFirefoxProfiles({"ab.default", "Profiles/cd.work"}, folder);
    MadeMachine machine;
    machine.processes = {77};
    QByteArrayList all;
    for (const char *name : {"/ab.default", "/ab.default.bak", "/Profiles/cd.work"})
        fillProfile(home, folder + name);
    for (const char *name : {"/ab.default", "/ab.default.bak", "/Profiles/cd.work"}) {
        const QByteArray profile = folder + name;
        const bool goes = areFilesKnown && !profile.endsWith(".bak");
        const QByteArrayList found =
            goes ? withJournals(profile, kFirefoxDatabases) : QByteArrayList();
        all += found;
        const QByteArrayList kept = sorted(found + QByteArrayList{cache + '/'});
        const QByteArray lock = profile + "/lock";
        for (const char *running : {"127.0.1.1:+77", "10.0.0.9:78"}) {
            home.link(lock, running);
            QCOMPARE(inUse(home, machine), kept);
            std::filesystem::remove(native(home.path(lock)));
        }
        home.make(profile + "/.parentlock");
        home.link(lock, "127.0.1.1:+77"); // in a sandbox that number tells nothing
        QCOMPARE(inUse(home, machine), QByteArrayList());
        machine.locked = true;
        QCOMPARE(inUse(home, machine), kept);
        machine.locked = false;
        std::filesystem::remove(native(home.path(profile + "/.parentlock")));
        std::filesystem::remove(native(home.path(lock)));
    }
    QCOMPARE(browserData(home), all);
}

void TestFoundPrograms::knowsTheDatabaseOfAJournal()
{
    for (const char *ending : {"-journal", "-wal", "-shm"})
        QCOMPARE(databaseOfJournal(QByteArray("Web Data") + ending), QByteArray("Web Data"));
    for (const char *name : {"Web Data", "Web Data-journal.bak", "journal", ""})
        QCOMPARE(databaseOfJournal(name), QByteArray());
}

VANTOR_TEST_MAIN(TestFoundPrograms)
#include "tst_FoundPrograms.moc"
