#include "slices/sizing/FolderSizing.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <map>

namespace {

constexpr FileSystemTraits kVouched{true, true};

/// Three folders below the start, and five files.
void grow(const MadeTree &tree)
{
    for (const char *folder : {"a", "a/b", "c"})
        tree.makeFolder(folder);
    for (const char *file : {"1", "a/2", "a/b/3", "a/b/4", "c/5"})
        tree.makeFile(file, 10);
}

/// The calls of one measure, by their kinds.
class CountedMeasure final
{
public:
    explicit CountedMeasure(const MadeTree &tree, const FileSystemTraits &traits,
                            const SizingRules &rules = {})
    {
        m_calls.setTraits(traits);
        size = measureFolder(m_calls, {tree.descriptor(), {}}, {}, 1, rules);
    }

    FolderSize size;
    int of(WatchedCall call) { return m_counts[call]; }
    int all() const { return m_calls.count(); }

private:
    std::map<WatchedCall, int> m_counts;
    WatchedSystemCalls m_calls{[this](int, WatchedCall call, const char *) {
        ++m_counts[call];
        return 0;
    }};
};

} // namespace

/// What a measure costs: how often it calls the system, for each entry and for each folder.
class TestFolderSizingCalls final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesFewCallsForAFolderAndOneForAFile_data();
    void makesFewCallsForAFolderAndOneForAFile();
    void makesNoMoreCallsForWhatIsKept();
    void asksForRightsWhereTheModeDoesNotSettleThem_data();
    void asksForRightsWhereTheModeDoesNotSettleThem();
    void asksEverywhereWhenTheLocationIsRefused();
};

void TestFolderSizingCalls::makesFewCallsForAFolderAndOneForAFile_data()
{
    QTest::addColumn<bool>("listsToTheEnd");
    QTest::addColumn<bool>("modeDecides");
    QTest::addColumn<int>("listings");
    QTest::addColumn<int>("rightsAsked");
    QTest::addRow("nothing is vouched for") << false << false << 8 << 4;
    QTest::addRow("listings end") << true << false << 4 << 4;
    QTest::addRow("the mode decides") << false << true << 8 << 1;
    QTest::addRow("both") << true << true << 4 << 1;
}

void TestFolderSizingCalls::makesFewCallsForAFolderAndOneForAFile()
{
    QFETCH(bool, listsToTheEnd);
    QFETCH(bool, modeDecides);
    const MadeTree tree;
    grow(tree);
    CountedMeasure measure(tree, {listsToTheEnd, modeDecides});
    QCOMPARE(measure.size.bytes, qint64(50));
    QCOMPARE(measure.of(WatchedCall::OpenFolder), 4);
    QCOMPARE(measure.of(WatchedCall::Status), 5);
    QCOMPARE(measure.of(WatchedCall::StatusOf), 4 + 2); // and what compares the start's volume
    QTEST(measure.of(WatchedCall::ReadEntries), "listings");
    QTEST(measure.of(WatchedCall::MayChangeEntries), "rightsAsked");
    QCOMPARE(measure.all(),
             15 + measure.of(WatchedCall::ReadEntries) + measure.of(WatchedCall::MayChangeEntries));
}

void TestFolderSizingCalls::makesNoMoreCallsForWhatIsKept()
{
    const MadeTree tree;
    grow(tree);
    SizingRules rules;
    constexpr int kKept = 1000;
    for (int i = 0; i < kKept; ++i)
        rules.kept.append("a/b/" + QByteArray::number(i));
    CountedMeasure measure(tree, kVouched, rules);
    QCOMPARE(measure.size.bytes, qint64(30));
    QCOMPARE(measure.all(), CountedMeasure(tree, kVouched).all());
}

void TestFolderSizingCalls::asksForRightsWhereTheModeDoesNotSettleThem_data()
{
    QTest::addColumn<unsigned>("owner");
    QTest::addColumn<unsigned>("group");
    QTest::addColumn<unsigned>("mode");
    QTest::addColumn<int>("rightsAsked");
    constexpr unsigned kOther = 4711;
    constexpr unsigned kNoNumberHere = 65534;
    const unsigned own = ::geteuid();
    QTest::addRow("own") << own << own << 0700U << 1;
    QTest::addRow("own, and closed to others") << own << own << 0300U << 1;
    QTest::addRow("own, no write") << own << own << 0577U << 2;
    QTest::addRow("own, no search") << own << own << 0677U << 2;
    QTest::addRow("foreign, open to all") << kOther << own << 0777U << 2;
    QTest::addRow("of nobody that has a number") << kNoNumberHere << own << 0777U << 2;
    QTest::addRow("own, of a group that has no number") << own << kNoNumberHere << 0777U << 2;
}

void TestFolderSizingCalls::asksForRightsWhereTheModeDoesNotSettleThem()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, owner);
    QFETCH(unsigned, group);
    QFETCH(unsigned, mode);
    const MadeTree tree;
    grow(tree);
    QCOMPARE(::chown(tree.path("c").constData(), owner, group), 0);
    tree.setMode("c", mode);
    CountedMeasure measure(tree, kVouched);
    QCOMPARE(measure.size.bytes, qint64(50));
    QTEST(measure.of(WatchedCall::MayChangeEntries), "rightsAsked");
}

void TestFolderSizingCalls::asksEverywhereWhenTheLocationIsRefused()
{
    const MadeTree tree;
    grow(tree);
    int asked = 0;
    WatchedSystemCalls calls([&](int, WatchedCall call, const char *) {
        asked += call == WatchedCall::MayChangeEntries ? 1 : 0;
        return call == WatchedCall::MayChangeEntries ? EROFS : 0;
    });
    calls.setTraits(kVouched);
    const FolderSize size = measureFolder(calls, {tree.descriptor(), {}}, {}, 1);
    QCOMPARE(size.bytes, qint64(0));
    QCOMPARE(asked, 4);
}

VANTOR_TEST_MAIN(TestFolderSizingCalls)
#include "tst_FolderSizingCalls.moc"
