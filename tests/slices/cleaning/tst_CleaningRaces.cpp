#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

class TestCleaningRaces final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothingOutside_data();
    void losesNothingOutside();
    void knowsAnExcludedFolderInAnothersPlace();
    void keepsTheWayToWhatWasMovedAway_data();
    void keepsTheWayToWhatWasMovedAway();
    void removesNothingAsWhatItWasNotListedAs_data();
    void removesNothingAsWhatItWasNotListedAs();
    void removesNoFolderThatHasJustTakenAFilesPlace();

private:
    using Action = std::function<void(const QByteArray &scratch)>;
    int cleanWith(int call, const Action &action);
};

Q_DECLARE_METATYPE(std::function<void(const QByteArray &)>)

void TestCleaningRaces::losesNothingOutside_data()
{
    QTest::addColumn<Action>("action");
    const QByteArray folders[] = {"home/Downloads", "home/Downloads/b", "home/Downloads/b/c",
                                  "home/Downloads/way", "home/Downloads/b/c/d"};
    for (const QByteArray &folder : folders) {
        QTest::addRow("link for %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/aside");
            if (!exists(scratch + '/' + folder))
                makeLink(scratch + '/' + folder, scratch + "/outside");
        });
        QTest::addRow("file for %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/aside");
            if (!exists(scratch + '/' + folder))
                makeFile(scratch + '/' + folder);
        });
        QTest::addRow("moved out %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/outside/moved");
        });
        QTest::addRow("moved in %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + "/home/Downloads/way/Keep", scratch + '/' + folder + "/Renamed");
        });
    }
    QTest::addRow("link for a file") << Action([](const QByteArray &scratch) {
        move(scratch + "/home/Downloads/a", scratch + "/aside");
        makeLink(scratch + "/home/Downloads/a", scratch + "/outside/a");
    });
    QTest::addRow("new file inside")
        << Action([](const QByteArray &scratch) { makeFile(scratch + "/home/Downloads/b/c/new"); });
}

/// Cleans the small tree and runs the action before the given call. Returns the number of calls, or
/// -1 when something was lost.
int TestCleaningRaces::cleanWith(int call, const Action &action)
{
    const CleaningGround scratch;
    const QByteArray home = scratch / "home";
    // The same names outside as inside, so that a step too far would find something to remove.
    for (const char *name : {"a", "b/e", "b/c/f", "b/c/d/g", "way/Keep/h", "way/i"}) {
        makeFile(home + "/Downloads/" + name);
        makeFile(scratch / "outside/" + name, "precious");
    }
    const GrantedFolder granted(home);
    const Interloper calls(call, [&] { action(scratch.path()); });
    const LogRecorder silenced;
    clean(granted, {contentsOf({granted.folder("Downloads")})},
          excluding({granted.folder("Downloads/way/Keep")}), calls);

    int precious = 0;
    int kept = 0;
    for (const auto &entry :
         std::filesystem::recursive_directory_iterator(native(scratch.path()))) {
        precious +=
            entry.is_regular_file() && !entry.is_symlink() && entry.file_size() == 8 ? 1 : 0;
        kept += entry.path().filename() == "h" && entry.file_size() == 1 ? 1 : 0;
    }
    return precious == 6 && kept == 1 ? calls.count() : -1;
}

void TestCleaningRaces::losesNothingOutside()
{
    QFETCH(Action, action);
    const int calls = cleanWith(-1, action);
    QVERIFY(calls > 30);
    for (int call = 0; call < calls; ++call)
        QVERIFY2(cleanWith(call, action) >= 0, "before call " + QByteArray::number(call));
}

/// The listing saw another folder under this name; only the opened folder tells which one it is.
void TestCleaningRaces::knowsAnExcludedFolderInAnothersPlace()
{
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    makeFile(downloads + "/other/a");
    makeFile(downloads + "/Keep/b");
    const GrantedFolder granted(scratch / "home");
    const Swapper calls("openFolder", "other", [&] {
        move(downloads + "/other", scratch / "aside");
        move(downloads + "/Keep", downloads + "/other");
    });
    clean(granted, {contentsOf({granted.folder("Downloads")})},
          excluding({granted.folder("Downloads/Keep")}), calls);
    QCOMPARE(tree(downloads), std::set<QByteArray>({"other", "other/b"}));
}

void TestCleaningRaces::keepsTheWayToWhatWasMovedAway_data()
{
    QTest::addColumn<bool>("isInMemory");
    QTest::addRow("in memory") << true;
    QTest::addRow("on disk") << false;
}

void TestCleaningRaces::keepsTheWayToWhatWasMovedAway()
{
    QFETCH(bool, isInMemory);
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    makeFile(downloads + "/way/further/kept");
    const GrantedFolder granted(scratch / "home");
    const Swapper calls(
        "openFolder", "further", [&] { move(downloads + "/way/further/kept", scratch / "aside"); },
        isInMemory);
    clean(granted, {contentsOf({granted.folder("Downloads")})},
          excluding({granted.file("Downloads/way/further/kept")}), calls);
    QVERIFY(exists(scratch / "aside"));
    QCOMPARE(tree(downloads), std::set<QByteArray>({"way", "way/further"}));
}

void TestCleaningRaces::removesNothingAsWhatItWasNotListedAs_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addRow("file, now a folder")
        << QByteArray("removeFile") << QByteArray("file") << QByteArray("folder");
    QTest::addRow("folder, now a file")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("folder, now a link")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("link");
    QTest::addRow("emptied folder, now a file")
        << QByteArray("removeFolder") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("emptied folder, now a link")
        << QByteArray("removeFolder") << QByteArray("folder") << QByteArray("link");
}

void TestCleaningRaces::removesNothingAsWhatItWasNotListedAs()
{
    QFETCH(QByteArray, call);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, replacement);
    const CleaningGround scratch;
    const QByteArray place = scratch / ("home/Downloads/" + name);
    if (name == "folder")
        makeFile(place + "/inside");
    else
        makeFile(place);
    const auto swap = [&] {
        move(place, scratch / "aside");
        if (replacement == "folder")
            makeFolder(place);
        else if (replacement == "link")
            makeLink(place, scratch / "outside");
        else
            makeFile(place);
    };
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report =
        clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, Swapper(call, name, swap));
    QVERIFY(exists(place));
    QCOMPARE(report.failures.size() + report.refusals.size(), 1);
    QCOMPARE(report.failures.isEmpty() ? report.refusals.first().path
                                       : report.failures.first().path,
             place);
}

/// The file was still there when its identity was looked at.
void TestCleaningRaces::removesNoFolderThatHasJustTakenAFilesPlace()
{
    const CleaningGround scratch;
    const QByteArray place = scratch / "home/profile/cookies";
    makeFile(place);
    const GrantedFolder granted(scratch / "home");
    SliceToClean slice = theFiles({granted.file("profile/cookies")});
    slice.whatGoes = RemovalScope::RegularFiles;
    const CleaningPlan plan = makeCleaningPlan(hostSystemCalls(), granted, {slice}, {});
    const Swapper calls("status", "cookies", [&] {
        move(place, scratch / "aside");
        makeFile(place + "/letter");
    });
    const CleaningReport report = performCleaning(calls, plan, {});
    QVERIFY(exists(place + "/letter"));
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().reason, RefusalReason::NotAFile);
}

VANTOR_TEST_MAIN(TestCleaningRaces)
#include "tst_CleaningRaces.moc"
