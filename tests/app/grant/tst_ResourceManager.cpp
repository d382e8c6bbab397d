#include "app/grant/ResourceManager.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/ResourceManagerReset.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <atomic>
#include <barrier>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kThreads = 8;

using StoredGrant = std::optional<QByteArray>;

/// Lets all threads begin at once and waits for them.
void inThreads(const std::function<void()> &work)
{
    std::barrier start(kThreads);
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            work();
        });
    }
}

} // namespace

class TestResourceManager final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isTheGrantedFolder();
    void isMadeOnceHoweverManyThreadsAskFirst();
    void asksForTheStoredGrantOnItsOwnThreadOnly();
    void countsAccessInBalanceUnderThreads();
    void holdsTheAccessForAScope();

    void knowsOnlyWhatLiesInTheFolder_data();
    void knowsOnlyWhatLiesInTheFolder();
    void leadsToTheGrantedFolderWhereverItGoes();

    void saysWhatIsWrongWithTheStoredGrant_data();
    void saysWhatIsWrongWithTheStoredGrant();
    void checkingTakesNothingIntoUse();
    void asksTheFileSystemNothingForWhatACheckHasFound();
    void looksUpAnotherGrantThanTheOneThatWasChecked();
    void usesTheFolderThatWasCheckedWhereverItGoes();

    void staysInForceWhenTheGrantIsRemoved();
    void worksInNoFolderThatTheUserNoLongerSeesGranted();
    void takesAnotherGrantAtTheNextStart();

    void endsTheProgramWithoutAValidGrant_data();
    void endsTheProgramWithoutAValidGrant();
    void assertsTheBracketWhileDebugging();

private:
    QByteArray grantOf(const QByteArray &name) const;
    FileUrl urlOf(const QByteArray &name) const;
    void beginRun();

    std::unique_ptr<ScratchFolder> m_scratch;
    StoredGrant m_stored;
    HookedSystem m_calls;
};

void TestResourceManager::init()
{
    m_scratch = std::make_unique<ScratchFolder>();
    m_scratch->makeFolder("anna/Downloads");
    m_scratch->makeFolder("annabel");
    m_stored = grantOf("anna");
    beginRun();
}

void TestResourceManager::cleanup()
{
    ResourceManagerReset::beginRun();
    m_scratch.reset();
}

QByteArray TestResourceManager::grantOf(const QByteArray &name) const
{
    return makeGrant(hostSystemCalls(), m_scratch->path(name)).value_or(QByteArray());
}

FileUrl TestResourceManager::urlOf(const QByteArray &name) const
{
    return FileUrl::fromPath(m_scratch->path(name), FileUrlKind::Folder);
}

void TestResourceManager::beginRun()
{
    ResourceManagerReset::beginRun([this] { return m_stored; });
}

void TestResourceManager::isTheGrantedFolder()
{
    QCOMPARE(ResourceManager::homeFolder().absoluteString(), urlOf("anna").absoluteString());
}

void TestResourceManager::isMadeOnceHoweverManyThreadsAskFirst()
{
    // The anchor is opened when the manager is made: another one would be another descriptor.
    std::mutex mutex;
    std::set<std::shared_ptr<const FileDescriptor>> anchors;
    inThreads([&] {
        const AccessScope scope(ResourceManager::access());
        const auto place = ResourceManager::access().anchoredPath(urlOf("anna"));
        const std::scoped_lock lock(mutex);
        anchors.insert(place ? place->anchor : nullptr);
    });
    QCOMPARE(anchors.size(), std::size_t(1));
    QVERIFY(*anchors.begin());
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
}

void TestResourceManager::asksForTheStoredGrantOnItsOwnThreadOnly()
{
    std::atomic<int> elsewhere = 0;
    ResourceManagerReset::beginRun([this, &elsewhere, here = std::this_thread::get_id()] {
        elsewhere += std::this_thread::get_id() == here ? 0 : 1;
        return m_stored;
    });
    inThreads([this] {
        const AccessScope scope(ResourceManager::access());
        ResourceManager::homeFolder();
        ResourceManager::access().anchoredPath(urlOf("anna"));
        ResourceManager::checkStoredGrant();
    });
    QCOMPARE(elsewhere.load(), 0);
}

void TestResourceManager::countsAccessInBalanceUnderThreads()
{
    constexpr int kRounds = 10'000;
    std::atomic<int> uncounted = 0;
    inThreads([&] {
        for (int i = 0; i < kRounds; ++i) {
            ResourceManager::startAccessing();
            ResourceManager::startAccessing();
            if (ResourceManager::accessCount() < 2)
                ++uncounted;
            ResourceManager::stopAccessing();
            ResourceManager::stopAccessing();
        }
    });
    QCOMPARE(uncounted.load(), 0);
    QCOMPARE(ResourceManager::accessCount(), 0);
}

