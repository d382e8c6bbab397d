#include "platform/system/FileStatus.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemResult.h"
#include "slices/plan/CleaningPlan.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

class TestCleaningPlan final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void plansPlacesInTheirOrder();
    void leavesOutWhatDoesNotExist();
    void refusesPlacesOutsideTheGrant_data();
    void refusesPlacesOutsideTheGrant();
    void refusesTheGrantedFolderItself();
    void refusesLinksAtAndAboveAPlace();
    void refusesAFileWhereAFolderIsDue();
    void refusesAFolderWhereAPlainFileIsDue();
    void refusesWhatItCannotExamine();

    void plansNothingWhenAnExclusionCannotBeRead();
    void refusesAPlaceWhoseExclusionIsGone();
    void refusesAPlaceWhoseExclusionIsBehindALink();
    void ignoresLostExclusionsElsewhere();
    void leavesExcludedPlacesAlone_data();
    void leavesExcludedPlacesAlone();
    void leavesPlacesAloneWhenAllAroundIsExcluded();
    void knowsAnExcludedFolderUnderItsNewName();
    void knowsAnExclusionByAnotherRoad();
    void refusesAPlaceOnAnotherVolume();
    void marksPlacesThatHoldAnExclusion();
    void keepsWhatASliceKeeps();

    void sparesAnExcludedFileAmongSeveral();
    void sparesFilesThatShareTheirIdentityWithAnExclusion();
    void judgesAllFilesOfASliceAsSoonAsOneIsTouched();

private:
    CleaningPlan planned(const QList<SliceToClean> &slices, const FileUrls &excluded = {}) const
    {
        return makeCleaningPlan(hostSystemCalls(), *m_home, slices, excluding(excluded));
    }
    CleaningPlan plannedFolder(const QByteArray &relative, const FileUrls &excluded = {}) const
    {
        return planned({contentsOf({m_home->folder(relative)})}, excluded);
    }
    static FileUrls locations(const CleaningPlan &plan)
    {
        FileUrls urls;
        for (const CleaningLocation &location : plan.locations())
            urls.append(location.url);
        return urls;
    }
    static bool refusesOnly(const CleaningPlan &plan, RefusalReason reason, int error)
    {
        return plan.locations().empty() && plan.refusals().size() == 1 &&
               plan.refusals().first().reason == reason && plan.refusals().first().error == error;
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_path;
};

void TestCleaningPlan::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_path = *m_scratch / "home";
    makeFile(m_path + "/Downloads/Keep/film");
    makeFile(m_path + "/Downloads/other");
    makeFile(m_path + "/Library/Caches/one/data");
    makeFile(m_path + "/Library/Safari/History.plist");
    makeFile(m_path + "/Library/Safari/WebpageIcons.db");
    m_home = std::make_unique<GrantedFolder>(m_path);
}

void TestCleaningPlan::plansPlacesInTheirOrder()
{
    const FileUrls folders{m_home->folder("Library/Caches"), m_home->folder("Downloads")};
    const FileUrls files{m_home->file("Library/Safari/History.plist")};
    const CleaningPlan plan = planned({contentsOf(folders), theFiles(files)});
    QCOMPARE(locations(plan), folders + files);
    QVERIFY(plan.refusals().isEmpty());
    QVERIFY(plan.excludedLocations().isEmpty());
    const CleaningLocation &last = plan.locations().back();
    QCOMPARE(last.slice, QStringLiteral("Browser Data"));
    QCOMPARE(last.content, SliceContent::Files);
    QCOMPARE(last.path.relativePath, QByteArray("Library/Safari/History.plist"));
    QVERIFY(last.identity.inode != 0);
    QVERIFY(!last.isTouched);
}

void TestCleaningPlan::leavesOutWhatDoesNotExist()
{
    const FileUrls folders{m_home->folder("Library/Logs"), m_home->folder("No/Such/Place")};
    const FileUrls files{m_home->file("Library/Safari/absent"), m_home->file("No/absent")};
    // Even a missing location with an exclusion inside is not reported.
    const CleaningPlan plan =
        planned({contentsOf(folders), theFiles(files)}, {m_home->file("Library/Logs/kept")});
    QVERIFY(plan.locations().empty());
    QVERIFY(plan.refusals().isEmpty());
}

void TestCleaningPlan::refusesPlacesOutsideTheGrant_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char *path :
         {"/", "/etc", "%/..", "%2", "%/../home/Downloads", "%/Downloads/..", "%/./Downloads"})
        QTest::addRow("%s", path) << QByteArray(path);
}

