#include "platform/system/HostSystemCalls.h"
#include "slices/exclusions/ResolvedExclusions.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

class TestResolvedExclusions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void findsWhatLiesInTheGrantedFolder();
    void addsNothingForPlainPaths();
    void keepsALinkAndWhatItLeadsTo_data();
    void keepsALinkAndWhatItLeadsTo();
    void keepsTheLinkAloneWhereItLeadsNowhere_data();
    void keepsTheLinkAloneWhereItLeadsNowhere();
    void knowsAnExclusionBehindALink_data();
    void knowsAnExclusionBehindALink();
    void knowsAnExclusionInAHomeShownElsewhere_data();
    void knowsAnExclusionInAHomeShownElsewhere();
    void isLostWithoutHarmWhereNothingIs();
    void stopsEverythingWhileItCannotBeLookedAt();

private:
    ResolvedExclusions resolved(const FileUrl &url,
                                const SystemCalls &calls = hostSystemCalls()) const
    {
        return resolveExclusions(calls, *m_home, excluding({url}));
    }
    FileUrl folder(const QByteArray &relative) const
    {
        return FileUrl::fromPath(*m_scratch / relative, FileUrlKind::Folder);
    }
    static std::uint64_t inodeOf(const QByteArray &path)
    {
        struct stat found
        {
        };
        return ::lstat(path.constData(), &found) == 0 ? found.st_ino : 0;
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
};

void TestResolvedExclusions::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    makeFile(*m_scratch / "home/Downloads/Keep/film");
    makeFile(*m_scratch / "home/Downloads/other");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestResolvedExclusions::findsWhatLiesInTheGrantedFolder()
{
    const ResolvedExclusions found = resolved(m_home->folder("Downloads/Keep"));
    QCOMPARE(found.identities.size(), std::size_t(1));
    QCOMPARE(found.identities[0].inode, inodeOf(*m_scratch / "home/Downloads/Keep"));
    QVERIFY(found.lost.empty());
}

void TestResolvedExclusions::addsNothingForPlainPaths()
{
    makeFile(*m_scratch / "outside/file");
    for (const FileUrl &url : {m_home->folder("Downloads/Keep"), folder("outside")})
        QCOMPARE(resolved(url).paths.urls(), FileUrls{url});
    QCOMPARE(resolved(FileUrl::fromPath("/", FileUrlKind::Folder)).paths.urls().size(), 1);
}

void TestResolvedExclusions::keepsALinkAndWhatItLeadsTo_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addRow("by its full path") << (QByteArray("HOME") + "/Downloads/Keep");
    QTest::addRow("beside it") << QByteArray("Keep");
    QTest::addRow("around") << QByteArray("../Downloads/Keep");
    QTest::addRow("past another link") << QByteArray("second");
}

void TestResolvedExclusions::keepsALinkAndWhatItLeadsTo()
{
    QFETCH(QByteArray, target);
    makeLink(*m_scratch / "home/Downloads/second", "Keep");
    makeLink(*m_scratch / "home/Downloads/link", target.replace("HOME", *m_scratch / "home"));
    const CleaningPlan plan =
        makeCleaningPlan(hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})},
                         excluding({m_home->file("Downloads/link")}));
    performCleaning(hostSystemCalls(), plan, {});
    QVERIFY(inodeOf(*m_scratch / "home/Downloads/link") != 0);
    QVERIFY(exists(*m_scratch / "home/Downloads/Keep/film"));
    QCOMPARE(inodeOf(*m_scratch / "home/Downloads/second") != 0, target == "second");
    QVERIFY(!exists(*m_scratch / "home/Downloads/other"));
}

void TestResolvedExclusions::keepsTheLinkAloneWhereItLeadsNowhere_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addRow("to nothing") << QByteArray("gone");
    QTest::addRow("to itself") << QByteArray("link");
}

void TestResolvedExclusions::keepsTheLinkAloneWhereItLeadsNowhere()
{
    QFETCH(QByteArray, target);
    makeLink(*m_scratch / "home/Downloads/link", target);
    const ResolvedExclusions found = resolved(m_home->file("Downloads/link"));
    QCOMPARE(found.identities.size(), std::size_t(1));
    QCOMPARE(found.identities[0].inode, inodeOf(*m_scratch / "home/Downloads/link"));
    QVERIFY(std::ranges::none_of(found.lost, &ResolvedExclusions::Lost::isHidden));
}

