#include "slices/CleaningLedger.h"

#include "tests/slices/CleaningKit.h"
#include "tests/slices/HookedCalls.h"
#include "tests/support/TestMain.h"

#include <cerrno>

class TestCleaningLedger final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void logsCandidatesAndEachRemoval();
    void logsNoCandidatesWhereItJudgesEachItem();
    void logsTheFilesOfASliceOnce();
    void logsWhatIsLocked();
    void stopsLoggingWhenThereAreVeryMany();
    void tellsTheObserver();
    void countsWhatItNoLongerLists();

private:
    CleaningReport cleanFolder(const FileUrls &excluded = {}) const
    {
        return clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, excluding(excluded));
    }
    QByteArray downloads(const QByteArray &relative) const
    {
        return m_path + "/Downloads/" + relative;
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_path;
};

void TestCleaningLedger::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_path = *m_scratch / "home";
    makeFolder(m_path + "/Downloads");
    m_home = std::make_unique<GrantedFolder>(m_path);
}

void TestCleaningLedger::logsCandidatesAndEachRemoval()
{
    makeFile(downloads("a b/c"));
    const LogRecorder log;
    cleanFolder();
    const QString text = stored(m_home->folder("Downloads/a b"));
    QCOMPARE(log.lines(), QStringList({QStringLiteral("(\"%1\")").arg(text), text}));
}

void TestCleaningLedger::logsNoCandidatesWhereItJudgesEachItem()
{
    for (const char *name : {"Deep/Keep", "Deep/a/b"})
        makeFile(downloads(name));
    const LogRecorder log;
    cleanFolder({m_home->file("Downloads/Deep/Keep")});
    QCOMPARE(log.lines(), QStringList({stored(m_home->folder("Downloads/Deep/a"))}));
}

void TestCleaningLedger::logsTheFilesOfASliceOnce()
{
    makeFile(downloads("a"));
    makeFile(downloads("b"));
    const FileUrls files{m_home->file("Downloads/b"), m_home->file("Downloads/a")};
    const LogRecorder log;
    clean(*m_home, {theFiles(files)});
    QCOMPARE(
        log.lines(),
        QStringList({QStringLiteral("(\"%1\", \"%2\")").arg(stored(files[0]), stored(files[1])),
                     stored(files[0]), stored(files[1])}));
}

void TestCleaningLedger::logsWhatIsLocked()
{
    class Locked final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return QByteArrayView(call) == "removeFile" ? std::optional(EPERM) : std::nullopt;
        }
    };
    makeFile(downloads("a"));
    makeFolder(downloads("b"));
    const LogRecorder log;
    const CleaningReport report =
        clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, {}, Locked());
    QCOMPARE(report.failures.size(), 1);
    QCOMPARE(report.failures.first().path, downloads("a"));
    QCOMPARE(report.failures.first().error, EPERM);
    QVERIFY(log.lines().contains(QStringLiteral("File might be locked: %1: Operation not permitted")
                                     .arg(stored(m_home->file("Downloads/a")))));
    QVERIFY(!exists(downloads("b"))); // cleaning goes on with the next item
}

void TestCleaningLedger::stopsLoggingWhenThereAreVeryMany()
{
    constexpr int kFiles = 10'100;
    for (int i = 0; i < kFiles; ++i)
        makeFile(downloads(QByteArray::number(i)), {});
    const LogRecorder log;
    QCOMPARE(cleanFolder().removedItems, std::uint64_t(kFiles));
    QCOMPARE(log.lines().size(), 10'002);
    QVERIFY(log.lines().first().endsWith(QStringLiteral(", and 9100 more)")));
    QCOMPARE(log.lines().last(), QStringLiteral("Further removals are not logged one by one"));
}

void TestCleaningLedger::tellsTheObserver()
{
    class Counter final : public CleaningObserver
    {
    public:
        void removedSoFar(std::uint64_t items) override { m_seen.push_back(items); }
        std::vector<std::uint64_t> m_seen;
    };
    for (int i = 0; i < 1100; ++i)
        makeFile(downloads("f" + QByteArray::number(i % 3) + '/' + QByteArray::number(i)), {});
    Counter counter;
    const CleaningPlan plan = makeCleaningPlan(hostSystemCalls(), *m_home,
                                               {contentsOf({m_home->folder("Downloads")})}, {});
    performCleaning(hostSystemCalls(), plan, {}, &counter);
    QCOMPARE(counter.m_seen, std::vector<std::uint64_t>({512, 1024, 1103}));
}

void TestCleaningLedger::countsWhatItNoLongerLists()
{
    const LogRecorder log;
    CleaningLedger ledger({{"/planned", RefusalReason::Link, ELOOP}}, nullptr);
    constexpr int kMany = CleaningReport::kMaxReported + 10;
    for (int i = 0; i < kMany; ++i) {
        ledger.failed("/f" + QByteArray::number(i), EPERM);
        ledger.refused("/r" + QByteArray::number(i), RefusalReason::Unreadable, EACCES);
    }
    const CleaningReport report = ledger.finish(false);
    QCOMPARE(report.failureCount, std::uint64_t(kMany));
    QCOMPARE(report.refusalCount, std::uint64_t(kMany + 1));
    QCOMPARE(report.failures.size(), CleaningReport::kMaxReported);
    QCOMPARE(report.refusals.size(), CleaningReport::kMaxReported + 1);
    QCOMPARE(report.refusals.first().path, QByteArray("/planned"));
    QCOMPARE(report.failures.last().path, QByteArray("/f9999"));
    QCOMPARE(log.lines().size(), 2 * CleaningReport::kMaxReported);
}

VANTOR_TEST_MAIN(TestCleaningLedger)
#include "tst_CleaningLedger.moc"
