#include "platform/system/HostSystemCalls.h"
#include "slices/plan/CleaningReportBuilder.h"

#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <cerrno>

class TestCleaningReportBuilder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysInOneRowThatRowsAreLost();
    void knowsWhatItNames();
    void init();

    void logsCandidatesAndEachRemoval();
    void logsNoCandidatesWhereItJudgesEachItem();
    void logsTheFilesOfASliceOnce();
    void logsWhatIsLocked();
    void logsWhatThePlanRefuses_data();
    void logsWhatThePlanRefuses();
    void logsThatNobodyKnowsWhatIsExcluded();
    void logsEverythingThatIsLeft_data();
    void logsEverythingThatIsLeft();
    void stopsLoggingWhenThereAreVeryMany();
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

void TestCleaningReportBuilder::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_path = *m_scratch / "home";
    makeFolder(m_path + "/Downloads");
    m_home = std::make_unique<GrantedFolder>(m_path);
}

void TestCleaningReportBuilder::logsCandidatesAndEachRemoval()
{
    makeFile(downloads("a b/c"));
    const LogRecorder log;
    cleanFolder();
    const QString text = stored(m_home->folder("Downloads/a b"));
    QCOMPARE(log.lines(), QStringList({QStringLiteral("(\"%1\")").arg(text), text}));
}

void TestCleaningReportBuilder::logsNoCandidatesWhereItJudgesEachItem()
{
    for (const char *name : {"Deep/Keep", "Deep/a/b"})
        makeFile(downloads(name));
    const LogRecorder log;
    cleanFolder({m_home->file("Downloads/Deep/Keep")});
    QCOMPARE(log.lines(), QStringList({stored(m_home->folder("Downloads/Deep/a"))}));
}

void TestCleaningReportBuilder::logsTheFilesOfASliceOnce()
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

void TestCleaningReportBuilder::logsWhatIsLocked()
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

void TestCleaningReportBuilder::logsWhatThePlanRefuses_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QString>("excluded");
    QTest::addColumn<QString>("line");
    const QString nothing;
    QTest::addRow("link") << QByteArray("link") << nothing
                          << QStringLiteral("file://%1/link: a link, or reached through one "
                                            "(Not a directory)");
    QTest::addRow("file") << QByteArray("file") << nothing
                          << QStringLiteral("file://%1/file: not a folder (Not a directory)");
    QTest::addRow("outside") << QByteArray("../elsewhere") << nothing
                             << QStringLiteral("file://%1/../elsewhere: not in the granted folder");
    QTest::addRow("gone exclusion")
        << QByteArray("Downloads") << QStringLiteral("file://%1/Downloads/gone")
        << QStringLiteral("file://%1/Downloads: something excluded inside cannot be found "
                          "(No such file or directory)");
    QTest::addRow("bad exclusion")
        << QByteArray("Downloads") << QStringLiteral("no path\n")
        << QStringLiteral("no%20path%0A: excluded, but not a path that can be read");
}

void TestCleaningReportBuilder::logsWhatThePlanRefuses()
{
    QFETCH(QByteArray, location);
    QFETCH(QString, excluded);
    QFETCH(QString, line);
    makeFile(downloads("a"));
    makeFile(m_path + "/file");
    makeLink(m_path + "/link", "Downloads");
    const QString home = QString::fromUtf8(m_path);
    QStringList exclusions;
    if (!excluded.isEmpty())
        exclusions.append(excluded.contains(u'%') ? excluded.arg(home) : excluded);
    const LogRecorder log;
    clean(*m_home, {contentsOf({m_home->folder(location)})},
          ExcludedPaths::fromStoredStrings(exclusions));
    const QString what = line.contains(u"%1") ? line.arg(home) : line;
    QCOMPARE(log.lines(), QStringList(QStringLiteral("File might be locked: ") + what));
    QVERIFY(exists(downloads("a")));
}

void TestCleaningReportBuilder::logsThatNobodyKnowsWhatIsExcluded()
{
    const LogRecorder log;
    CleaningReportBuilder({{QByteArray(), RefusalReason::UnknownExclusions, 0}}).finish(false);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("File might be locked: everything: "
                                                     "nobody knows what is excluded")));
}

void TestCleaningReportBuilder::logsEverythingThatIsLeft_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<int>("error");
    for (const char *call :
         {"openFolder", "readEntries", "statusOf", "removeFile", "removeFolder"}) {
        for (const int error : {EACCES, EIO, EXDEV})
            QTest::addRow("%s, errno %d", call, error) << QByteArray(call) << error;
    }
}

