#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/slices/kit/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <atomic>
#include <cerrno>

namespace {

/// Counts the calls, and fails one of them.
class OneFault final : public HookedCalls
{
public:
    OneFault(int call, int error, bool isInMemory = true)
        : m_call(call), m_error(error), m_isInMemory(isInMemory)
    {
    }

    bool isInMemory(int) const override { return m_isInMemory; }
    std::optional<int> before(const char *call, int, const char *) const override
    {
        if (m_count.fetch_add(1) != m_call)
            return {};
        m_failed = call;
        return m_error;
    }
    int count() const { return m_count; }
    QByteArray failed() const { return m_failed.load(); }

private:
    int m_call;
    int m_error;
    bool m_isInMemory;
    mutable std::atomic<int> m_count = 0;
    mutable std::atomic<const char *> m_failed = "";
};

} // namespace

class TestCleaningFaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothingWhicheverCallFails_data();
    void losesNothingWhicheverCallFails();
    void leavesAPartlyListedFolderWholly();
    void staysSilentAboutWhatIsGoneAlready();

private:
    struct Outcome
    {
        CleaningReport report;
        std::set<QByteArray> left;
        int calls = 0;
        QByteArray failed;
    };
    static Outcome cleanWith(int call, int error, bool isInMemory, bool isConfined);
    static void makeTree(const QByteArray &home);
};

/// Every kind of entry, exclusions at two depths, a package, and one level more than the remover
/// holds open.
void TestCleaningFaults::makeTree(const QByteArray &home)
{
    for (const char *name : {"Keep/a", "b", "c/d", "c/e/f", "c/e/.g", "h/kept", "h/i/j", "P.app/k",
                             "q/1/2/3/4/5/6/7/8/9/10/11/12/13/14/deep", "q/1/2/r"})
        makeFile(home + "/Downloads/" + name);
    makeFolder(home + "/Downloads/empty");
    makeLink(home + "/Downloads/link", home);
    makeFile(home + "/Library/one");
    makeFile(home + "/Library/two");
}

TestCleaningFaults::Outcome TestCleaningFaults::cleanWith(int call, int error, bool isInMemory,
                                                          bool isConfined)
{
    const CleaningGround scratch;
    const QByteArray home = scratch / "home";
    makeTree(home);
    const GrantedFolder granted(home);
    const FileUrls excluded{granted.folder("Downloads/Keep"), granted.file("Downloads/h/kept"),
                            granted.file("Library/two")};
    const QList<SliceToClean> slices{
        contentsOf({granted.folder("Downloads")}),
        theFiles({granted.file("Library/one"), granted.file("Library/two")})};
    OneFault calls(call, error, isInMemory);
    if (!isConfined)
        calls.letNothingBeConfined();
    const LogRecorder silenced;
    const CleaningReport report = clean(granted, slices, excluding(excluded), calls);
    Outcome outcome{report, {}, calls.count(), calls.failed()};
    for (const QByteArray &path : tree(home))
        outcome.left.insert(home + '/' + path);
    // Recognised by their ends: the scratch folder is a different one each time.
    for (const char *kept : {"Downloads/Keep/a", "Downloads/h/kept", "Library/two"}) {
        if (!exists(home + '/' + kept))
            qFatal("call %d, errno %d: lost %s", call, error, kept);
    }
    return outcome;
}

void TestCleaningFaults::losesNothingWhicheverCallFails_data()
{
    QTest::addColumn<bool>("isInMemory");
    QTest::addColumn<bool>("isConfined");
    QTest::addColumn<QList<int>>("errors");
    const QList<int> all{EIO,   EACCES,  EPERM,  EBUSY, ENOMEM, EMFILE, ENOTEMPTY, EXDEV,
                         ELOOP, ENOTDIR, EISDIR, EROFS, ESTALE, EINTR,  ENOENT};
    QTest::addRow("in memory") << true << false << all;
    QTest::addRow("on disk") << false << false
                             << QList<int>{EIO, EACCES, EBUSY, EMFILE, ESTALE, ENOENT};
    QTest::addRow("confined") << true << true << QList<int>{EACCES, ENOENT};
}

void TestCleaningFaults::losesNothingWhicheverCallFails()
{
    QFETCH(bool, isInMemory);
    QFETCH(bool, isConfined);
    QFETCH(QList<int>, errors);
    constexpr std::size_t kKept = 7; // two folders around, three files and the folders of theirs
    const Outcome sound = cleanWith(-1, 0, isInMemory, isConfined);
    QCOMPARE(sound.left.size(), kKept);
    QVERIFY(sound.calls > 80);
    const std::size_t descriptors = openDescriptors();
    int told = 0;
    for (int call = 0; call < sound.calls; ++call) {
        for (const int error : errors) {
            const Outcome outcome = cleanWith(call, error, isInMemory, isConfined);
            const auto where = QByteArray::number(call) + ' ' + outcome.failed + ", errno " +
                               QByteArray::number(error);
            const bool isSilent =
                outcome.report.failures.isEmpty() && outcome.report.refusals.isEmpty();
            told += isSilent ? 0 : 1;
            QVERIFY2(!isSilent || error == ENOENT || outcome.left.size() == kKept, where);
            const auto isReported = [&](const auto &entry) {
                return std::any_of(outcome.left.begin(), outcome.left.end(), [&](const auto &path) {
                    return path == entry.path || path.startsWith(entry.path + '/');
                });
            };
            QVERIFY2(std::all_of(outcome.report.failures.begin(), outcome.report.failures.end(),
                                 isReported),
                     where);
        }
    }
    QCOMPARE(openDescriptors(), descriptors);
    QVERIFY(told > sound.calls * (errors.size() - 1) * 2 / 3);
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
            if (QByteArrayView(call) == "removeFile")
                (void)hostSystemCalls().removeFile(parent, name);
            if (QByteArrayView(call) == "removeFolder")
                (void)hostSystemCalls().removeFolder(parent, name);
            return {};
        }
    };
    const CleaningGround scratch;
    makeTree(scratch / "home");
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report =
        clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, Quicker());
    QVERIFY(tree(scratch / "home/Downloads").empty());
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QCOMPARE(report.removedItems, std::uint64_t(0));
}

VANTOR_TEST_MAIN(TestCleaningFaults)
#include "tst_CleaningFaults.moc"