void TestResourceManager::holdsTheAccessForAScope()
{
    {
        const AccessScope outer(ResourceManager::access());
        const AccessScope inner(ResourceManager::access());
        QCOMPARE(ResourceManager::accessCount(), 2);
    }
    QCOMPARE(ResourceManager::accessCount(), 0);
}

void TestResourceManager::knowsOnlyWhatLiesInTheFolder_data()
{
    QTest::addColumn<QByteArray>("below"); // from the folder that holds the home folder
    QTest::addColumn<bool>("isKnown");
    QTest::addColumn<QByteArray>("relativePath");
    const auto known = [](const QByteArray &below, const QByteArray &relativePath) {
        QTest::addRow("%s", below.toPercentEncoding().constData()) << below << true << relativePath;
    };
    const auto unknown = [](const QByteArray &below) {
        QTest::addRow("%s", below.toPercentEncoding().constData())
            << below << false << QByteArray();
    };
    known("anna", "");
    known("anna/", "");
    known("anna/Downloads", "Downloads");
    known("anna/Library/Caches/a\xff", "Library/Caches/a\xff");
    known("anna/..hidden", "..hidden");
    known("anna/not there", "not there");
    unknown("");
    unknown("annabel");
    unknown("anna-old/Downloads");
    unknown("Anna/Downloads");
    unknown("ann");
    unknown("anna/../annabel");
    unknown("anna/./Downloads");
    unknown("anna/Downloads/..");
}

void TestResourceManager::knowsOnlyWhatLiesInTheFolder()
{
    QFETCH(QByteArray, below);
    QFETCH(bool, isKnown);
    const AccessScope scope(ResourceManager::access());
    const auto place = ResourceManager::access().anchoredPath(urlOf(below));
    QCOMPARE(place.has_value(), isKnown);
    if (place)
        QTEST(place->relativePath, "relativePath");
    QVERIFY(!ResourceManager::access().anchoredPath(FileUrl()));
}

void TestResourceManager::leadsToTheGrantedFolderWhereverItGoes()
{
    QVERIFY(ResourceManager::homeFolder().isValid());
    QCOMPARE(::rename(m_scratch->path("anna").constData(), m_scratch->path("moved").constData()),
             0);
    QCOMPARE(::rename(m_scratch->path("annabel").constData(), m_scratch->path("anna").constData()),
             0);
    const AccessScope scope(ResourceManager::access());
    const auto place = ResourceManager::access().anchoredPath(urlOf("anna/Downloads"));
    QVERIFY(place);
    QCOMPARE(::faccessat(place->anchor->get(), place->relativePath.constData(), F_OK, 0), 0);
}

void TestResourceManager::saysWhatIsWrongWithTheStoredGrant_data()
{
    QTest::addColumn<StoredGrant>("stored");
    QTest::addColumn<QByteArray>("failure");
    const ScratchFolder passing;
    QTest::addRow("none") << StoredGrant() << QByteArray("missing");
    QTest::addRow("no bytes") << StoredGrant(QByteArray()) << QByteArray("damaged");
    QTest::addRow("other bytes") << StoredGrant("/home/anna") << QByteArray("damaged");
    QTest::addRow("a folder that is no more")
        << StoredGrant(makeGrant(hostSystemCalls(), passing.path()).value_or(QByteArray()))
        << QByteArray("gone");
}

void TestResourceManager::saysWhatIsWrongWithTheStoredGrant()
{
    QVERIFY(!ResourceManager::checkStoredGrant());
    QFETCH(StoredGrant, stored);
    m_stored = stored;
    const auto failure = ResourceManager::checkStoredGrant();
    QVERIFY(failure);
    QTEST(QByteArray(nameOf(*failure)), "failure");
}

void TestResourceManager::checkingTakesNothingIntoUse()
{
    QVERIFY(!ResourceManager::checkStoredGrant());
    QVERIFY(ResourceManager::isInForceFor(grantOf("anna")));
    m_stored = grantOf("annabel");
    QVERIFY(!ResourceManager::checkStoredGrant());
    QVERIFY(ResourceManager::isInForceFor(grantOf("annabel")));
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("annabel"));
}

void TestResourceManager::asksTheFileSystemNothingForWhatACheckHasFound()
{
    ResourceManagerReset::beginRun([this] { return m_stored; }, m_calls);
    QCOMPARE(m_calls.callCount(), 0);
    QVERIFY(!ResourceManager::checkStoredGrant());
    QVERIFY(!ResourceManager::check(grantOf("annabel"))); // the late answer to an earlier look
    QVERIFY(m_calls.callCount() > 0);
    m_calls.setHook([](int, std::string_view) { return EIO; });
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    const AccessScope scope(ResourceManager::access());
    QVERIFY(ResourceManager::access().anchoredPath(urlOf("anna")));
    QCOMPARE(m_calls.callCount(), 0);
}

