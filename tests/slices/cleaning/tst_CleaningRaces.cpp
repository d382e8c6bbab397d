#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/Interleavings.h"
#include "tests/support/run/Confinement.h"
#include "tests/support/run/TestMain.h"

#include <QRandomGenerator>
#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace {

/// The numbers of the calls of a cleaning by one thread that confine a thread, by their names.
std::map<QByteArray, std::set<int>> confiningCalls(const QByteArray &around,
                                                   AttackedHome::Exclusion exclusion)
{
    std::map<QByteArray, std::set<int>> found{
        {"makeRules", {}}, {"allow", {}}, {"enterForGood", {}}};
    int count = 1;
    for (int number = 0; number < count; ++number) {
        const AttackedHome home(around + "/home", exclusion);
        const Interloper calls({{number, [] {}}});
        home.clean(Moment::never(), calls);
        count = calls.count();
        if (const auto call = found.find(calls.interrupted().split(' ').first());
            call != found.end())
            call->second.insert(number);
    }
    return found;
}

} // namespace

class TestCleaningRaces final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothing();
    void losesNothingWhileThreadsAreBeingConfined_data();
    void losesNothingWhileThreadsAreBeingConfined();
    void knowsAnExcludedFolderInAnothersPlace();
    void keepsTheWayToWhatWasMovedAway_data();
    void keepsTheWayToWhatWasMovedAway();
    void removesNothingAsWhatItWasNotListedAs_data();
    void removesNothingAsWhatItWasNotListedAs();
    void removesNoFolderThatHasJustTakenAFilesPlace();
};

/// A sample of all moves before all calls, and of two moves; vantor-soak-moves tries each of them.
void TestCleaningRaces::losesNothing()
{
    constexpr std::size_t kSample = 3500;
    constexpr std::size_t kPairs = 500;
    const CleaningGround ground;
    const LogRecorder silenced;
    const Interleavings interleavings(ground.path(), Mounting::NotAllowed,
                                      Interleavings::countCalls(ground.path()));
    std::vector<Interleavings::Interleaving> chosen = interleavings.all();
    QVERIFY(chosen.size() > 5 * kSample);
    std::mt19937 random(QRandomGenerator::global()->generate());
    std::shuffle(chosen.begin(), chosen.end(), random);
    chosen.resize(kSample);
    std::generate_n(std::back_inserter(chosen), kPairs,
                    [&] { return interleavings.anyPair(random); });

    QByteArrayList lost;
    std::size_t chosenLeft = 0;
    interleavings.run(chosen.begin(), chosen.end(), [&](const auto &one, const auto &outcome) {
        chosenLeft += outcome.chosenLeft;
        if (!outcome.lost.isEmpty())
            lost.append(interleavings.words(one) + ": " + outcome.lost.join(", "));
    });
    QVERIFY2(lost.isEmpty(), lost.join('\n'));
    QVERIFY(chosenLeft < 2 * chosen.size()); // of five: most go nevertheless
}

void TestCleaningRaces::losesNothingWhileThreadsAreBeingConfined_data()
{
    QTest::addColumn<AttackedHome::Exclusion>("exclusion");
    QTest::addRow("something excluded") << AttackedHome::Exclusion::Keep;
    QTest::addRow("nothing excluded") << AttackedHome::Exclusion::None;
}

/// The rules name open folders, which others may move between one call and the next.
void TestCleaningRaces::losesNothingWhileThreadsAreBeingConfined()
{
    VANTOR_NEEDS_CONFINEMENT;
    QFETCH(AttackedHome::Exclusion, exclusion);
    const CleaningGround ground;
    const LogRecorder silenced;
    std::set<int> calls;
    for (const auto &[name, numbers] : confiningCalls(ground.path(), exclusion)) {
        QVERIFY2(!numbers.empty(), name.constData());
        calls.insert(numbers.begin(), numbers.end());
    }
    const Interleavings interleavings(ground.path(), Mounting::NotAllowed,
                                      Interleavings::countCalls(ground.path()));
    std::vector<Interleavings::Interleaving> chosen = interleavings.all();
    std::erase_if(chosen, [&](const Interleavings::Interleaving &one) {
        return one.way.exclusion != exclusion ||
               one.way.confinement != AttackedHome::Confinement::On || !one.way.isForOneThread ||
               !calls.contains(one.first.call);
    });
    QByteArrayList lost;
    interleavings.run(chosen.begin(), chosen.end(), [&](const auto &one, const auto &outcome) {
        if (!outcome.lost.isEmpty())
            lost.append(interleavings.words(one) + ": " + outcome.lost.join(", "));
    });
    QVERIFY2(lost.isEmpty(), lost.join('\n'));
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
    QTest::addColumn<bool>("isForOneThread");
    QTest::addRow("one thread") << true;
    QTest::addRow("several threads") << false;
}

void TestCleaningRaces::keepsTheWayToWhatWasMovedAway()
{
    QFETCH(bool, isForOneThread);
    const CleaningGround scratch;
    const QByteArray downloads = scratch / "home/Downloads";
    makeFile(downloads + "/way/further/kept");
    const GrantedFolder granted(scratch / "home");
    const Swapper calls(
        "openFolder", "further", [&] { move(downloads + "/way/further/kept", scratch / "aside"); },
        isForOneThread);
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
        << QByteArray("takeAside") << QByteArray("file") << QByteArray("folder");
    QTest::addRow("folder, now a file")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("folder, now a link")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("link");
    QTest::addRow("emptied folder, now a file")
        << QByteArray("takeAside") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("emptied folder, now a link")
        << QByteArray("takeAside") << QByteArray("folder") << QByteArray("link");
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
