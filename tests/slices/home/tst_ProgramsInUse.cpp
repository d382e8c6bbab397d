#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

FileUrls locations(const HomeLayout &layout, SliceKind kind)
{
    return *layout.locations(kind);
}

} // namespace

/// Which programs count as running, by the traces that they leave.
class TestProgramsInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void judgesTheLinkOfAChromium_data();
    void judgesTheLinkOfAChromium();
    void believesNoNumberOutOfASandbox();
    void judgesTheLocksOfAFirefox_data();
    void judgesTheLocksOfAFirefox();
    void noticesAFirefoxThatIsBeingStarted_data();
    void noticesAFirefoxThatIsBeingStarted();
    void looksForMailProgramsInTheProcessList();
    void leavesOutTheFilesOfTheOneProfileAlone();
    void leavesOutTheCacheOfASandboxedBrowser();
    void keepsTheCachesInsideThatOfTheUser();
    void noticesABrowserWithoutAnyFiles();
    void keepsTheCachesInsideThatOfTheEnvironment_data();
    void keepsTheCachesInsideThatOfTheEnvironment();
    void keepsTheCacheOfAProgramThatWasNeverRunBefore();
    void keepsAFolderOnlyOnce();
    void namesNothingThatIsNotThere();
    void keepsTheCachesOfMailPrograms();
    void keepsTheCacheOfABrowserWhoseLockIsElsewhere();
    void tellsWhatIsInUseAtThisMoment();
    void namesEachProgramOnce();
    void takesWhatCannotBeToldForRunning_data();
    void takesWhatCannotBeToldForRunning();
    void findsNoneWithALibrary();

private:
    ProgramsInUse found(const MadeHome &home) const
    {
        return ProgramsInUse::find(*m_machine, home.access(), home.survey());
    }
    bool isFirefoxInUse(const MadeHome &home) const
    {
        const FileUrls files = locations(home.survey(), SliceKind::BrowserData);
        return found(home).without(files).isEmpty();
    }

    std::unique_ptr<MadeMachine> m_machine;
};

void TestProgramsInUse::init()
{
    m_machine = std::make_unique<MadeMachine>();
    m_machine->processes = {77};
}

void TestProgramsInUse::judgesTheLinkOfAChromium_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<bool>("isInUse");
    QTest::newRow("running") << QByteArray("desk-77") << true;
    QTest::newRow("left by a crash") << QByteArray("desk-78") << false;
    QTest::newRow("on another machine") << QByteArray("laptop-78") << true;
    QTest::newRow("a machine with a dash") << QByteArray("lap-desk-78") << true;
    QTest::newRow("no number") << QByteArray("desk-") << true;
    QTest::newRow("nonsense") << QByteArray("?") << true;
    QTest::newRow("no process's number") << QByteArray("desk-0") << true;
    QTest::newRow("none") << QByteArray() << false;
}

void TestProgramsInUse::judgesTheLinkOfAChromium()
{
    QFETCH(const QByteArray, link);
    QFETCH(const bool, isInUse);
    const MadeHome home({".config/vivaldi/Default/History"});
    if (!link.isEmpty())
        home.link(".config/vivaldi/SingletonLock", link);
    const FileUrls files = locations(home.survey(), SliceKind::BrowserData);
    QCOMPARE(found(home).without(files), isInUse ? FileUrls() : files);
    QCOMPARE(found(home).programs(files),
             isInUse ? QStringList{QStringLiteral("Vivaldi")} : QStringList());
}

void TestProgramsInUse::believesNoNumberOutOfASandbox()
{
    const MadeHome home({".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/Default/"
                         "Cookies"});
    const FileUrls files = locations(home.survey(), SliceKind::BrowserData);
    QCOMPARE(found(home).without(files), files);
    home.link(".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/SingletonLock",
              "desk-78");
    QCOMPARE(found(home).without(files), FileUrls());
}

void TestProgramsInUse::judgesTheLocksOfAFirefox_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<bool>("hasFile");
    QTest::addColumn<bool>("isLocked");
    QTest::addColumn<bool>("isInUse");
    const QByteArray none;
    QTest::newRow("never run") << none << false << false << false;
    QTest::newRow("ended") << none << true << false << false;
    QTest::newRow("running") << QByteArray("127.0.1.1:+77") << true << true << true;
    QTest::newRow("locked alone") << none << true << true << true;
    QTest::newRow("left by a crash") << QByteArray("127.0.1.1:+78") << true << false << false;
    QTest::newRow("left by a crash, its number taken")
        << QByteArray("127.0.1.1:+77") << true << false << false;
    QTest::newRow("its file lost") << QByteArray("127.0.1.1:+77") << false << false << true;
    QTest::newRow("left by a crash, its file lost")
        << QByteArray("127.0.1.1:+78") << false << false << false;
    QTest::newRow("without a file lock") << QByteArray("10.0.0.9:78") << true << false << true;
    QTest::newRow("nonsense") << QByteArray("?") << true << false << true;
    QTest::newRow("no number") << QByteArray("127.0.1.1:+") << false << false << true;
    QTest::newRow("no number, its file free") << QByteArray("127.0.1.1:+") << true << false << true;
    QTest::newRow("no process's number") << QByteArray("127.0.1.1:+0") << true << false << true;
}

