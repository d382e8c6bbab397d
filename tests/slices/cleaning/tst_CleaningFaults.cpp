#include "tests/slices/kit/FaultCase.h"
#include "tests/slices/kit/StepsOfRemoval.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/calls/PossibleErrors.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

Q_DECLARE_METATYPE(FaultWorld)

namespace {

using Tree = FaultWorld::Tree;
constexpr auto kMemory = FailingCalls::Medium::Memory;
constexpr auto kDisk = FailingCalls::Medium::Disk;

} // namespace

/// What a cleaning does when calls of the system fail. Pairs of faults are left to the soak.
class TestCleaningFaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothingWhicheverCallFails_data();
    void losesNothingWhicheverCallFails();
    void comesToAnEndWhicheverCallFailsForGood_data();
    void comesToAnEndWhicheverCallFailsForGood();
    void leavesAPartlyListedFolderWholly();
    void staysSilentAboutWhatIsGoneAlready();
};

void TestCleaningFaults::losesNothingWhicheverCallFails_data()
{
    QTest::addColumn<FaultWorld>("world");
    const auto row = [](const FaultWorld &world) { QTest::newRow(world.name) << world; };
    row({"in memory", Tree::Large, kMemory, true, false});
    row({"nothing excluded", Tree::Small, kMemory, false, false});
    row({"on disk", Tree::Small, kDisk, true, false});
    row({"confined", Tree::Small, kMemory, true, true});
}

void TestCleaningFaults::losesNothingWhicheverCallFails()
{
    QFETCH(FaultWorld, world);
    const FaultOutcome sound = cleanWithFaults(world, {});
    QVERIFY2(sound.wrong.isEmpty(), sound.wrong);
    QCOMPARE(sound.left, 0U);
    QVERIFY(sound.isSilent);
    std::size_t told = 0;
    std::size_t faults = 0;
    for (std::size_t call = 0; call < sound.calls.size(); ++call) {
        const std::size_t errors = possibleErrors(sound.calls[call]).size();
        QVERIFY2(errors > 0, sound.calls[call]);
        for (std::size_t which = 0; which < errors; ++which) {
            const FaultOutcome outcome = cleanWithFaults(world, {{call, which}});
            QVERIFY2(outcome.wrong.isEmpty(), outcome.wrong);
            told += outcome.isSilent ? 0 : 1;
            faults += outcome.faults;
        }
    }
    QVERIFY(faults > 300);
    // The others are made up for: there are more ways than one to remove a file.
    QVERIFY2(told > faults / 3, QByteArray::number(qulonglong(told)));
}

void TestCleaningFaults::comesToAnEndWhicheverCallFailsForGood_data()
{
    QTest::addColumn<FaultWorld>("world");
    const auto row = [](const FaultWorld &world) { QTest::newRow(world.name) << world; };
    row({"in memory", Tree::Large, kMemory, true, false});
    row({"confined", Tree::Small, kDisk, true, true});
}

/// From its first call on; the soak tries all of them.
void TestCleaningFaults::comesToAnEndWhicheverCallFailsForGood()
{
    QFETCH(FaultWorld, world);
    const FaultOutcome sound = cleanWithFaults(world, {});
    std::set<QByteArray> names;
    for (std::size_t call = 0; call < sound.calls.size(); ++call) {
        if (!names.insert(sound.calls[call]).second)
            continue;
        for (const int error : {EAGAIN, EINTR, EIO}) {
            const FaultOutcome outcome =
                cleanWithFaults(world, {{call, 0, Fault::Lasts::ForGood, error}});
            QVERIFY2(outcome.wrong.isEmpty(), outcome.wrong);
            QVERIFY(outcome.faults > 0);
        }
    }
    QVERIFY(names.size() > 10);
}

void TestCleaningFaults::leavesAPartlyListedFolderWholly()
{
    /// The folder's second reading fails: the first has brought entries already.
    class BrokenListing final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            const bool isReading = QByteArrayView(call) == "readEntries";
            return isReading && ++m_readings == 2 ? std::optional(EIO) : std::nullopt;
        }

    private:
        mutable int m_readings = 0;
    };
    for (const QByteArray &inner : {QByteArray(), QByteArray("/inner")}) {
        const CleaningGround scratch;
        const QByteArray folder = scratch / ("home/Downloads" + inner);
        for (int i = 0; i < 5; ++i)
            makeFile(folder + '/' + QByteArray::number(i));
        const GrantedFolder granted(scratch / "home");
        const FileUrl location = granted.folder("Downloads" + inner);
        const CleaningReport report = clean(granted, {contentsOf({location})}, {}, BrokenListing());
        QCOMPARE(tree(folder).size(), std::size_t(5));
        QCOMPARE(report.refusals.size(), 1);
        QCOMPARE(report.refusals.first().path, folder);
        QCOMPARE(report.refusals.first().reason, RefusalReason::PartlyListed);
        QCOMPARE(report.refusals.first().error, EIO);
    }
}

void TestCleaningFaults::staysSilentAboutWhatIsGoneAlready()
{
    /// Another process removes each item first, one item at a time.
    class Quicker final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int parent, const char *name) const override
        {
            if (takesAside(call, name) && ::unlinkat(parent, name, 0) != 0)
                ::unlinkat(parent, name, AT_REMOVEDIR);
            return {};
        }
    };
    const CleaningGround scratch;
    for (const char *name : {"a", "b/c", "b/d/e", "P.app/f"})
        makeFile(scratch / "home/Downloads/" + name);
    makeLink(scratch / "home/Downloads/link", scratch.path());
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report =
        clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, Quicker());
    QVERIFY(tree(scratch / "home/Downloads").empty());
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QCOMPARE(report.removedItems, std::uint64_t(0));
}

VANTOR_TEST_MAIN(TestCleaningFaults)
#include "tst_CleaningFaults.moc"