void TestCleaningPlan::refusesPlacesOutsideTheGrant()
{
    QFETCH(QByteArray, path);
    makeFile(m_path + "2/file");
    const FileUrl url = FileUrl::fromPath(path.replace("%", m_path), FileUrlKind::Folder);
    QVERIFY(refusesOnly(planned({contentsOf({url})}), RefusalReason::OutsideGrant, 0));
    QVERIFY(refusesOnly(planned({theFiles({url})}), RefusalReason::OutsideGrant, 0));
    QVERIFY(refusesOnly(planned({contentsOf({FileUrl()})}), RefusalReason::OutsideGrant, 0));
}

void TestCleaningPlan::refusesTheGrantedFolderItself()
{
    const FileUrl home = FileUrl::fromPath(m_path, FileUrlKind::Folder);
    QVERIFY(refusesOnly(planned({contentsOf({home})}), RefusalReason::GrantedFolder, 0));
    QVERIFY(refusesOnly(planned({theFiles({home})}), RefusalReason::GrantedFolder, 0));
}

void TestCleaningPlan::refusesLinksAtAndAboveAPlace()
{
    makeFile(*m_scratch / "outside/Caches/data");
    makeLink(m_path + "/Link", *m_scratch / "outside");
    makeLink(m_path + "/Inner", "Downloads");
    for (const char *folder : {"Link", "Link/Caches", "Inner", "Inner/Keep"})
        QVERIFY(refusesOnly(plannedFolder(folder), RefusalReason::Link, ENOTDIR));
    QVERIFY(refusesOnly(planned({theFiles({m_home->file("Link/Caches/data")})}),
                        RefusalReason::Link, ENOTDIR));
}

void TestCleaningPlan::refusesAFileWhereAFolderIsDue()
{
    QVERIFY(refusesOnly(plannedFolder("Downloads/other"), RefusalReason::NotAFolder, ENOTDIR));
    QVERIFY(refusesOnly(plannedFolder("Downloads/other/x"), RefusalReason::NotAFolder, ENOTDIR));
}

void TestCleaningPlan::refusesAFolderWhereAPlainFileIsDue()
{
    SliceToClean slice = theFiles({m_home->file("Downloads/Keep")});
    QCOMPARE(planned({slice}).locations().size(), std::size_t(1)); // it may be a package
    slice.whatGoes = RemovalScope::RegularFiles;
    QVERIFY(refusesOnly(planned({slice}), RefusalReason::NotAFile, 0));
}

void TestCleaningPlan::refusesWhatItCannotExamine()
{
    class NoIdentities final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return QByteArrayView(call).startsWith("identity") ? std::optional(EIO) : std::nullopt;
        }
    };
    const QList<SliceToClean> slices{contentsOf({m_home->folder("Downloads")})};
    QVERIFY(refusesOnly(makeCleaningPlan(NoIdentities(), *m_home, slices, {}),
                        RefusalReason::Unreadable, EIO));
}

void TestCleaningPlan::plansNothingWhenAnExclusionCannotBeRead()
{
    const auto excluded = ExcludedPaths::fromStoredStrings(
        {stored(m_home->folder("Documents")), QStringLiteral("file:///%zz")});
    const CleaningPlan plan = makeCleaningPlan(
        hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})}, excluded);
    QVERIFY(refusesOnly(plan, RefusalReason::UnparsableExclusion, 0));
    QCOMPARE(plan.refusals().first().path, QByteArray("file:///%zz"));
}

void TestCleaningPlan::refusesAPlaceWhoseExclusionIsGone()
{
    const FileUrls folders{m_home->folder("Downloads"), m_home->folder("Library/Caches")};
    const CleaningPlan plan =
        planned({contentsOf(folders)}, {m_home->folder("Downloads/Deep/Gone")});
    QCOMPARE(locations(plan), FileUrls{folders[1]});
    QCOMPARE(plan.refusals().size(), 1);
    QCOMPARE(plan.refusals().first().path, folders[0].path());
    QCOMPARE(plan.refusals().first().reason, RefusalReason::UnresolvedExclusion);
    QCOMPARE(plan.refusals().first().error, ENOENT);
}

