#include "slices/record/Confirmation.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

class TestConfirmation final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsWhatStandsAtEachLocation();
    void knowsNothingOfWhatIsNotThere();
    void endsWhenItIsStopped();
    void holdsAPlanToWhatWasKnown();
};

void TestConfirmation::knowsWhatStandsAtEachLocation()
{
    const CleaningGround scratch;
    makeFile(scratch / "home/folder/file");
    makeLink(scratch / "home/link", "folder");
    const GrantedFolder home(scratch / "home");
    const FileUrls locations{home.folder("folder"), home.file("folder/file"), home.file("link")};
    const LocationIdentities found = lookAtLocations(hostSystemCalls(), home, locations);
    QCOMPARE(found.size(), 3);
    for (const FileUrl &location : locations) {
        struct stat expected
        {
        };
        QCOMPARE(::lstat(location.path().constData(), &expected), 0);
        QCOMPARE(found.value(location.path()).inode, std::uint64_t(expected.st_ino));
    }
}

void TestConfirmation::knowsNothingOfWhatIsNotThere()
{
    const CleaningGround scratch;
    makeFile(scratch / "home/folder/file");
    makeFile(scratch / "outside/file");
    makeLink(scratch / "home/link", scratch / "outside");
    const GrantedFolder home(scratch / "home");
    const FileUrl outside = FileUrl::fromPath(scratch / "outside", FileUrlKind::Folder);
    QVERIFY(lookAtLocations(hostSystemCalls(), home,
                            {home.folder("gone"), home.file("folder/file/gone"), outside,
                             home.file("link/file")})
                .isEmpty());
}

void TestConfirmation::endsWhenItIsStopped()
{
    const CleaningGround scratch;
    makeFile(scratch / "home/file");
    const GrantedFolder home(scratch / "home");
    std::stop_source stop;
    stop.request_stop();
    QVERIFY(
        lookAtLocations(hostSystemCalls(), home, {home.file("file")}, stop.get_token()).isEmpty());
}

void TestConfirmation::holdsAPlanToWhatWasKnown()
{
    const CleaningGround scratch;
    for (const char *name : {"home/known/a", "home/exchanged/a", "home/other/a", "home/file"})
        makeFile(scratch / name);
    const GrantedFolder home(scratch / "home");
    SliceToClean folders =
        contentsOf({home.folder("known"), home.folder("exchanged"), home.folder("new")});
    SliceToClean files = theFiles({home.file("file")});
    folders.known = lookAtLocations(hostSystemCalls(), home, folders.fileURLs);
    files.known = lookAtLocations(hostSystemCalls(), home, files.fileURLs);
    const auto planned = [&] {
        return makeCleaningPlan(hostSystemCalls(), home, {folders, files}, {});
    };
    QCOMPARE(planned().locations().size(), std::size_t(3));
    move(scratch / "home/exchanged", scratch / "home/aside");
    move(scratch / "home/other", scratch / "home/exchanged");
    makeFolder(scratch / "home/new");
    move(scratch / "home/aside/a", scratch / "home/file");
    const CleaningPlan plan = planned();
    QCOMPARE(plan.locations().size(), std::size_t(1));
    QCOMPARE(plan.locations().front().url, home.folder("known"));
    QCOMPARE(plan.refusals().size(), 3);
    for (const CleaningRefusal &refusal : plan.refusals())
        QCOMPARE(refusal.reason, RefusalReason::ChangedLater);
}

VANTOR_TEST_MAIN(TestConfirmation)
#include "tst_Confirmation.moc"