void TestProgramsInUse::judgesTheLocksOfAFirefox()
{
    QFETCH(const QByteArray, link);
    QFETCH(const bool, hasFile);
    QFETCH(const bool, isLocked);
    QFETCH(const bool, isInUse);
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite"});
    home.nameFirefoxProfiles({"a"});
    if (hasFile)
        home.make(".mozilla/firefox/a/.parentlock");
    if (!link.isEmpty())
        home.link(".mozilla/firefox/a/lock", link);
    m_machine->locked = isLocked;
    QCOMPARE(isFirefoxInUse(home), isInUse);
}

void TestProgramsInUse::noticesAFirefoxThatIsBeingStarted_data()
{
    QTest::addColumn<QByteArray>("call");
    for (const char *call : {"readLink", "openFile"})
        QTest::newRow(call) << QByteArray(call);
}

/// Between the two checks the program takes the lock, and then makes the link.
void TestProgramsInUse::noticesAFirefoxThatIsBeingStarted()
{
    QFETCH(const QByteArray, call);
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite", ".mozilla/firefox/a/.parentlock"});
    home.nameFirefoxProfiles({"a"});
    m_machine->setHook([&, hasStarted = false](int, std::string_view name) mutable {
        if (name == call.data() && !std::exchange(hasStarted, true)) {
            m_machine->locked = true;
            home.link(".mozilla/firefox/a/lock", "127.0.1.1:+77");
        }
        return 0;
    });
    QVERIFY(isFirefoxInUse(home));
}

void TestProgramsInUse::looksForMailProgramsInTheProcessList()
{
    const MadeHome home({".claws-mail/mimetmp/", ".sylpheed-2.0/mimetmp/"});
    const FileUrls folders = locations(home.survey(), SliceKind::MailDownloads);
    QCOMPARE(found(home).without(folders), folders);
    m_machine->programs = QByteArrayList{"claws-mail"};
    QCOMPARE(home.relative(found(home).without(folders)), QByteArrayList{".sylpheed-2.0/mimetmp/"});
    QCOMPARE(found(home).programs(folders), QStringList{QStringLiteral("Claws Mail")});
    m_machine->programs = tl::unexpected(EACCES); // then any of them may run
    QCOMPARE(found(home).without(folders), FileUrls());
}

void TestProgramsInUse::leavesOutTheFilesOfTheOneProfileAlone()
{
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite", ".mozilla/firefox/b/cookies.sqlite",
                         ".config/chromium/Default/History"});
    home.nameFirefoxProfiles({"a", "b"});
    home.link(".mozilla/firefox/b/lock", "127.0.1.1:+77");
    const HomeLayout layout = home.survey();
    QCOMPARE(
        home.relative(found(home).without(locations(layout, SliceKind::BrowserData))),
        QByteArrayList({".config/chromium/Default/History", ".mozilla/firefox/a/cookies.sqlite"}));
    QVERIFY(found(home).programs(locations(layout, SliceKind::Cache)).isEmpty());
}

void TestProgramsInUse::leavesOutTheCacheOfASandboxedBrowser()
{
    const MadeHome home({".cache/a", ".var/app/org.a.A/cache/a",
                         ".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/Default/"
                         "Cookies",
                         ".var/app/com.brave.Browser/cache/a",
                         "snap/firefox/common/.mozilla/firefox/a/cookies.sqlite",
                         "snap/firefox/common/.cache/a"});
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    QCOMPARE(caches.size(), 4);
    QCOMPARE(found(home).without(caches), caches);
    home.link(".var/app/com.brave.Browser/config/BraveSoftware/Brave-Browser/SingletonLock",
              "desk-78");
    home.link("snap/firefox/common/.mozilla/firefox/a/lock", "127.0.1.1:+77");
    QCOMPARE(home.relative(found(home).without(caches)),
             QByteArrayList({".cache/", ".var/app/org.a.A/cache/"}));
    QCOMPARE(found(home).programs(caches),
             QStringList({QStringLiteral("Brave"), QStringLiteral("Firefox")}));
}

