#include "platform/system/HostSystemCalls.h"
#include "slices/probe/HomePaths.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cstdio>

/// What absolute paths mean in a home that is reached by two of them.
class TestHomePaths final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void findsWhatIsBelowTheHome_data();
    void findsWhatIsBelowTheHome();
    void followsLinksInsideTheHome_data();
    void followsLinksInsideTheHome();
    void looksAtNothingOutsideTheHome();
    void knowsAnotherPathThatLeadsToTheHome();
    void knowsAHomeThatIsMountedElsewhereToo();
    void knowsTheOtherPathOfUsualHomes();
    void seesHiddenFoldersOnTheWay_data();
    void seesHiddenFoldersOnTheWay();

private:
    const MadeHome m_home;
    const HomeProbe m_reader{hostSystemCalls(), m_home.access().anchoredPath(m_home.url())->anchor};
    const HomePaths m_paths{m_reader, {m_home.path(), "/other/way"}};
};

void TestHomePaths::initTestCase()
{
    m_home.make("plain/a");
    m_home.make("deep/");
    m_home.link("one", "plain");
    m_home.link("two", "./one");
    m_home.link("full", "/other/way/plain/b");
    m_home.link("around", "../anna/plain");
    m_home.link("deep/up", "../plain");
    m_home.link("out", "/etc");
    m_home.link("self", m_home.path());
}

void TestHomePaths::findsWhatIsBelowTheHome_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("below");
    QTest::newRow("below") << QByteArray("HOME/a") << QByteArray("a");
    QTest::newRow("by the other path") << QByteArray("/other/way/a/b") << QByteArray("a/b");
    QTest::newRow("untidy") << QByteArray("/HOME/./a//.b/") << QByteArray("a/.b");
    QTest::newRow("around the home") << QByteArray("/x/../HOME/a") << QByteArray("a");
    QTest::newRow("the home") << QByteArray("HOME/.") << QByteArray("-");
    QTest::newRow("the folder around it") << QByteArray("HOME/..") << QByteArray("-");
    QTest::newRow("a longer name") << QByteArray("HOME2/a") << QByteArray("-");
    QTest::newRow("relative") << QByteArray("other/way/a") << QByteArray("-");
    QTest::newRow("up") << QByteArray("HOME/a/../b") << QByteArray("-");
    QTest::newRow("elsewhere") << QByteArray("/etc/a") << QByteArray("-");
    QTest::newRow("a NUL") << QByteArray("/other/way/a\0b", 14) << QByteArray("-");
    QTest::newRow("empty") << QByteArray() << QByteArray("-");
}

void TestHomePaths::findsWhatIsBelowTheHome()
{
    QFETCH(QByteArray, path);
    QFETCH(const QByteArray, below);
    QCOMPARE(m_paths.below(path.replace("HOME", m_home.path())).value_or("-"), below);
}

void TestHomePaths::followsLinksInsideTheHome_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArrayList>("places");
    const auto row = [](const char *path, const QByteArrayList &places) {
        QTest::newRow(path) << QByteArray(path) << places;
    };
    row("HOME/plain/a", {"plain/a"});
    row("/other/way/gone", {"gone"});
    row("HOME/one", {"one", "plain"});
    row("HOME/two/a", {"two/a", "one/a", "plain/a"});
    row("HOME/full", {"full", "plain/b"});
    row("HOME/around", {"around", "plain"});
    row("HOME/plain/../one/a", {"one/a", "plain/a"});
    row("HOME/deep/up", {"deep/up", "plain"});
    row("HOME/../NAME/one", {"one", "plain"});
    row("HOME/out/a", {"out/a"});
    row("HOME/self", {"self"});
    row("HOME", {});
    row("HOME/..", {});
    row("HOME/../x", {});
    row("/etc", {});
    row("one", {});
}

void TestHomePaths::followsLinksInsideTheHome()
{
    QFETCH(QByteArray, path);
    QFETCH(const QByteArrayList, places);
    path.replace("HOME", m_home.path()).replace("NAME", "anna");
    QCOMPARE(m_paths.followed(path), places);
}

