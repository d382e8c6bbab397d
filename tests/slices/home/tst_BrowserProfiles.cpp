#include "platform/system/HostSystemCalls.h"
#include "slices/home/BrowserProfiles.h"

#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

constexpr auto kChromium = ".config/chromium";
constexpr auto kFirefox = ".mozilla/firefox";

HomeProbe readerOf(const MadeHome &home, const SystemCalls &calls = hostSystemCalls())
{
    return HomeProbe(calls, home.access().anchoredPath(home.url())->anchor);
}

/// Relative to the folder in which they were searched.
QByteArrayList below(const QByteArray &folder, QByteArrayList paths)
{
    for (QByteArray &path : paths)
        path = path.startsWith(folder + '/') ? path.sliced(folder.size() + 1) : "OUTSIDE " + path;
    return paths;
}

QByteArrayList chromiums(const MadeHome &home)
{
    return below(kChromium, chromiumProfiles(readerOf(home), kChromium));
}

QByteArrayList firefoxes(const MadeHome &home)
{
    return below(kFirefox, firefoxProfiles(readerOf(home), kFirefox));
}

} // namespace

/// Which folders count as profiles of a browser.
class TestBrowserProfiles final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsTheNamesThatChromiumGives_data();
    void knowsTheNamesThatChromiumGives();
    void readsTheNamesInTheLocalState_data();
    void readsTheNamesInTheLocalState();
    void readsTheListOfFirefox_data();
    void readsTheListOfFirefox();
    void findsNoFirefoxProfileWithoutAList();
    void takesNoFailureForAList();
    void followsNoLinkToAProfile();
};

void TestBrowserProfiles::knowsTheNamesThatChromiumGives_data()
{
    QTest::addColumn<bool>("isProfile");
    for (const char *name : {"Default", "Profile 1", "Profile 23"})
        QTest::newRow(name) << true;
    for (const char *name :
         {"Profile 1 backup", "Profile 1.bak", "Profile ", "Profile", "Profile x", "Profile -1",
          "Default old", "default", "My Profile 1", "Crashpad", "System Profile", "..."})
        QTest::newRow(name) << false;
}

void TestBrowserProfiles::knowsTheNamesThatChromiumGives()
{
    QFETCH(const bool, isProfile);
    const QByteArray name = QTest::currentDataTag();
    const MadeHome home({".config/chromium/" + name + "/Cookies"});
    QCOMPARE(chromiums(home), isProfile ? QByteArrayList{name} : QByteArrayList());
}

void TestBrowserProfiles::readsTheNamesInTheLocalState_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<bool>("isRead");
    const QByteArray whole = R"({"profile":{"info_cache":{"Default":{},"School":{"name":"a"},)"
                             R"("":{},"..":{},"School/In":{},"../other":{},"Gone":{}}}})";
    QTest::newRow("whole") << whole << true;
    QTest::newRow("cut off") << whole.chopped(1) << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("zeros") << QByteArray(100, '\0') << false;
    QTest::newRow("a list") << QByteArray(R"({"profile":{"info_cache":["School"]}})") << false;
    QTest::newRow("elsewhere") << QByteArray(R"({"info_cache":{"School":{}}})") << false;
    QTest::newRow("too large") << whole + QByteArray(4 * 1024 * 1024, ' ') << false;
}

void TestBrowserProfiles::readsTheNamesInTheLocalState()
{
    QFETCH(const QByteArray, state);
    QFETCH(const bool, isRead);
    const MadeHome home({".config/chromium/Default/Cookies", ".config/chromium/School/Cookies",
                         ".config/chromium/School/In/Cookies",
                         ".config/chromium/School copy/Cookies", ".config/other/Cookies"});
    home.make(".config/chromium/Local State", state);
    QCOMPARE(chromiums(home),
             isRead ? QByteArrayList({"Default", "School"}) : QByteArrayList{"Default"});
}

