#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

namespace {

using Medium = CleaningGround::Medium;

} // namespace

Q_DECLARE_METATYPE(CleaningGround::Medium)

/// What a cleaning does about locations that programs may use.
class TestCleaningInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();

    void asksAboutAPlaceWhenAllElseInItsFolderIsGone();
    void asksAboutNothingElse();
    void keepsWhatIsInUseAndTellsOfIt();
    void keepsWhatIsInUseBelowAndRemovesTheRestOfTheWay();
    void removesTheWayToWhatIsNotInUse();
    void keepsALocationThatIsInUse();
    void keepsAFileThatIsInUse();
    void keepsWhatIsInUseWhenItComesToTheLocation();
    void tellsNothingOfWhatIsKeptAnyway();
    void asksNothingOnceItIsStopped();

private:
    CleaningReport clean(const QByteArrayList &programLocations, const FileUrls &excluded = {},
                         const SystemCalls &calls = hostSystemCalls(),
                         const std::stop_token &stop = {})
    {
        SliceToClean slice = contentsOf({m_home->folder("caches")});
        for (const QByteArray &location : programLocations)
            slice.programLocations.append(m_home->folder(location));
        const auto plan = makeCleaningPlan(calls, *m_home, {slice}, excluding(excluded));
        return performCleaning(calls, plan, stop,
                               [this](const CleaningLocation &, const FileUrl &entry) {
                                   m_asked.append(entry.path().sliced(m_path.size() + 1));
                                   return m_inUse ? m_inUse(entry) : FileUrls();
                               });
    }
    /// Not yet when the cleaning comes to the location.
    void useAtItsTurn(const QByteArray &inUse)
    {
        m_inUse = [url = m_home->folder(inUse)](const FileUrl &entry) {
            const bool isItsTurn =
                entry.lastPathComponent() != "caches" && url.path().startsWith(entry.path());
            return isItsTurn ? FileUrls{url} : FileUrls();
        };
    }

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_path;
    std::unique_ptr<GrantedFolder> m_home;
    std::function<FileUrls(const FileUrl &entry)> m_inUse;
    QByteArrayList m_asked;
};

/// In memory one thread cleans, on a disk two.
void TestCleaningInUse::initTestCase_data()
{
    QTest::addColumn<Medium>("medium");
    QTest::addRow("in memory") << Medium::Memory;
    QTest::addRow("on a disk") << Medium::Disk;
}

void TestCleaningInUse::init()
{
    QFETCH_GLOBAL(Medium, medium);
    m_scratch = std::make_unique<CleaningGround>(medium);
    m_path = *m_scratch / "home";
    for (const char *name :
         {"browser/a", "browser/b/c", "maker/mail/a", "maker/other", "a/b", "z/y/x", "file"})
        makeFile(m_path + "/caches/" + name);
    m_home = std::make_unique<GrantedFolder>(m_path);
    m_inUse = {};
    m_asked.clear();
}

void TestCleaningInUse::asksAboutAPlaceWhenAllElseInItsFolderIsGone()
{
    std::vector<std::set<QByteArray>> found;
    m_inUse = [&](const FileUrl &) {
        found.push_back(tree(m_path + "/caches"));
        return FileUrls();
    };
    clean({"caches/browser"});
    QCOMPARE(m_asked, QByteArrayList({"caches", "caches/browser"}));
    QCOMPARE(found.back(),
             std::set<QByteArray>({"browser", "browser/a", "browser/b", "browser/b/c"}));
    QVERIFY(tree(m_path + "/caches").empty());
}

void TestCleaningInUse::asksAboutNothingElse()
{
    clean({"caches", "caches/not there", "elsewhere/a", "caches/browser", "caches/browser/b"});
    QCOMPARE(m_asked, QByteArrayList({"caches", "caches/browser"}));
}