void TestProgramsInUse::keepsTheCachesInsideThatOfTheUser()
{
    const MadeHome home({".cache/mozilla/x", ".cache/BraveSoftware/Brave-Browser/x",
                         ".mozilla/firefox/a/x", ".mozilla/firefox/b/x",
                         ".config/BraveSoftware/Brave-Browser/Default/History"});
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    QVERIFY(found(home).keptInside(caches).isEmpty());
    QVERIFY(found(home).programs(caches).isEmpty());
    for (const char *profile : {"a", "b"})
        home.link(QByteArray(".mozilla/firefox/") + profile + "/lock", "127.0.1.1:+77");
    home.link(".config/BraveSoftware/Brave-Browser/SingletonLock", "desk-77");
    QCOMPARE(found(home).without(caches), caches);
    QCOMPARE(home.relative(found(home).keptInside(caches)),
             QByteArrayList({".cache/BraveSoftware/", ".cache/mozilla/"}));
    QCOMPARE(found(home).programs(caches),
             QStringList({QStringLiteral("Brave"), QStringLiteral("Firefox")}));
}

void TestProgramsInUse::noticesABrowserWithoutAnyFiles()
{
    const MadeHome home({".cache/chromium/x", ".config/chromium/", ".cache/google-chrome-beta/x",
                         ".config/google-chrome-beta/Default/Cookies", ".cache/opera/x"});
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    home.link(".config/chromium/SingletonLock", "desk-77");
    home.link(".config/google-chrome-beta/SingletonLock", "desk-77");
    QCOMPARE(home.relative(found(home).keptInside(caches)),
             QByteArrayList({".cache/chromium/", ".cache/google-chrome-beta/"}));
    QVERIFY(locations(home.survey(), SliceKind::BrowserData).isEmpty());
}

void TestProgramsInUse::keepsTheCachesInsideThatOfTheEnvironment_data()
{
    QTest::addColumn<QByteArrayList>("folders");
    QTest::addColumn<QByteArrayList>("kept");
    const QByteArrayList besides{"var/cache/geary/", "var/cache/mozilla/"};
    QTest::newRow("beside the usual")
        << QByteArrayList{".cache/mozilla/x"} << QByteArrayList{".cache/mozilla/"} + besides;
    QTest::newRow("alone") << QByteArrayList() << besides;
}

void TestProgramsInUse::keepsTheCachesInsideThatOfTheEnvironment()
{
    QFETCH(const QByteArrayList, folders);
    QFETCH(const QByteArrayList, kept);
    const MadeHome home(folders + QByteArrayList{"var/cache/mozilla/x", "var/cache/geary/x",
                                                 ".mozilla/firefox/a/x"});
    home.link(".mozilla/firefox/a/lock", "127.0.1.1:+77");
    m_machine->programs = QByteArrayList{"geary"};
    const HomeLayout layout = home.survey({.dataHome = {}, .cacheHome = home.path("var/cache")});
    const auto inUse = ProgramsInUse::find(*m_machine, home.access(), layout);
    QByteArrayList found = home.relative(inUse.keptInside(locations(layout, SliceKind::Cache)));
    std::sort(found.begin(), found.end());
    QCOMPARE(found, kept);
}

/// Neither its profile nor its cache was there when the home was looked at.
void TestProgramsInUse::keepsTheCacheOfAProgramThatWasNeverRunBefore()
{
    const MadeHome home({".cache/other/x", ".var/app/org.mozilla.firefox/cache/x"});
    const HomeLayout layout = home.survey();
    home.make(".cache/mozilla/x");
    m_machine->programs = QByteArrayList{"firefox"};
    const auto inUse = ProgramsInUse::find(*m_machine, home.access(), layout);
    const FileUrls caches = locations(layout, SliceKind::Cache);
    QCOMPARE(home.relative(inUse.keptInside(caches)), QByteArrayList{".cache/mozilla/"});
    QCOMPARE(home.relative(inUse.without(caches)), QByteArrayList{".cache/"});
}

void TestProgramsInUse::keepsAFolderOnlyOnce()
{
    const MadeHome home({".cache/BraveSoftware/Brave-Browser/x",
                         ".config/BraveSoftware/Brave-Browser/Default/History"});
    home.link(".config/BraveSoftware/Brave-Browser/SingletonLock", "desk-77");
    m_machine->programs = QByteArrayList{"brave"};
    const HomeLayout layout = home.survey();
    const FileUrl cache = locations(layout, SliceKind::Cache).constFirst();
    QCOMPARE(home.relative(found(home).keptInside({cache})),
             QByteArrayList{".cache/BraveSoftware/"});
    QCOMPARE(home.relative(
                 locationsInUse(*m_machine, *home.access().anchoredPath(cache), layout, cache)),
             QByteArrayList{".cache/BraveSoftware/"});
}