void TestBrowserProfiles::readsTheListOfFirefox_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<QByteArrayList>("profiles");
    const QByteArrayList none;
    const QByteArrayList a{"a"};
    QTest::newRow("as it is written")
        << firefoxProfilesText({"a", "Profiles/b"}) << QByteArrayList({"a", "Profiles/b"});
    QTest::newRow("in another order") << QByteArray("[Profile7]\nPath=a\nIsRelative=1\n") << a;
    QTest::newRow("lines of another system")
        << QByteArray("[Profile0]\r\nIsRelative=1\r\nPath=a\r\n") << a;
    QTest::newRow("twice") << firefoxProfilesText({"a", "a"}) << a;
    QTest::newRow("not there") << firefoxProfilesText({"gone", "a"}) << a;
    QTest::newRow("a file") << firefoxProfilesText({"file"}) << none;
    QTest::newRow("the last line counts")
        << QByteArray("[Profile0]\nIsRelative=1\nPath=Profiles\nPath=a\n") << a;
    for (const char *path : {"", ".", "..", "a/..", "a/../Profiles/b", "./a", "a/", "a//", "/a",
                             "../firefox/a", "../../elsewhere", "*", "@a", " a", "a "})
        QTest::addRow("path '%s'", path) << firefoxProfilesText({path}) << none;
    QTest::newRow("absolute") << QByteArray("[Profile0]\nIsRelative=0\nPath=a\n") << none;
    QTest::newRow("not said to be relative") << QByteArray("[Profile0]\nPath=a\n") << none;
    for (const char *section : {"[Profile]", "[Profilex]", "[Profile0", "[Profile10", "[Install0]",
                                "[Backup]", "[Profile0]x", "#[Profile0]", ""})
        QTest::addRow("section '%s'", section) << QByteArray(section) + "\nIsRelative=1\nPath=a\n"
                                               << none;
    QTest::newRow("a section that ends one")
        << QByteArray("[Profile0]\nIsRelative=1\n[Other]\nPath=a\n") << none;
    QTest::newRow("a remark") << QByteArray("[Profile0]\nIsRelative=1\n;Path=a\n") << none;
    QTest::newRow("zeros") << QByteArray(100, '\0') << none;
    QTest::newRow("too large") << firefoxProfilesText({"a"}) + QByteArray(64 * 1024, '\n') << none;
}

void TestBrowserProfiles::readsTheListOfFirefox()
{
    QFETCH(const QByteArray, ini);
    QFETCH(const QByteArrayList, profiles);
    const MadeHome home({".mozilla/firefox/a/x", ".mozilla/firefox/a.bak/x",
                         ".mozilla/firefox/Profiles/b/x", ".mozilla/firefox/file", "elsewhere/x"});
    home.make(".mozilla/firefox/profiles.ini", ini);
    QCOMPARE(firefoxes(home), profiles);
}

void TestBrowserProfiles::findsNoFirefoxProfileWithoutAList()
{
    const MadeHome home({".mozilla/firefox/ab.default/cookies.sqlite"});
    QCOMPARE(firefoxes(home), QByteArrayList());
    home.make("dots/profiles.ini", firefoxProfilesText({"ab.default"}));
    home.link(".mozilla/firefox/profiles.ini", home.path("dots/profiles.ini"));
    QCOMPARE(firefoxes(home), QByteArrayList());
}

void TestBrowserProfiles::takesNoFailureForAList()
{
    const MadeHome home({".mozilla/firefox/a/x", ".config/chromium/School/x"});
    home.nameFirefoxProfiles({"a"});
    home.make(".config/chromium/Local State", R"({"profile":{"info_cache":{"School":{}}}})");
    QCOMPARE(firefoxes(home), QByteArrayList{"a"});
    QCOMPARE(chromiums(home), QByteArrayList{"School"});
    for (const char *call : {"openFile", "read"}) {
        const HookedSystem failing(
            [&](int, std::string_view name) { return name == call ? EIO : 0; });
        QCOMPARE(firefoxProfiles(readerOf(home, failing), kFirefox), QByteArrayList());
        QCOMPARE(chromiumProfiles(readerOf(home, failing), kChromium), QByteArrayList());
    }
}

void TestBrowserProfiles::followsNoLinkToAProfile()
{
    const MadeHome home({"elsewhere/deep/x", ".mozilla/firefox/", ".config/chromium/"});
    home.link(".mozilla/firefox/a", home.path("elsewhere"));
    home.link(".config/chromium/Default", home.path("elsewhere"));
    home.nameFirefoxProfiles({"a", "a/deep"});
    QCOMPARE(firefoxes(home), QByteArrayList());
    QCOMPARE(chromiums(home), QByteArrayList());
}

VANTOR_TEST_MAIN(TestBrowserProfiles)
#include "tst_BrowserProfiles.moc"
