#include "slices/cleaning/TrashRecords.h"

#include "slices/cleaning/DependentItems.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/plan/RefusalText.h"
#include "slices/record/Info.h"
#include "tests/slices/kit/Consent.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/disk/Moments.h"
#include "tests/support/run/TestMain.h"

#include <algorithm>
#include <cerrno>

namespace {

const QByteArray kTrash = ".local/share/Trash/";
const QByteArray kRecord = kTrash + "info/new.trashinfo";
const QByteArray kItem = kTrash + "files/new";

/// Fails one call.
class OneFault final : public HookedCalls
{
public:
    OneFault(int call, int error) : m_call(call), m_error(error) { letNothingBeConfined(); }

    bool isForOneThread(int) const override { return true; }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        if (m_count++ != m_call)
            return {};
        m_failed = QByteArray(call) + ' ' + name;
        return m_error;
    }
    int count() const { return m_count; }
    QByteArray failed() const { return m_failed; }

private:
    int m_call;
    int m_error;
    mutable int m_count = 0;
    mutable QByteArray m_failed;
};

/// All that a report names.
class Named final
{
public:
    explicit Named(const CleaningReport &report)
    {
        for (const CleaningFailure &failure : report.failures)
            m_paths.insert(failure.path);
        for (const CleaningRefusal &refusal : report.refusals)
            m_paths.insert(refusal.path);
    }
    /// The path, a folder around it, or something in it with which it stays.
    bool explain(const QByteArray &path) const
    {
        return std::ranges::any_of(m_paths, [&](const QByteArray &named) {
            return path == named || path.startsWith(named + '/') || named.startsWith(path + '/');
        });
    }

private:
    std::set<QByteArray> m_paths;
};

/// What a record, or the book of sizes, belongs to; for anything else the path itself.
QByteArray itemOf(const QByteArray &pathInTrash)
{
    if (pathInTrash == "directorysizes")
        return "files";
    const QByteArray item = itemOfTrashInfo(pathInTrash.sliced(pathInTrash.lastIndexOf('/') + 1));
    return item.isEmpty() ? pathInTrash : item.sliced(3);
}

} // namespace

class TestTrashRecords final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheRecordOfAnItemThatIsOnItsWay();
    void looksForTheItemAgainRightBeforeARecordGoes();
    void removesTheRecordOfWhatTheCleaningRemoved();
    void removesRecordsThatLostTheirItemLongAgo();
    void removesTheBookOfSizesWithoutItsFolder();
    void saysNothingOfTheRecordsOfWhatIsKept();
    void saysOnceThatNobodyKnowsWhichAreNeeded();
    void explainsAllThatStays_data();
    void explainsAllThatStays();

private:
    static CleaningReport cleanTrash(const MadeHome &home, const Moment &confirmed,
                                     const SystemCalls &calls = hostSystemCalls(),
                                     const FileUrls &excluded = {},
                                     const std::function<void()> &beforeThePlan = {});
    static QByteArrayList reasonsIn(const MadeHome &home, const CleaningReport &report);
};

CleaningReport TestTrashRecords::cleanTrash(const MadeHome &home, const Moment &confirmed,
                                            const SystemCalls &calls, const FileUrls &excluded,
                                            const std::function<void()> &beforeThePlan)
{
    const HomeLayout layout = home.survey();
    if (beforeThePlan)
        beforeThePlan();
    const auto record =
        Info::infoWithName(QStringLiteral("Trash"), layout.locations(SliceKind::Trash));
    Confirmation consent = consentTo(home.access(), {record});
    consent.moment = confirmed;
    const LogRecorder silenced;
    return clean(home.access(), slicesToClean(layout, {record}, consent), excluding(excluded),
                 calls);
}

/// "path: the reason's words in the log".
QByteArrayList TestTrashRecords::reasonsIn(const MadeHome &home, const CleaningReport &report)
{
    QByteArrayList reasons;
    for (const CleaningRefusal &refusal : report.refusals)
        reasons.append(home.relative(FileUrl::fromPath(refusal.path, FileUrlKind::File)) + ": " +
                       refusalText(refusal.reason).logged);
    return reasons;
}

/// Whoever moves something to the trash writes the record first.
void TestTrashRecords::keepsTheRecordOfAnItemThatIsOnItsWay()
{
    int arrivals = 0;
    int calls = 1; // grows with what each run needs
    for (int call = 0; call < calls; ++call) {
        const MadeHome home({kTrash + "files/old", kTrash + "info/old.trashinfo", kRecord, "new"});
        const Interloper arrival({{call, [&] { move(home.path("new"), home.path(kItem)); }}});
        const CleaningReport report = cleanTrash(home, momentBetween(), arrival);
        calls = std::max(calls, arrival.count());
        const QByteArray where = QByteArray::number(call) + ' ' + arrival.interrupted();
        QVERIFY2(exists(home.path(kRecord)), where);
        QVERIFY2(!exists(home.path(kTrash + "info/old.trashinfo")), where);
        QVERIFY2(report.refusalCount > 0, where);
        arrivals += exists(home.path(kItem)) ? 1 : 0;
    }
    QVERIFY(arrivals > 40);
}

