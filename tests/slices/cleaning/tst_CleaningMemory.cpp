#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/slices/kit/ScarceMemory.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr mode_t kReadOnly = 0555;
/// Sanitizers are slow, and so are threads that are confined: there not every call is tried.
constexpr int kPace = kIsAllMemoryScarce ? 1 : 5;

/// Runs out of memory in one of the calls.
class Forgetful final : public HookedCalls
{
public:
    Forgetful(int call, bool isForOneThread) : m_call(call), m_isForOneThread(isForOneThread) {}

    bool isForOneThread(int) const override { return m_isForOneThread; }
    std::optional<int> before(const char *call, int, const char *) const override
    {
        if (qstrcmp(call, "setPermissions") == 0)
            return {}; // gives rights back, too, for which the system needs no memory
        if (m_count.fetch_add(1) == m_call)
            throw std::bad_alloc();
        return {};
    }
    int count() const { return m_count; }

private:
    int m_call;
    bool m_isForOneThread;
    mutable std::atomic<int> m_count = 0;
};

void restrict(const QByteArray &folder)
{
    ::chmod(folder.constData(), kReadOnly);
}

} // namespace

/// A cleaning whose memory runs out ends, tells what it left, and has kept its promises. A
/// cleaning that does not end is ended by the time limit of the tests.
class TestCleaningMemory final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void endsWellWhicheverCallHasNoMemory_data();
    void endsWellWhicheverCallHasNoMemory();
    void endsWellWhicheverRequestIsRefused_data();
    void endsWellWhicheverRequestIsRefused();
    void goesOnWithTheNextLocation();

private:
    void makeHome() const;
    CleaningPlan plan(const SystemCalls &calls, bool hasExclusion) const;
    QByteArray whatIsWrong(const CleaningReport &report, bool hasExclusion) const;

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_path;
    std::unique_ptr<GrantedFolder> m_home;
};

void TestCleaningMemory::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_path = *m_scratch / "home";
    makeHome();
    m_home = std::make_unique<GrantedFolder>(m_path);
}

/// More folders beside each other than are shared out at a time, more of them in each other than
/// are held open, a package, a file with two names, and read-only folders at both ends.
void TestCleaningMemory::makeHome() const
{
    const QByteArray downloads = m_path + "/Downloads/";
    for (const QByteArray &folder : {downloads, m_path + "/Large"})
        removeTree(native(folder));
    QByteArray deep = downloads + "deep";
    for (int i = 0; i < 16; ++i)
        deep += "/d";
    makeFile(deep + "/file");
    makeFile(downloads + "deep/d/beside");
    for (int i = 0; i < 20; ++i)
        makeFile(downloads + "wide/" + QByteArray::number(i) + "/file");
    makeFile(downloads + "kept/precious");
    makeFile(m_path + "/Large/one");
    makeFile(m_path + "/Large/Big.app/part");
    std::filesystem::create_hard_link(native(m_path + "/Large/one"), native(downloads + "twin"));
    for (const QByteArray &folder : {deep, downloads + "deep/d", downloads + "wide/7"})
        restrict(folder);
}

CleaningPlan TestCleaningMemory::plan(const SystemCalls &calls, bool hasExclusion) const
{
    SliceToClean downloads = contentsOf({m_home->folder("Downloads")});
    downloads.readOnlyFolders = ReadOnlyFolders::Emptied;
    const SliceToClean large =
        theFiles({m_home->file("Large/one"), m_home->folder("Large/Big.app")});
    return makeCleaningPlan(
        calls, *m_home, {downloads, large},
        excluding(hasExclusion ? FileUrls{m_home->folder("Downloads/kept")} : FileUrls()));
}

/// Nothing is, if nothing is left but what has to be, or the report says why; and no folder has
/// rights that are not its own.
QByteArray TestCleaningMemory::whatIsWrong(const CleaningReport &report, bool hasExclusion) const
{
    std::set<QByteArray> expected{"Downloads", "Large"};
    if (hasExclusion)
        expected.insert({"Downloads/kept", "Downloads/kept/precious"});
    const std::set<QByteArray> left = tree(m_path);
    if (!std::ranges::includes(left, expected))
        return "lost what is kept";
    const bool isTold =
        std::ranges::any_of(report.refusals,
                            [](const CleaningRefusal &refusal) {
                                return refusal.reason == RefusalReason::OutOfMemory ||
                                       refusal.reason ==
                                           RefusalReason::Unconfined; // no thread could be started
                            }) ||
        std::ranges::any_of(report.failures,
                            [](const CleaningFailure &failure) { return failure.error == ENOMEM; });
    if (left != expected && !isTold)
        return "left without a word";
    for (const QByteArray &path : left) {
        const QByteArray name = path.sliced(path.lastIndexOf('/') + 1);
        if (name.startsWith(".vantor-aside"))
            return "left something under a private name";
        const bool isReadOnly =
            path == "Downloads/deep/d" || path == "Downloads/wide/7" || path.count("/d") == 17;
        struct stat found
        {
        };
        ::lstat((m_path + '/' + path).constData(), &found);
        if (isReadOnly && name != "file" && (found.st_mode & 07777) != kReadOnly)
            return "has changed the rights of " + path;
    }
    return {};
}