void TestCleaningPlan::refusesAPlaceWhoseExclusionIsBehindALink()
{
    makeLink(m_path + "/Downloads/Link", "Keep");
    QVERIFY(refusesOnly(plannedFolder("Downloads", {m_home->file("Downloads/Link/film")}),
                        RefusalReason::UnresolvedExclusion, ENOTDIR));
    // An excluded link is kept like any other item.
    QCOMPARE(plannedFolder("Downloads", {m_home->file("Downloads/Link")}).locations().size(),
             std::size_t(1));
}

void TestCleaningPlan::ignoresLostExclusionsElsewhere()
{
    const FileUrl outside = FileUrl::fromPath("/no/such/folder", FileUrlKind::Folder);
    const CleaningPlan plan = plannedFolder(
        "Downloads", {m_home->folder("Documents"), outside, m_home->folder("DownloadsOld/Gone")});
    QCOMPARE(plan.locations().size(), std::size_t(1));
    QVERIFY(plan.refusals().isEmpty());
}

void TestCleaningPlan::leavesExcludedPlacesAlone_data()
{
    QTest::addColumn<QByteArray>("excluded");
    QTest::addColumn<bool>("isKept");
    for (const char *path : {"Library/Caches/", "Library/Caches", "Library/", "Library", ""})
        QTest::addRow("inside '%s'", path) << QByteArray(path) << true;
    for (const char *path : {"Library/Cache", "Libr", "Library/Cache/", "Documents/"})
        QTest::addRow("not inside '%s'", path) << QByteArray(path) << false;
}

void TestCleaningPlan::leavesExcludedPlacesAlone()
{
    QFETCH(QByteArray, excluded);
    QFETCH(bool, isKept);
    const FileUrl url = excluded.endsWith('/') ? m_home->folder(excluded) : m_home->file(excluded);
    const CleaningPlan plan = plannedFolder("Library/Caches", {url});
    QCOMPARE(plan.locations().empty(), isKept);
    QCOMPARE(plan.excludedLocations().size(), isKept ? 1 : 0);
    QVERIFY(plan.refusals().isEmpty());
}

/// Nothing is looked up outside the granted folder: the path alone says enough.
void TestCleaningPlan::leavesPlacesAloneWhenAllAroundIsExcluded()
{
    for (const QByteArray &path : {QByteArray("/"), m_scratch->path()}) {
        const CleaningPlan plan =
            plannedFolder("Downloads", {FileUrl::fromPath(path, FileUrlKind::Folder)});
        QVERIFY(plan.locations().empty());
        QCOMPARE(plan.excludedLocations().size(), 1);
    }
}

void TestCleaningPlan::knowsAnExcludedFolderUnderItsNewName()
{
    // The excluded folder is moved when the plan has just found it by its path.
    class Mover final : public HookedCalls
    {
    public:
        explicit Mover(const QByteArray &home) : m_home(home) {}
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            if (QByteArrayView(call) == "openFolder" && QByteArrayView(name) == "Library")
                std::filesystem::rename(native(m_home + "/Kept"), native(m_home + "/Library"));
            return {};
        }

    private:
        QByteArray m_home;
    };
    std::filesystem::rename(native(m_path + "/Library"), native(m_path + "/Kept"));
    const CleaningPlan plan =
        makeCleaningPlan(Mover(m_path), *m_home, {contentsOf({m_home->folder("Library/Caches")})},
                         excluding({m_home->folder("Kept")}));
    QVERIFY(plan.locations().empty());
    QCOMPARE(plan.excludedLocations().size(), 1);
}

void TestCleaningPlan::knowsAnExclusionByAnotherRoad()
{
    // As a mount of the home folder would show it: the same folder below a path that contains the
    // location's path.
    class Alias final : public FileAccess
    {
    public:
        explicit Alias(const GrantedFolder &home) : m_home(home) {}
        void startAccessing() override {}
        void stopAccessing() override {}
        std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
        {
            return url.path().startsWith("/h/")
                       ? m_home.anchoredPath(m_home.folder(url.path().sliced(3)))
                       : std::nullopt;
        }

    private:
        const GrantedFolder &m_home;
    };
    makeFile(*m_scratch / "v/h/Downloads/Keep/film");
    std::filesystem::rename(native(*m_scratch / "home"), native(*m_scratch / "gone"));
    std::filesystem::rename(native(*m_scratch / "v/h"), native(*m_scratch / "home"));
    const GrantedFolder moved(*m_scratch / "home");
    std::filesystem::rename(native(*m_scratch / "home"), native(*m_scratch / "v/h"));
    const CleaningPlan plan = makeCleaningPlan(
        hostSystemCalls(), Alias(moved),
        {contentsOf({FileUrl::fromPath("/h/Downloads", FileUrlKind::Folder)})},
        excluding({FileUrl::fromPath(*m_scratch / "v/h/Downloads/Keep", FileUrlKind::Folder)}));
    QCOMPARE(plan.locations().size(), std::size_t(1));
    QCOMPARE(plan.excludedIdentities().size(), std::size_t(1));
    QVERIFY(plan.locations().front().isTouched);
}