/// Whichever call fails: every item that still exists has a line, or lies in a folder that has one.
void TestCleaningReportBuilder::logsEverythingThatIsLeft()
{
    /// Fails every third of the calls of a name.
    class Failing final : public HookedCalls
    {
    public:
        Failing(const QByteArray &call, int error) : m_call(call), m_error(error) {}
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return m_call == call && ++m_number % 3 == 0 ? std::optional(m_error) : std::nullopt;
        }

    private:
        const QByteArray m_call;
        const int m_error;
        mutable std::atomic<int> m_number = 0;
    };
    QFETCH(QByteArray, call);
    QFETCH(int, error);
    for (int i = 0; i < 60; ++i)
        makeFile(downloads(QByteArray::number(i % 7) + '/' + QByteArray::number(i % 3) + '/' +
                           QByteArray::number(i)));
    const LogRecorder log;
    const CleaningReport report =
        clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, {}, Failing(call, error));
    const QStringList told = log.lines().filter(QStringLiteral("File might be locked: "));
    QCOMPARE(std::uint64_t(told.size()), report.failureCount + report.refusalCount);
    QVERIFY(!told.isEmpty());
    const auto isToldOf = [&](QByteArray path) {
        for (; path.size() >= m_path.size(); path.truncate(path.lastIndexOf('/'))) {
            if (!told.filter(QStringLiteral("file://%1: ").arg(QString::fromUtf8(path))).isEmpty())
                return true;
        }
        return false;
    };
    for (const QByteArray &left : tree(m_path + "/Downloads")) {
        const bool isFile = !QDir(QString::fromUtf8(downloads(left))).exists();
        QVERIFY2(!isFile || isToldOf(downloads(left)), left.constData());
    }
}

void TestCleaningReportBuilder::stopsLoggingWhenThereAreVeryMany()
{
    constexpr int kFiles = 10'100;
    for (int i = 0; i < kFiles; ++i)
        makeFile(downloads(QByteArray::number(i)), {});
    const LogRecorder log;
    QCOMPARE(cleanFolder().removedItems, std::uint64_t(kFiles));
    QCOMPARE(log.lines().size(), 10'002);
    QVERIFY(log.lines().first().endsWith(QStringLiteral(", and 9100 more)")));
    QCOMPARE(log.lines().last(), QStringLiteral("and 100 more removals"));
}

void TestCleaningReportBuilder::countsWhatItNoLongerLists()
{
    const LogRecorder log;
    CleaningReportBuilder builder({{"/planned", RefusalReason::Link, ELOOP}});
    constexpr int kMany = CleaningReport::kMaxReported + 10;
    for (int i = 0; i < kMany; ++i) {
        builder.failed("/f" + QByteArray::number(i), EPERM);
        builder.refused("/r" + QByteArray::number(i), RefusalReason::Unreadable, EACCES);
    }
    const CleaningReport report = builder.finish(false);
    QCOMPARE(report.failureCount, std::uint64_t(kMany));
    QCOMPARE(report.refusalCount, std::uint64_t(kMany + 1));
    QCOMPARE(report.failures.size(), CleaningReport::kMaxReported);
    QCOMPARE(report.refusals.size(), CleaningReport::kMaxReported + 1);
    QCOMPARE(report.refusals.first().path, QByteArray("/planned"));
    QCOMPARE(report.failures.last().path, QByteArray("/f9999"));
    QCOMPARE(log.lines().size(), 1 + 2 * CleaningReport::kMaxReported + 1);
    QCOMPARE(log.lines().last(), QStringLiteral("File might be locked: 20 more"));
}

void TestCleaningReportBuilder::saysInOneRowThatRowsAreLost()
{
    const LogRecorder silenced;
    CleaningReportBuilder builder({{"/planned", RefusalReason::Link, ENOTDIR}});
    builder.refused("/a", RefusalReason::Unreadable, EIO);
    for (int i = 0; i < 3; ++i)
        builder.tell([]() -> QByteArray { throw std::bad_alloc(); }, RefusalReason::Changed, 0);
    const CleaningReport report = builder.finish(false);
    QCOMPARE(report.refusalCount, 3U);
    QCOMPARE(report.refusals.size(), 3);
    QVERIFY(report.refusals.constLast().path.isEmpty());
    QCOMPARE(report.refusals.constLast().reason, RefusalReason::OutOfMemory);
}

void TestCleaningReportBuilder::knowsWhatItNames()
{
    const LogRecorder silenced;
    CleaningReportBuilder builder({{"/planned", RefusalReason::Link, ENOTDIR}});
    builder.refused("/refused", RefusalReason::Unreadable, EIO);
    builder.failed("/failed", EIO);
    QCOMPARE(builder.namedPaths(), std::set<QByteArray>({"/planned", "/refused", "/failed"}));
    for (int i = 0; i < CleaningReport::kMaxReported; ++i)
        builder.failed("/more", EIO);
    QVERIFY(!builder.namedPaths()); // the last is not in the list
}

VANTOR_TEST_MAIN(TestCleaningReportBuilder)
#include "tst_CleaningReportBuilder.moc"