/// A call to a disk that does not answer would wait.
void TestHomePaths::looksAtNothingOutsideTheHome()
{
    QByteArrayList called;
    const HookedSystem calls([&](int, std::string_view name) {
        called.append(QByteArray(name.data(), static_cast<qsizetype>(name.size())));
        return 0;
    });
    const HomeProbe reader(calls, m_home.access().anchoredPath(m_home.url())->anchor);
    const HomePaths paths(reader, {m_home.path()});
    m_home.link("away", "/mnt/server/films");
    paths.followed("/mnt/server/films");
    QCOMPARE(called, QByteArrayList());
    QCOMPARE(paths.followed(m_home.path("away/new")), QByteArrayList{"away/new"});
    QVERIFY(called.contains("readLink"));
    for (const char *leavesTheHome : {"openRoot", "realPath", "kindBehind"})
        QVERIFY(!called.contains(leavesTheHome));
    m_home.link("loop", "loop");
    QVERIFY(paths.followed(m_home.path("loop/a")).contains("loop/a")); // and comes to an end
    m_home.link("grows", "grows/grows/grows");
    QVERIFY(paths.followed(m_home.path("grows")).size() < 256);
    QCOMPARE(paths.followed(m_home.path(QByteArray("a/").repeated(30'000))), QByteArrayList());
}

void TestHomePaths::knowsAnotherPathThatLeadsToTheHome()
{
    const QByteArray alias = m_home.outside("alias");
    makeLink(alias, "anna");
    const auto leading = [&](const QByteArray &other) {
        return HomePaths::leadingTo(hostSystemCalls(), m_home.path(), other);
    };
    QCOMPARE(leading(alias), QByteArrayList({m_home.path(), alias}));
    for (const QByteArray &other : {m_home.path(), m_home.outside(""), m_home.outside("gone"),
                                    QByteArray("alias"), QByteArray()})
        QCOMPARE(leading(other), QByteArrayList{m_home.path()});
}

void TestHomePaths::knowsAHomeThatIsMountedElsewhereToo()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    MadeTree tree;
    for (const char *path : {"home", "home/anna", "var", "other", "other/anna"})
        tree.makeFolder(path);
    const QByteArray text =
        runInChild(ChildUser::Same, [&] {
            const OwnMounts mounts(tree);
            mounts.bind("home", "var");
            const auto isAnother = [&](const char *path) {
                return HomePaths::leadingTo(hostSystemCalls(), tree.path("home/anna"),
                                            tree.path(path))
                           .size() == 2;
            };
            std::fprintf(stderr, "%d %d %d", mounts.areMade(), isAnother("var/anna"),
                         isAnother("other/anna"));
            return 0;
        }).errorText;
    QCOMPARE(text, QByteArray("1 1 0"));
}

void TestHomePaths::knowsTheOtherPathOfUsualHomes()
{
    QCOMPARE(HomePaths::usualOtherPath("/home/anna"), QByteArray("/var/home/anna"));
    QCOMPARE(HomePaths::usualOtherPath("/var/home/anna"), QByteArray("/home/anna"));
    for (const char *other : {"/root", "/home", "/homes/anna", "/var/homes/anna", "/data/anna"})
        QCOMPARE(HomePaths::usualOtherPath(other), QByteArray());
}

void TestHomePaths::seesHiddenFoldersOnTheWay_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("plain") << QByteArray("a/b") << false;
    QTest::newRow("first") << QByteArray(".a/b") << true;
    QTest::newRow("further down") << QByteArray("a/.b/c") << true;
    QTest::newRow("last") << QByteArray("a/.b") << true;
    QTest::newRow("a dot within a name") << QByteArray("a.b/c.d") << false;
}

void TestHomePaths::seesHiddenFoldersOnTheWay()
{
    QFETCH(QByteArray, path);
    QTEST(hasHiddenComponent(path), "isHidden");
}

VANTOR_TEST_MAIN(TestHomePaths)
#include "tst_HomePaths.moc"
