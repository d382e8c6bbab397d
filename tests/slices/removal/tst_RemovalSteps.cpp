#include "slices/removal/RemovalSteps.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/calls/PoorListing.h"
#include "tests/support/calls/SubVolume.h"
#include "tests/support/run/TestMain.h"

#include <algorithm>
#include <cerrno>

class TestRemovalSteps final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void asksForKindsThatAreNotListed();
    void knowsExclusionsThatAreListedWithoutTheirNumbers();
    void leavesVolumesThatAreNoMounts_data();
    void leavesVolumesThatAreNoMounts();
    void countsNothingThatStaysInTheEnd();
    void explainsWhyAFolderCouldNotBeEntered();

private:
    CleaningReport cleanWith(const SystemCalls &calls, const FileUrls &excluded = {}) const
    {
        return clean(*m_home, {contentsOf({m_home->folder("Downloads")})}, excluding(excluded),
                     calls);
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_downloads;
};

void TestRemovalSteps::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads";
    for (const char *name : {"folder/inner/a", "folder/b", "c"})
        makeFile(m_downloads + '/' + name);
    makeLink(m_downloads + "/link", *m_scratch / "outside");
    makeFile(*m_scratch / "outside/precious");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestRemovalSteps::asksForKindsThatAreNotListed()
{
    const CleaningReport report = cleanWith(PoorListing());
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QVERIFY(tree(m_downloads).empty());
    QVERIFY(exists(*m_scratch / "outside/precious"));
}

void TestRemovalSteps::knowsExclusionsThatAreListedWithoutTheirNumbers()
{
    std::filesystem::create_hard_link(native(m_downloads + "/c"), native(m_downloads + "/twin"));
    const FileUrls excluded{m_home->file("Downloads/c"), m_home->folder("Downloads/folder/inner")};
    cleanWith(PoorListing(), excluded);
    QCOMPARE(tree(m_downloads),
             std::set<QByteArray>({"c", "twin", "folder", "folder/inner", "folder/inner/a"}));
}

void TestRemovalSteps::leavesVolumesThatAreNoMounts_data()
{
    QTest::addColumn<bool>("isForOneThread");
    QTest::addRow("one thread") << true;
    QTest::addRow("several threads") << false;
}

void TestRemovalSteps::leavesVolumesThatAreNoMounts()
{
    QFETCH(bool, isForOneThread);
    SubVolume volume(m_downloads + "/folder/inner");
    volume.setForOneThread(isForOneThread);
    const CleaningReport report = cleanWith(volume);
    QCOMPARE(tree(m_downloads), std::set<QByteArray>({"folder", "folder/inner", "folder/inner/a"}));
    QVERIFY(report.failures.isEmpty());
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().path, m_downloads + "/folder/inner");
    QCOMPARE(report.refusals.first().reason, RefusalReason::OtherFileSystem);
}

/// The last file of a folder is removed for good only when all have been taken aside.
void TestRemovalSteps::countsNothingThatStaysInTheEnd()
{
    class Stubborn final : public HookedCalls
    {
    public:
        bool isForOneThread(int) const override { return true; }
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return qstrcmp(call, "removeFile") == 0 ? std::optional(EIO) : std::nullopt;
        }
    };
    const CleaningReport report = cleanWith(Stubborn());
    QCOMPARE(report.failureCount, std::uint64_t(report.failures.size()));
    const std::set<QByteArray> left = tree(m_downloads);
    QCOMPARE(report.removedItems, 6 - left.size());
    for (const CleaningFailure &failure : report.failures)
        QVERIFY2(exists(failure.path), failure.path);
    QVERIFY(std::ranges::any_of(report.failures,
                                [](const auto &failure) { return failure.error == EIO; }));
}

void TestRemovalSteps::explainsWhyAFolderCouldNotBeEntered()
{
    QCOMPARE(refusalReason(ELOOP), RefusalReason::Changed);
    QCOMPARE(refusalReason(ENOTDIR), RefusalReason::Changed);
    QCOMPARE(refusalReason(EXDEV), RefusalReason::OtherFileSystem);
    QCOMPARE(refusalReason(EACCES), RefusalReason::Unreadable);
}

VANTOR_TEST_MAIN(TestRemovalSteps)
#include "tst_RemovalSteps.moc"
