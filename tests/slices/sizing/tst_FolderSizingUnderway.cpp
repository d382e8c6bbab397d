#include "slices/sizing/FolderSizing.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <optional>

namespace {

constexpr qint64 kAll = 11111; ///< the bytes of the grown tree

/// Some files in some folders, so that each kind of call is made more than once.
void grow(const MadeTree &tree)
{
    tree.makeFile("a", 1);
    tree.makeFolder("folder");
    tree.makeFile("folder/b", 10);
    tree.makeFile("folder/c", 100);
    tree.makeFolder("folder/folder");
    tree.makeFile("folder/folder/d", 1000);
    tree.makeFolder("other");
    tree.makeFile("other/e", 10000);
    tree.makeFolder(".outside");
    tree.makeFile(".outside/large", 1'000'000);
}

FolderSize measured(const SystemCalls &calls, const MadeTree &tree)
{
    return measureFolder(calls, {tree.descriptor(), {}}, {}, 1);
}

int callsOfOneMeasure()
{
    const MadeTree tree;
    grow(tree);
    const WatchedSystemCalls calls([](int, WatchedCall, const char *) { return 0; });
    measured(calls, tree);
    return calls.count();
}

/// Does something before the k-th call of a measure, for each k.
template <typename Change, typename Check> void changeBeforeEachCall(Change change, Check check)
{
    const int count = callsOfOneMeasure();
    QVERIFY(count > 20);
    for (int k = 0; k < count; ++k) {
        const MadeTree tree;
        grow(tree);
        const WatchedSystemCalls calls([&](int number, WatchedCall, const char *) {
            if (number == k)
                change(tree);
            return 0;
        });
        check(measured(calls, tree));
    }
}

} // namespace

/// What happens to files while they are being measured.
class TestFolderSizingUnderway final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesEveryFailure_data();
    void survivesEveryFailure();
    void toleratesAFileThatVanishes();
    void toleratesAFolderThatVanishes();
    void toleratesAFileThatGrows();
    void isNotLedAstrayByALinkPutInPlaceOfAFolder();
    void isNotLedAstrayByAFolderThatIsMoved();
    void stopsBeforeAnyCall();
};

void TestFolderSizingUnderway::survivesEveryFailure_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isTold");
    for (const int error : {EACCES, EPERM, EIO, ENOMEM, EMFILE, ENFILE, ESTALE, EINTR, ENAMETOOLONG,
                            EOVERFLOW, EBADF})
        QTest::addRow("errno %d", error) << error << true;
    for (const int error : {ENOENT, ENOTDIR, ELOOP})
        QTest::addRow("errno %d", error) << error << false;
}

void TestFolderSizingUnderway::survivesEveryFailure()
{
    QFETCH(int, error);
    QFETCH(bool, isTold);
    const int count = callsOfOneMeasure();
    const MadeTree tree;
    grow(tree);
    for (int k = 0; k < count; ++k) {
        std::optional<WatchedCall> failed;
        const WatchedSystemCalls calls([&](int number, WatchedCall call, const char *) {
            if (number != k)
                return 0;
            failed = call;
            return error;
        });
        const FolderSize size = measured(calls, tree);
        QVERIFY(failed);
        QVERIFY(size.bytes >= 0 && size.bytes <= kAll);
        // A refused right is an answer, and descriptors that ran out are asked for once more.
        const bool isRepeated =
            *failed == WatchedCall::OpenFolder && k > 0 && (error == EMFILE || error == ENFILE);
        const bool isAnswer = *failed == WatchedCall::MayChangeEntries;
        if (isTold && !isAnswer && !isRepeated)
            QVERIFY2(!size.isComplete, QByteArray::number(k));
        if (!isTold && k > 4) // the location itself has been reached
            QVERIFY2(size.isComplete, QByteArray::number(k));
        if (isRepeated)
            QCOMPARE(size.bytes, kAll);
    }
}

void TestFolderSizingUnderway::toleratesAFileThatVanishes()
{
    changeBeforeEachCall([](const MadeTree &tree) { tree.remove("folder/c"); },
                         [](const FolderSize &size) {
                             QVERIFY(size.isComplete);
                             QVERIFY(size.bytes == kAll || size.bytes == kAll - 100);
                         });
}

void TestFolderSizingUnderway::toleratesAFolderThatVanishes()
{
    changeBeforeEachCall(
        [](const MadeTree &tree) {
            tree.remove("folder/folder/d");
            tree.remove("folder/folder");
        },
        [](const FolderSize &size) {
            QVERIFY(size.isComplete);
            QVERIFY(size.bytes == kAll || size.bytes == kAll - 1000);
        });
}

void TestFolderSizingUnderway::toleratesAFileThatGrows()
{
    changeBeforeEachCall(
        [](const MadeTree &tree) {
            QCOMPARE(::truncate(tree.path("folder/c").constData(), 200), 0);
        },
        [](const FolderSize &size) {
            QVERIFY(size.isComplete);
            QVERIFY(size.bytes == kAll || size.bytes == kAll + 100);
        });
}

void TestFolderSizingUnderway::isNotLedAstrayByALinkPutInPlaceOfAFolder()
{
    changeBeforeEachCall(
        [](const MadeTree &tree) {
            tree.rename("folder", ".aside");
            tree.makeLink("folder", ".outside");
        },
        [](const FolderSize &size) {
            QVERIFY(size.isComplete);
            QVERIFY(size.bytes < 1'000'000);
        });
}

void TestFolderSizingUnderway::isNotLedAstrayByAFolderThatIsMoved()
{
    changeBeforeEachCall(
        [](const MadeTree &tree) { tree.rename("folder/folder", ".outside/folder"); },
        [](const FolderSize &size) {
            QVERIFY(size.isComplete);
            QVERIFY(size.bytes == kAll || size.bytes == kAll - 1000);
        });
}

void TestFolderSizingUnderway::stopsBeforeAnyCall()
{
    const int count = callsOfOneMeasure();
    const MadeTree tree;
    grow(tree);
    for (int k = 0; k < count; ++k) {
        std::stop_source stop;
        int after = 0;
        const WatchedSystemCalls calls([&](int number, WatchedCall, const char *) {
            if (number == k)
                stop.request_stop();
            after += number > k ? 1 : 0;
            return 0;
        });
        const FolderSize size = measureFolder(calls, {tree.descriptor(), {}}, stop.get_token(), 1);
        QVERIFY(!size.isComplete);
        // The folder that is just being opened is still examined, but none of its entries.
        QVERIFY2(after <= 2, QByteArray::number(after));
    }
}

VANTOR_TEST_MAIN(TestFolderSizingUnderway)
#include "tst_FolderSizingUnderway.moc"
