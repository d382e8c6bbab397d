#include "slices/home/CacheInUse.h"

#include "platform/system/HostSystemCalls.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/MadeMachine.h"
#include "tests/support/run/OtherProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>

/// What of the caches programs are using.
class TestCacheInUse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void keepsTheFolderAroundAFileInUse();
    void seesARealProgram();
    void keepsOnlyWhatIsThere();
    void looksAtNothingButCaches();
    void looksAtNothingInAHomeWithALibrary();
    void looksOnceForLocationsThatFollowEachOther();
    void looksAgainWhenTheLookIsOld();
    void keepsTheWholeLocationWhenItCannotLook();
    void findsWhatItCanWhereProcessesCannotBeSeen();

private:
    QByteArrayList inUse(CacheInUse &caches, const QByteArray &location) const
    {
        const FileUrl url = m_home->url().appending(location, FileUrlKind::Folder);
        return m_home->relative(caches.entriesInUse(*m_home->access().anchoredPath(url), url));
    }
    QByteArrayList inUse(const QByteArray &location) const
    {
        CacheInUse caches(m_machine, m_home->survey());
        return inUse(caches, location);
    }

    std::unique_ptr<MadeHome> m_home;
    MadeMachine m_machine;
};

void TestCacheInUse::init()
{
    m_home = std::make_unique<MadeHome>(
        QByteArrayList{".cache/prog/deep/file", ".cache/program/file", ".cache/file",
                       ".var/app/org.a.A/cache/fonts/file", ".local/state/player/logs/p.log"});
    m_machine.usedFiles = QByteArrayList{};
    m_machine.isSeenWhole = true;
    m_machine.looksAtFiles = 0;
}

void TestCacheInUse::keepsTheFolderAroundAFileInUse()
{
    QCOMPARE(inUse(".cache"), QByteArrayList());
    m_machine.usedFiles = QByteArrayList{".cache/prog/deep/file",
                                         ".cache/prog/deep",
                                         ".cache/file",
                                         ".cache",
                                         ".var/app/org.a.A/cache/fonts/file",
                                         "Documents/thesis.odt"};
    QCOMPARE(inUse(".cache"), QByteArrayList({".cache/file/", ".cache/prog/"}));
    QCOMPARE(inUse(".var/app/org.a.A/cache"), QByteArrayList{".var/app/org.a.A/cache/fonts/"});
}

void TestCacheInUse::seesARealProgram()
{
    const FileUrl cache = m_home->url().appending(".cache", FileUrlKind::Folder);
    const AnchoredPath path = *m_home->access().anchoredPath(cache);
    const HomeLayout layout = m_home->survey();
    const auto found = [&] {
        return m_home->relative(CacheInUse(hostSystemCalls(), layout).entriesInUse(path, cache));
    };
    QCOMPARE(found(), QByteArrayList());
    OtherProcess other([&] {
        must(::open(m_home->path(".cache/prog/deep/file").constData(), O_RDONLY) >= 0, "a file");
    });
    QCOMPARE(found(), QByteArrayList{".cache/prog/"});
    other.end();
    QCOMPARE(found(), QByteArrayList());
}

void TestCacheInUse::keepsOnlyWhatIsThere()
{
    m_machine.usedFiles = QByteArrayList{".cache/gone/file", ".cache/prog/gone"};
    QCOMPARE(inUse(".cache"), QByteArrayList{".cache/prog/"});
    m_machine.setHook([](int, std::string_view name) { return name == "status" ? EIO : 0; });
    const QByteArrayList all = inUse(".cache");
    m_machine.setHook({});
    QCOMPARE(all, QByteArrayList({".cache/gone/", ".cache/prog/"}));
}

void TestCacheInUse::looksAtNothingButCaches()
{
    m_machine.usedFiles = QByteArrayList{".local/state/player/logs/p.log"};
    QCOMPARE(inUse(".local/state/player/logs"), QByteArrayList());
    QCOMPARE(inUse(".cache/prog"), QByteArrayList());
    QCOMPARE(m_machine.looksAtFiles, 0);
}

void TestCacheInUse::looksAtNothingInAHomeWithALibrary()
{
    m_home->make("Library/Caches/prog/file");
    m_machine.usedFiles = QByteArrayList{"Library/Caches/prog/file"};
    CacheInUse caches(m_machine, HomeLayout::withLibrary(m_home->url()));
    QCOMPARE(inUse(caches, "Library/Caches"), QByteArrayList());
    QCOMPARE(m_machine.looksAtFiles, 0);
}

void TestCacheInUse::looksOnceForLocationsThatFollowEachOther()
{
    CacheInUse caches(m_machine, m_home->survey(), std::chrono::hours(1));
    inUse(caches, ".cache");
    inUse(caches, ".var/app/org.a.A/cache");
    QCOMPARE(m_machine.looksAtFiles, 1);
}

void TestCacheInUse::looksAgainWhenTheLookIsOld()
{
    CacheInUse caches(m_machine, m_home->survey(), std::chrono::hours(0));
    QCOMPARE(inUse(caches, ".cache"), QByteArrayList());
    m_machine.usedFiles = QByteArrayList{".cache/prog/deep/file"};
    QCOMPARE(inUse(caches, ".cache"), QByteArrayList{".cache/prog/"});
}

void TestCacheInUse::keepsTheWholeLocationWhenItCannotLook()
{
    m_machine.usedFiles = tl::unexpected(EMFILE);
    QCOMPARE(inUse(".cache"), QByteArrayList{".cache/"});
}

void TestCacheInUse::findsWhatItCanWhereProcessesCannotBeSeen()
{
    m_machine.isSeenWhole = false;
    m_machine.usedFiles = QByteArrayList{".cache/prog/deep/file"};
    QCOMPARE(inUse(".cache"), QByteArrayList{".cache/prog/"});
    m_machine.usedFiles = tl::unexpected(ENOENT);
    QCOMPARE(inUse(".cache"), QByteArrayList());
}

VANTOR_TEST_MAIN(TestCacheInUse)
#include "tst_CacheInUse.moc"