void TestProgramsInUse::namesNothingThatIsNotThere()
{
    const MadeHome home({".cache/other/x"});
    m_machine->programs = QByteArrayList{"chrome"};
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    QVERIFY(found(home).keptInside(caches).isEmpty());
    QVERIFY(found(home).programs(caches).isEmpty());
}

void TestProgramsInUse::keepsTheCachesOfMailPrograms()
{
    const MadeHome home({".cache/thunderbird/x", ".thunderbird/a/x", ".cache/evolution/x",
                         ".var/app/org.gnome.Evolution/cache/x", ".cache/geary/x"});
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    home.link(".thunderbird/a/lock", "127.0.1.1:+77");
    m_machine->programs = QByteArrayList{"evolution-sourc"}; // its service alone
    QCOMPARE(home.relative(found(home).keptInside(caches)),
             QByteArrayList({".cache/thunderbird/", ".cache/evolution/"}));
    QCOMPARE(home.relative(found(home).without(caches)), QByteArrayList{".cache/"});
}

void TestProgramsInUse::keepsTheCacheOfABrowserWhoseLockIsElsewhere()
{
    const MadeHome home({".cache/mozilla/x", "elsewhere/firefox/a/cookies.sqlite"});
    home.link(".mozilla", "elsewhere");
    const FileUrls caches = locations(home.survey(), SliceKind::Cache);
    QVERIFY(found(home).keptInside(caches).isEmpty());
    m_machine->programs = QByteArrayList{"firefox-esr"};
    QCOMPARE(home.relative(found(home).keptInside(caches)), QByteArrayList{".cache/mozilla/"});
}

void TestProgramsInUse::tellsWhatIsInUseAtThisMoment()
{
    const MadeHome home({".cache/mozilla/x", ".mozilla/firefox/a/cookies.sqlite",
                         ".mozilla/firefox/b/cookies.sqlite"});
    home.nameFirefoxProfiles({"a", "b"});
    const HomeLayout layout = home.survey();
    const auto inUse = [&](const QByteArray &path, FileUrlKind kind) {
        const FileUrl url = home.url().appending(path, kind);
        return home.relative(
            locationsInUse(*m_machine, *home.access().anchoredPath(url), layout, url));
    };
    QVERIFY(inUse(".cache", FileUrlKind::Folder).isEmpty());
    for (const char *profile : {"a", "b"})
        home.link(QByteArray(".mozilla/firefox/") + profile + "/lock", "127.0.1.1:+77");
    QCOMPARE(inUse(".cache", FileUrlKind::Folder), QByteArrayList{".cache/mozilla/"});
    QCOMPARE(inUse(".mozilla/firefox/a/cookies.sqlite", FileUrlKind::File),
             QByteArrayList{".mozilla/firefox/a/cookies.sqlite"});
    QVERIFY(inUse(".config", FileUrlKind::Folder).isEmpty());
}

void TestProgramsInUse::namesEachProgramOnce()
{
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite", ".mozilla/firefox/b/cookies.sqlite"});
    home.nameFirefoxProfiles({"a", "b"});
    home.link(".mozilla/firefox/a/lock", "127.0.1.1:+77");
    home.link(".mozilla/firefox/b/lock", "127.0.1.1:+77");
    QCOMPARE(found(home).programs(locations(home.survey(), SliceKind::BrowserData)),
             QStringList{QStringLiteral("Firefox")});
}

void TestProgramsInUse::takesWhatCannotBeToldForRunning_data()
{
    QTest::addColumn<QByteArray>("call");
    for (const char *call : {"openFolder", "openFile", "readLink"})
        QTest::newRow(call) << QByteArray(call);
}

void TestProgramsInUse::takesWhatCannotBeToldForRunning()
{
    QFETCH(const QByteArray, call);
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite", ".mozilla/firefox/a/.parentlock"});
    home.nameFirefoxProfiles({"a"});
    QVERIFY(!isFirefoxInUse(home));
    m_machine->setHook([&](int, std::string_view name) { return name == call.data() ? EIO : 0; });
    QVERIFY(isFirefoxInUse(home));
    m_machine->setHook({});
    m_machine->locked = tl::unexpected(ENOLCK); // as on the disk of another machine
    QVERIFY(isFirefoxInUse(home));
    home.link(".mozilla/firefox/a/lock", "127.0.1.1:+78");
    QVERIFY(isFirefoxInUse(home));
}

void TestProgramsInUse::findsNoneWithALibrary()
{
    const MadeHome home({"Library/Safari/History.plist"});
    m_machine->programs = QByteArrayList{"claws-mail"};
    const FileUrls files = locations(home.survey(), SliceKind::BrowserData);
    QCOMPARE(found(home).without(files), files);
}

VANTOR_TEST_MAIN(TestProgramsInUse)
#include "tst_ProgramsInUse.moc"