void TestCleaningMemory::endsWellWhicheverCallHasNoMemory_data()
{
    QTest::addColumn<bool>("isForOneThread");
    QTest::addColumn<bool>("isConfined");
    QTest::addColumn<bool>("hasExclusion");
    QTest::addColumn<int>("step");
    for (const bool isForOneThread : {true, false}) {
        for (const bool isConfined : {true, false}) {
            for (const bool hasExclusion : {true, false})
                QTest::addRow("%s, %s%s", isForOneThread ? "one thread" : "several threads",
                              isConfined ? "confined" : "unconfined",
                              hasExclusion ? ", exclusion" : "")
                    << isForOneThread << isConfined << hasExclusion << (isConfined ? 3 : 1);
        }
    }
}

void TestCleaningMemory::endsWellWhicheverCallHasNoMemory()
{
    QFETCH(bool, isForOneThread);
    QFETCH(bool, isConfined);
    QFETCH(bool, hasExclusion);
    QFETCH(int, step);
    const LogRecorder silenced;
    const std::size_t descriptors = openDescriptors();
    int left = 0;
    int calls = 1;
    for (int call = -1; call < calls; call += call < 0 ? 1 : kPace * step) {
        makeHome();
        Forgetful forgetful(call, isForOneThread);
        if (!isConfined)
            forgetful.letNothingBeConfined();
        const CleaningReport report =
            performCleaning(forgetful, plan(hostSystemCalls(), hasExclusion), {});
        calls = call < 0 ? forgetful.count() : calls;
        const QByteArray wrong = whatIsWrong(report, hasExclusion);
        QVERIFY2(wrong.isEmpty(), "call " + QByteArray::number(call) + ": " + wrong);
        left += tree(m_path).size() > 4 ? 1 : 0;
    }
    QVERIFY(calls > 200 && left * kPace * step > calls / 2);
    QCOMPARE(openDescriptors(), descriptors);
}

void TestCleaningMemory::endsWellWhicheverRequestIsRefused_data()
{
    QTest::addColumn<bool>("isForOneThread");
    QTest::addColumn<bool>("isConfined");
    QTest::addColumn<ScarceMemory::Lack>("lack");
    QTest::addColumn<int>("step");
    for (const auto lack : {ScarceMemory::Lack::Once, ScarceMemory::Lack::Lasting}) {
        for (const bool isForOneThread : {true, false}) {
            for (const bool isConfined : {true, false})
                QTest::addRow("%s, %s, %s", isForOneThread ? "one thread" : "several threads",
                              isConfined ? "confined" : "unconfined",
                              lack == ScarceMemory::Lack::Once ? "once" : "lasting")
                    << isForOneThread << isConfined << lack
                    << (isForOneThread && !isConfined ? 1 : 5);
        }
    }
}

void TestCleaningMemory::endsWellWhicheverRequestIsRefused()
{
    QFETCH(bool, isForOneThread);
    QFETCH(bool, isConfined);
    QFETCH(ScarceMemory::Lack, lack);
    QFETCH(int, step);
    const LogRecorder silenced;
    int refused = 0;
    int requests = 1;
    for (int request = -1; request < requests; request += request < 0 ? 1 : kPace * step) {
        makeHome();
        Forgetful calls(-1, isForOneThread);
        if (!isConfined)
            calls.letNothingBeConfined();
        const CleaningPlan planned = plan(hostSystemCalls(), true);
        CleaningReport report;
        bool isBegun = true;
        ScarceMemory::start(request, lack);
        try {
            report = performCleaning(calls, planned, {});
        } catch (const std::bad_alloc &) {
            isBegun = false; // no memory even for the report
        }
        const int made = ScarceMemory::end();
        requests = request < 0 ? made : requests;
        const QByteArray wrong = isBegun ? whatIsWrong(report, true) : QByteArray();
        QVERIFY2(wrong.isEmpty(), "request " + QByteArray::number(request) + ": " + wrong);
        QVERIFY(isBegun || exists(m_path + "/Downloads/wide/1/file"));
        refused += tree(m_path).size() > 4 ? 1 : 0;
    }
    QVERIFY2(refused * kPace * step > (kIsAllMemoryScarce ? 200 : 20), QByteArray::number(refused));
}

void TestCleaningMemory::goesOnWithTheNextLocation()
{
    class OneForgetful final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            if (qstrcmp(call, "readEntries") == 0 && m_count.fetch_add(1) == 0)
                throw std::bad_alloc();
            return {};
        }

    private:
        mutable std::atomic<int> m_count = 0;
    };
    const LogRecorder silenced;
    const SliceToClean slice = contentsOf({m_home->folder("Downloads"), m_home->folder("Large")});
    const CleaningReport report = clean(*m_home, {slice}, {}, OneForgetful());
    QVERIFY(exists(m_path + "/Downloads/wide/1/file"));
    QVERIFY(tree(m_path + "/Large").empty());
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().path, m_path + "/Downloads");
    QCOMPARE(report.refusals.first().reason, RefusalReason::OutOfMemory);
}

VANTOR_TEST_MAIN(TestCleaningMemory)
#include "tst_CleaningMemory.moc"