void TestCleaningPlan::refusesAPlaceOnAnotherVolume()
{
    // Like a sub-volume: it opens like any folder, but has a device number of its own.
    class SubVolume final : public ForwardingSystemCalls
    {
    public:
        SystemResult<FileIdentity> identityOf(int descriptor) const override
        {
            auto identity = ForwardingSystemCalls::identityOf(descriptor);
            identity->device += m_count++ == 0 ? 0 : 1; // all but the granted folder
            return identity;
        }

    private:
        mutable int m_count = 0;
    };
    const CleaningPlan plan = makeCleaningPlan(
        SubVolume(), *m_home, {contentsOf({m_home->folder("Library/Caches")})}, {});
    QVERIFY(refusesOnly(plan, RefusalReason::OtherFileSystem, EXDEV));
}

void TestCleaningPlan::marksPlacesThatHoldAnExclusion()
{
    const CleaningPlan plan =
        planned({contentsOf({m_home->folder("Downloads"), m_home->folder("Library/Caches")})},
                {m_home->folder("Downloads/Keep")});
    QCOMPARE(plan.locations().size(), std::size_t(2));
    QVERIFY(plan.locations()[0].isTouched);
    QVERIFY(!plan.locations()[1].isTouched);
    QCOMPARE(plan.excludedIdentities().size(), std::size_t(1));
}

void TestCleaningPlan::keepsWhatASliceKeeps()
{
    SliceToClean downloads = contentsOf({m_home->folder("Downloads")});
    downloads.kept = {m_home->folder("Downloads/Keep"), m_home->folder("Downloads/gone")};
    const CleaningPlan plan = planned({downloads});
    QCOMPARE(plan.locations().size(), 1U); // what is not there stops nothing
    QVERIFY(plan.locations().front().isTouched);
    QCOMPARE(plan.excluded().urls(), downloads.kept);
    QCOMPARE(plan.excludedIdentities().size(), 1U);
    QVERIFY(plan.refusals().isEmpty());
}

void TestCleaningPlan::sparesAnExcludedFileAmongSeveral()
{
    const FileUrls files{m_home->file("Library/Safari/History.plist"),
                         m_home->file("Library/Safari/WebpageIcons.db")};
    for (const FileUrl &excluded : files) {
        const CleaningPlan plan = planned({theFiles(files)}, {excluded});
        QCOMPARE(plan.excludedLocations(), FileUrls{excluded});
        QCOMPARE(plan.locations().size(), std::size_t(1));
        QVERIFY(plan.locations().front().url != excluded);
    }
    // The folder around them keeps both.
    QVERIFY(planned({theFiles(files)}, {m_home->folder("Library/Safari")}).locations().empty());
}

void TestCleaningPlan::sparesFilesThatShareTheirIdentityWithAnExclusion()
{
    std::filesystem::create_hard_link(native(m_path + "/Downloads/Keep/film"),
                                      native(m_path + "/Downloads/twin"));
    const FileUrl twin = m_home->file("Downloads/twin");
    QCOMPARE(locations(planned({theFiles({twin})})), FileUrls{twin});
    QVERIFY(planned({theFiles({twin})}, {m_home->file("Downloads/Keep/film")}).locations().empty());
}

void TestCleaningPlan::judgesAllFilesOfASliceAsSoonAsOneIsTouched()
{
    makeFile(m_path + "/Downloads/a");
    makeFile(m_path + "/Downloads/ab");
    makeFile(m_path + "/Downloads/b");
    const FileUrls files{m_home->file("Downloads/b"), m_home->file("Downloads/ab"),
                         m_home->file("Downloads/a")};
    const CleaningPlan plan = planned({theFiles(files)}, {m_home->file("Downloads/a")});
    QCOMPARE(locations(plan), FileUrls{files[0]});
    QCOMPARE(plan.excludedLocations(), FileUrls({files[1], files[2]}));
}

VANTOR_TEST_MAIN(TestCleaningPlan)
#include "tst_CleaningPlan.moc"