/// A record that is older than that, but gets an item all the same. Only when the item comes after
/// the last look, before the removal itself, its record goes.
void TestTrashRecords::looksForTheItemAgainRightBeforeARecordGoes()
{
    int kept = 0;
    int calls = 1;
    for (int call = 0; call < calls; ++call) {
        const MadeHome home({kTrash + "files/old", kTrash + "info/old.trashinfo", kRecord, "new"});
        bool hadRecord = false;
        const Interloper arrival({{call, [&] {
                                       hadRecord = exists(home.path(kRecord));
                                       move(home.path("new"), home.path(kItem));
                                   }}});
        const CleaningReport report = cleanTrash(home, inAMinute(), arrival);
        calls = std::max(calls, arrival.count());
        const QByteArray late = arrival.interrupted();
        const bool isTooLate = late == "moveToFree new.trashinfo" ||
                               late == "rename new.trashinfo" || late.contains(" .vantor-");
        const bool isListed = !exists(home.path(kItem)); // it was there in time to be removed
        if (!hadRecord || isTooLate || isListed)
            continue;
        const QByteArray where = QByteArray::number(call) + ' ' + arrival.interrupted();
        QVERIFY2(exists(home.path(kRecord)), where);
        QVERIFY2(report.refusalCount > 0, where);
        ++kept;
    }
    QVERIFY2(kept > 5, QByteArray::number(kept));
}

void TestTrashRecords::removesTheRecordOfWhatTheCleaningRemoved()
{
    const MadeHome home({kItem, kRecord});
    QCOMPARE(reasonsIn(home, cleanTrash(home, momentBetween())), QByteArrayList());
    QVERIFY(!exists(home.path(kItem)) && !exists(home.path(kRecord)));
}

void TestTrashRecords::removesRecordsThatLostTheirItemLongAgo()
{
    const MadeHome home({kTrash + "files/", kRecord, kTrash + "info/.trashinfo"});
    QCOMPARE(reasonsIn(home, cleanTrash(home, momentBetween())),
             QByteArrayList({kRecord + ": its item was perhaps still on its way to the trash"}));
    QCOMPARE(reasonsIn(home, cleanTrash(home, inAMinute())), QByteArrayList());
    QVERIFY(tree(home.path(kTrash + "info")).empty());
}

/// It would tell for ever of what is gone.
void TestTrashRecords::removesTheBookOfSizesWithoutItsFolder()
{
    const MadeHome home({kTrash + "files/", kTrash + "info/", kTrash + "directorysizes"});
    const CleaningReport report = cleanTrash(home, inAMinute(), hostSystemCalls(), {}, [&] {
        std::filesystem::remove(native(home.path(kTrash + "files")));
    });
    QCOMPARE(reasonsIn(home, report), QByteArrayList());
    QVERIFY(!exists(home.path(kTrash + "directorysizes")));
}

void TestTrashRecords::saysNothingOfTheRecordsOfWhatIsKept()
{
    const MadeHome home({kTrash + "files/kept", kTrash + "files/box/kept",
                         kTrash + "info/kept.trashinfo", kTrash + "info/box.trashinfo"});
    const std::set<QByteArray> before = tree(home.path(kTrash.chopped(1)));
    const CleaningReport report = cleanTrash(
        home, inAMinute(), hostSystemCalls(),
        {home.access().file(kTrash + "files/kept"), home.access().file(kTrash + "files/box/kept")});
    QCOMPARE(reasonsIn(home, report), QByteArrayList());
    QCOMPARE(tree(home.path(kTrash.chopped(1))), before);
}

void TestTrashRecords::saysOnceThatNobodyKnowsWhichAreNeeded()
{
    /// The folder of the items cannot be opened any more once it is emptied.
    class Closed final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            const bool isIt =
                qstrcmp(call, "openFolder") == 0 && QByteArrayView(name).endsWith("Trash/files");
            return isIt && ++m_openings > 1 ? std::optional(EMFILE) : std::nullopt;
        }

    private:
        mutable int m_openings = 0;
    };
    const MadeHome home({kTrash + "files/", kRecord, kTrash + "info/other.trashinfo"});
    QCOMPARE(reasonsIn(home, cleanTrash(home, inAMinute(), Closed())),
             QByteArrayList({kTrash + "info: cannot be read"}));
    QCOMPARE(tree(home.path(kTrash + "info")).size(), std::size_t(2));
}

void TestTrashRecords::explainsAllThatStays_data()
{
    QTest::addColumn<int>("error");
    for (const int error : {EIO, EACCES, EMFILE, EBUSY})
        QTest::addRow("errno %d", error) << error;
}

/// Whichever call fails.
void TestTrashRecords::explainsAllThatStays()
{
    QFETCH(int, error);
    const std::set<QByteArray> kept{"files", "info", "files/kept", "info/kept.trashinfo"};
    int left = 0;
    int calls = 1; // grows with what each run needs
    for (int call = 0; call < calls; ++call) {
        const MadeHome home({kTrash + "files/a", kTrash + "files/b/c", kTrash + "files/kept",
                             kTrash + "info/a.trashinfo", kTrash + "info/b.trashinfo",
                             kTrash + "info/kept.trashinfo", kRecord, kTrash + "directorysizes"});
        const OneFault fault(call, error);
        const CleaningReport report =
            cleanTrash(home, inAMinute(), fault, {home.access().file(kTrash + "files/kept")});
        calls = std::max(calls, fault.count());
        const Named named(report);
        const QByteArray trash = home.path(kTrash);
        const std::set<QByteArray> stayed = tree(trash.chopped(1));
        QVERIFY2(std::ranges::includes(stayed, kept), fault.failed());
        for (const QByteArray &path : stayed) {
            const QByteArray item = itemOf(path);
            QVERIFY2(kept.contains(path) || named.explain(trash + path) ||
                         (exists(trash + item) && named.explain(trash + item)),
                     fault.failed() + ": " + path + '\n' + reasonsIn(home, report).join('\n'));
        }
        left += stayed == kept ? 0 : 1;
    }
    QVERIFY(left > 20);
}

VANTOR_TEST_MAIN(TestTrashRecords)
#include "tst_TrashRecords.moc"