void TestCleaningInUse::keepsWhatIsInUseAndTellsOfIt()
{
    useAtItsTurn("caches/browser");
    const CleaningReport report = clean({"caches/browser", "caches/a"});
    QCOMPARE(tree(m_path + "/caches"),
             std::set<QByteArray>({"browser", "browser/a", "browser/b", "browser/b/c"}));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(report.refusals.value(0).path, m_path + "/caches/browser");
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
    QCOMPARE(report.failureCount, 0U);
}

void TestCleaningInUse::keepsWhatIsInUseBelowAndRemovesTheRestOfTheWay()
{
    useAtItsTurn("caches/maker/mail");
    const CleaningReport report = clean({"caches/maker/mail"});
    QCOMPARE(tree(m_path + "/caches"),
             std::set<QByteArray>({"maker", "maker/mail", "maker/mail/a"}));
    QCOMPARE(report.refusals.value(0).path, m_path + "/caches/maker/mail");
}

void TestCleaningInUse::removesTheWayToWhatIsNotInUse()
{
    QCOMPARE(clean({"caches/maker/mail"}).refusalCount, 0U);
    QCOMPARE(m_asked, QByteArrayList({"caches", "caches/maker"}));
    QVERIFY(tree(m_path + "/caches").empty());
}

void TestCleaningInUse::keepsALocationThatIsInUse()
{
    m_inUse = [](const FileUrl &entry) { return FileUrls{entry}; };
    const std::set<QByteArray> before = tree(m_path);
    QCOMPARE(clean({"caches"}).refusals.value(0).path, m_path + "/caches");
    QCOMPARE(tree(m_path), before);
}

void TestCleaningInUse::keepsAFileThatIsInUse()
{
    const FileUrl file = m_home->file("caches/file");
    const auto plan = makeCleaningPlan(hostSystemCalls(), *m_home, {theFiles({file})}, {});
    const CleaningReport report = performCleaning(
        hostSystemCalls(), plan, {},
        [](const CleaningLocation &, const FileUrl &entry) { return FileUrls{entry}; });
    QVERIFY(exists(file.path()));
    QCOMPARE(report.refusals.value(0).path, file.path());
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
}

/// Also what is no program's location, and what is in use no more a moment later.
void TestCleaningInUse::keepsWhatIsInUseWhenItComesToTheLocation()
{
    m_inUse = [this](const FileUrl &entry) {
        return entry.lastPathComponent() == "caches"
                   ? FileUrls{m_home->folder("caches/z"), m_home->folder("caches/file")}
                   : FileUrls();
    };
    const CleaningReport report = clean({"caches/browser"});
    QCOMPARE(tree(m_path + "/caches"), std::set<QByteArray>({"z", "z/y", "z/y/x", "file"}));
    QCOMPARE(report.refusalCount, 2U);
    QCOMPARE(report.refusals.value(0).path, m_path + "/caches/z");
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::InUse);
    QCOMPARE(report.refusals.value(1).path, m_path + "/caches/file");
    QCOMPARE(report.failureCount, 0U);
}

void TestCleaningInUse::tellsNothingOfWhatIsKeptAnyway()
{
    useAtItsTurn("caches/browser");
    QCOMPARE(clean({"caches/browser"}, {m_home->folder("caches/browser")}).refusalCount, 0U);
    QVERIFY(exists(m_path + "/caches/browser/b/c"));
}

void TestCleaningInUse::asksNothingOnceItIsStopped()
{
    std::stop_source stop;
    const HookedSystem calls([&](int, std::string_view name) {
        if (name == "removeFile")
            stop.request_stop();
        return 0;
    });
    useAtItsTurn("caches/browser");
    QCOMPARE(clean({"caches/browser"}, {}, calls, stop.get_token()).refusalCount, 0U);
    QCOMPARE(m_asked, QByteArrayList{"caches"});
}

VANTOR_TEST_MAIN(TestCleaningInUse)
#include "tst_CleaningInUse.moc"