void TestResolvedExclusions::knowsAnExclusionBehindALink_data()
{
    QTest::addColumn<QByteArray>("link");
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("excluded");
    QTest::addRow("to the home") << QByteArray("link") << QByteArray("home")
                                 << QByteArray("link/Downloads/Keep");
    QTest::addRow("to the place") << QByteArray("link") << QByteArray("home/Downloads")
                                  << QByteArray("link/Keep");
    QTest::addRow("to the very folder")
        << QByteArray("link") << QByteArray("home/Downloads/Keep") << QByteArray("link");
    QTest::addRow("inside the home")
        << QByteArray("home/Documents/link") << QByteArray("home/Downloads")
        << QByteArray("home/Documents/link/Keep");
}

void TestResolvedExclusions::knowsAnExclusionBehindALink()
{
    QFETCH(QByteArray, link);
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, excluded);
    makeLink(*m_scratch / link, *m_scratch / target);
    const FileUrl url = FileUrl::fromPath(*m_scratch / excluded, FileUrlKind::Folder);
    const CleaningPlan plan = makeCleaningPlan(
        hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})}, excluding({url}));
    QCOMPARE(plan.locations().size(), std::size_t(1));
    QVERIFY(plan.locations().front().isTouched);
    performCleaning(hostSystemCalls(), plan, {});
    QVERIFY(exists(*m_scratch / "home/Downloads/Keep/film"));
    QVERIFY(!exists(*m_scratch / "home/Downloads/other"));
}

void TestResolvedExclusions::knowsAnExclusionInAHomeShownElsewhere_data()
{
    QTest::addColumn<QByteArray>("excluded");
    QTest::addColumn<QByteArray>("text");
    QTest::addRow("the folder") << QByteArray("var/anna/Downloads") << QByteArray("Whole None");
    QTest::addRow("in it") << QByteArray("var/anna/Downloads/Keep") << QByteArray("OnTheWay None");
    QTest::addRow("the home") << QByteArray("var/anna") << QByteArray("Whole Whole");
    QTest::addRow("around the home") << QByteArray("var") << QByteArray("Whole Whole");
    QTest::addRow("elsewhere") << QByteArray("other/anna") << QByteArray("None None");
}

/// A mount shows the folder around the home at a second place.
void TestResolvedExclusions::knowsAnExclusionInAHomeShownElsewhere()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(QByteArray, excluded);
    MadeTree tree;
    for (const char *path : {"home", "home/anna", "home/anna/Downloads", "home/anna/Documents",
                             "home/anna/Downloads/Keep", "var", "other", "other/anna"})
        tree.makeFolder(path);
    const QByteArray text =
        runInChild(ChildUser::Same, [&] {
            const OwnMounts mounts(tree);
            mounts.bind("home", "var");
            const GrantedFolder access(tree.path("home/anna"));
            const ResolvedExclusions found = resolveExclusions(
                hostSystemCalls(), access,
                excluding({FileUrl::fromPath(tree.path(excluded), FileUrlKind::Folder)}));
            const auto matchOf = [&](const char *folder) {
                const auto match = found.paths.matchByPath(access.folder(folder).path() + '/');
                return match == ExclusionMatch::Whole  ? "Whole"
                       : match == ExclusionMatch::None ? "None"
                                                       : "OnTheWay";
            };
            std::fprintf(stderr, "%s%s %s",
                         mounts.areMade() ? "" : "not made: ", matchOf("Downloads"),
                         matchOf("Documents"));
            return 0;
        }).errorText;
    QTEST(text, "text");
}

void TestResolvedExclusions::isLostWithoutHarmWhereNothingIs()
{
    const ResolvedExclusions found = resolved(folder("elsewhere/gone"));
    QVERIFY(found.identities.empty());
    QCOMPARE(found.lost.size(), std::size_t(1));
    QVERIFY(!found.lost[0].isHidden);
}

void TestResolvedExclusions::stopsEverythingWhileItCannotBeLookedAt()
{
    const HookedSystem closed(
        [](int, std::string_view name) { return name == "realPath" ? EACCES : 0; });
    QVERIFY(resolved(folder("closed/x"), closed).lost.at(0).isHidden);
    const CleaningPlan plan =
        makeCleaningPlan(closed, *m_home, {contentsOf({m_home->folder("Downloads")})},
                         excluding({folder("closed/x")}));
    QVERIFY(plan.locations().empty());
    QCOMPARE(plan.refusals().size(), 1);
    QCOMPARE(plan.refusals().first().reason, RefusalReason::UnresolvedExclusion);
    QCOMPARE(plan.refusals().first().error, EACCES);
    // The folders on the way may be open while the item itself is hidden.
    makeFile(*m_scratch / "outside/x");
    const HookedSystem hidden(
        [](int, std::string_view name) { return name == "identity" ? EACCES : 0; });
    QVERIFY(resolved(folder("outside/x"), hidden).lost.at(0).isHidden);
}

VANTOR_TEST_MAIN(TestResolvedExclusions)
#include "tst_ResolvedExclusions.moc"
