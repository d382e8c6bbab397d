#include "slices/removal/SequentialRemover.h"

#include "tests/slices/kit/Interlopers.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/TestMain.h"

#include <fcntl.h>
#include <sys/resource.h>

namespace {

/// Lets this process open no more than 64 files at a time.
class FewDescriptors final
{
public:
    FewDescriptors()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{64, m_before.rlim_max};
        must(::setrlimit(RLIMIT_NOFILE, &few) == 0, "a limit of descriptors");
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;

private:
    rlimit m_before{};
};

} // namespace

class TestSequentialRemover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesADeepTreeWithFewDescriptors_data();
    void removesADeepTreeWithFewDescriptors();
    void comesBackToFoldersItClosed();
    void doesNotFollowAFolderThatWasMovedAway();
};

void TestSequentialRemover::removesADeepTreeWithFewDescriptors_data()
{
    QTest::addColumn<CleaningGround::Medium>("medium");
    QTest::addColumn<int>("levels");
    QTest::addColumn<bool>("isConfined");
    // For each step of a confined thread the kernel goes up all levels.
    QTest::addRow("in memory") << CleaningGround::Medium::Memory << 1'000 << true;
    QTest::addRow("unconfined") << CleaningGround::Medium::Memory << 10'000 << false;
    QTest::addRow("on disk") << CleaningGround::Medium::Disk << 1'000 << true; // slow to make
}

void TestSequentialRemover::removesADeepTreeWithFewDescriptors()
{
    QFETCH(CleaningGround::Medium, medium);
    QFETCH(int, levels);
    QFETCH(bool, isConfined);
    HookedSystem calls;
    if (!isConfined)
        calls.letNothingBeConfined();
    const QByteArray name(100, 'd');
    const CleaningGround scratch(medium);
    makeFolder(scratch / "home/Downloads");
    FileDescriptor folder(::open((scratch / "home/Downloads").constData(), O_RDONLY));
    for (int i = 0; i < levels; ++i) {
        ::mkdirat(folder.get(), name.constData(), 0700);
        FileDescriptor(::openat(folder.get(), "file", O_CREAT | O_WRONLY, 0600)).reset();
        folder = FileDescriptor(::openat(folder.get(), name.constData(), O_RDONLY));
    }
    QVERIFY(folder.isValid());
    folder.reset();
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report = [&] {
        const FewDescriptors limited;
        return clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, calls);
    }();
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QCOMPARE(report.removedItems, std::uint64_t(2 * levels));
    QVERIFY(tree(scratch / "home/Downloads").empty());
}

/// Every folder on the way holds more that is due after the way back.
void TestSequentialRemover::comesBackToFoldersItClosed()
{
    const CleaningGround scratch;
    QByteArray folder = scratch / "home/Downloads";
    for (int level = 0; level < 40; ++level) {
        for (const char *name : {"0", "y", "z/z", "b/b/b"})
            makeFile(folder + '/' + name);
        folder += "/m";
    }
    makeFile(folder);
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report = clean(granted, {contentsOf({granted.folder("Downloads")})});
    QVERIFY(report.failures.isEmpty() && report.refusals.isEmpty());
    QVERIFY(tree(scratch / "home/Downloads").empty());
}

/// Of a deep tree the outer folders are not held open. One of them is moved to a place whose items
/// have the very names that still wait to be removed.
void TestSequentialRemover::doesNotFollowAFolderThatWasMovedAway()
{
    const CleaningGround scratch;
    const QByteArray top = scratch / "home/Downloads/1/2";
    const QByteArray deep = top + "/3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18";
    const auto makeAll = [&] {
        for (const char *name : {"0", "x", "y", "z"}) { // listed on both sides of "3", at any order
            makeFile(top + '/' + name);
            makeFile(scratch / "outside/" + name, "precious");
        }
        makeFile(deep + "/file");
    };
    makeAll();
    const GrantedFolder granted(scratch / "home");
    const auto cleanOnce = [&](int call) {
        Interloper calls({{call, [&] { move(top + "/3", scratch / "outside/3"); }}});
        calls.letNothingBeConfined();
        const CleaningReport report =
            clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, calls);
        const bool isTold = exists(top) == !report.refusals.isEmpty();
        return std::pair(calls.count(), isTold);
    };
    const LogRecorder silenced;
    const int calls = cleanOnce(-1).first;
    int refused = 0;
    for (int call = 0; call < calls; ++call) {
        makeAll();
        QVERIFY(cleanOnce(call).second);
        for (const char *name : {"0", "x", "y", "z"})
            QVERIFY2(exists(scratch / "outside/" + name), QByteArray::number(call));
        refused += exists(top) ? 1 : 0;
        std::filesystem::remove_all(native(scratch / "home/Downloads/1"));
        std::filesystem::remove_all(native(scratch / "outside/3"));
    }
    QVERIFY(refused > 10); // the way back was lost, and that was noticed
}

VANTOR_TEST_MAIN(TestSequentialRemover)
#include "tst_SequentialRemover.moc"