/// The folder that was found for one grant must never serve another grant.
void TestResourceManager::looksUpAnotherGrantThanTheOneThatWasChecked()
{
    QVERIFY(!ResourceManager::checkStoredGrant());
    m_stored = grantOf("annabel");
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("annabel"));
    m_stored = grantOf("anna");
    beginRun();
    QVERIFY(!ResourceManager::check(grantOf("annabel")));
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    const AccessScope scope(ResourceManager::access());
    QVERIFY(!ResourceManager::access().anchoredPath(urlOf("annabel")));
}

void TestResourceManager::usesTheFolderThatWasCheckedWhereverItGoes()
{
    QVERIFY(!ResourceManager::checkStoredGrant());
    const auto move = [this](const char *from, const char *to) {
        return ::rename(m_scratch->path(from).constData(), m_scratch->path(to).constData()) == 0;
    };
    QVERIFY(move("anna", "moved") && move("annabel", "anna"));
    QVERIFY(ResourceManager::checkStoredGrant());
    const AccessScope scope(ResourceManager::access());
    const auto place = ResourceManager::access().anchoredPath(urlOf("anna/Downloads"));
    QVERIFY(place);
    QCOMPARE(::faccessat(place->anchor->get(), place->relativePath.constData(), F_OK, 0), 0);
}

void TestResourceManager::staysInForceWhenTheGrantIsRemoved()
{
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    m_stored.reset();
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    const AccessScope scope(ResourceManager::access());
    QVERIFY(ResourceManager::access().anchoredPath(urlOf("anna")));
}

void TestResourceManager::worksInNoFolderThatTheUserNoLongerSeesGranted()
{
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    m_stored = grantOf("annabel");
    QVERIFY(!ResourceManager::isInForceFor(*m_stored));
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    const AccessScope scope(ResourceManager::access());
    std::atomic<int> found = 0;
    inThreads([this, &found] {
        found += ResourceManager::access().anchoredPath(urlOf("anna/Downloads")) ? 1 : 0;
    });
    QCOMPARE(found.load(), 0);
    QVERIFY(!ResourceManager::access().anchoredPath(urlOf("anna/Downloads")));
    QVERIFY(!ResourceManager::access().anchoredPath(urlOf("annabel")));

    m_stored = grantOf("anna");
    QVERIFY(ResourceManager::isInForceFor(*m_stored));
    QVERIFY(ResourceManager::access().anchoredPath(urlOf("anna/Downloads")));
}

void TestResourceManager::takesAnotherGrantAtTheNextStart()
{
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    m_stored = grantOf("annabel");
    beginRun();
    QVERIFY(ResourceManager::isInForceFor(*m_stored));
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("annabel"));
}

void TestResourceManager::endsTheProgramWithoutAValidGrant_data()
{
    QTest::addColumn<StoredGrant>("stored");
    QTest::addColumn<std::function<void()>>("use");
    using Use = std::function<void()>;
    const Use homeFolder = [] { ResourceManager::homeFolder(); };
    QTest::addRow("nothing stored") << StoredGrant() << homeFolder;
    QTest::addRow("damaged") << StoredGrant("bytes") << homeFolder;
    QTest::addRow("on start") << StoredGrant() << Use([] { ResourceManager::startAccessing(); });
    QTest::addRow("on stop") << StoredGrant() << Use([] { ResourceManager::stopAccessing(); });
    QTest::addRow("on access") << StoredGrant()
                               << Use([] { ResourceManager::access().startAccessing(); });
    QTest::addRow("no source") << StoredGrant() << Use([] {
        ResourceManagerReset::beginRun();
        ResourceManager::homeFolder();
    });
}

void TestResourceManager::endsTheProgramWithoutAValidGrant()
{
    QFETCH(StoredGrant, stored);
    QFETCH(std::function<void()>, use);
    m_stored = stored;
    const ChildOutcome outcome = runInChild(ChildUser::Same, [&use] {
        use();
        return 0;
    });
    QCOMPARE(outcome.signal, SIGABRT);
    QVERIFY2(outcome.errorText.contains("the home folder is used"), outcome.errorText.constData());
}

void TestResourceManager::assertsTheBracketWhileDebugging()
{
    const ChildOutcome unbalanced = runInChild(ChildUser::Same, [] {
        ResourceManager::stopAccessing();
        return 0;
    });
    const ChildOutcome outside = runInChild(ChildUser::Same, [this] {
        ResourceManager::access().anchoredPath(urlOf("anna"));
        return 0;
    });
#ifdef QT_NO_DEBUG
    const int expected = 0;
#else
    const int expected = SIGABRT;
#endif
    QCOMPARE(unbalanced.signal, expected);
    QCOMPARE(outside.signal, expected);
}

VANTOR_TEST_MAIN(TestResourceManager)
#include "tst_ResourceManager.moc"
