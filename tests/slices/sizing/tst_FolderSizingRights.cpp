#include "platform/system/HostSystemCalls.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <sys/xattr.h>

namespace {

constexpr unsigned kRoot = 0;

/// With one thread: the child of a process with several threads must start none.
FolderSize measured(const MadeTree &tree, const QByteArray &location)
{
    return measureFolder(hostSystemCalls(), {tree.descriptor(), location}, {}, 1);
}

/// "bytes", "bytes, incomplete", or "bytes (deletable : not immutable)".
QByteArray textOf(const FolderSize &size)
{
    QByteArray text = QByteArray::number(size.bytes);
    if (size.item)
        text += size.item->isDeletable ? " (1" : " (0";
    if (size.item)
        text += size.item->isNotImmutable ? " : 1)" : " : 0)";
    return size.isComplete ? text : text + ", incomplete";
}

/// What a user measures, or what went wrong.
QByteArray measuredBy(ChildUser user, const MadeTree &tree, const QByteArray &location)
{
    return runInChild(user,
                      [&] {
                          std::fputs(textOf(measured(tree, location)).constData(), stderr);
                          return 0;
                      })
        .errorText;
}

/// One row of an access list, as the file system keeps it.
struct AccessEntry
{
    std::uint16_t tag;
    std::uint16_t rights;
    std::uint32_t user;
};

/// Gives a folder a mode, and an access list with a row of its own for that user, whose mask is the
/// group's part of the mode. False where there are no access lists.
bool giveToNobody(const QByteArray &path, unsigned mode, int rights)
{
    constexpr std::uint32_t kVersion = 2;
    constexpr std::uint32_t kNone = 0xffffffff;
    const auto part = [&](unsigned shift) { return std::uint16_t((mode >> shift) & 7U); };
    const std::array<AccessEntry, 5> entries{AccessEntry{0x01, part(6), kNone},
                                             {0x02, std::uint16_t(rights), kNobody},
                                             {0x04, part(0), kNone},
                                             {0x10, part(3), kNone},
                                             {0x20, part(0), kNone}};
    QByteArray list(reinterpret_cast<const char *>(&kVersion), sizeof kVersion);
    list.append(reinterpret_cast<const char *>(entries.data()), sizeof entries);
    return ::setxattr(path.constData(), "system.posix_acl_access", list.constData(),
                      std::size_t(list.size()), 0) == 0;
}

} // namespace

/// What a measurement counts depends on what this process could remove.
class TestFolderSizingRights final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheRightsOfTheFolder_data();
    void followsTheRightsOfTheFolder();
    void judgesEveryFolderByItself();
    void followsAccessLists_data();
    void followsAccessLists();
    void followsTheStickyBit_data();
    void followsTheStickyBit();
    void judgesSingleItemsByTheirFolder_data();
    void judgesSingleItemsByTheirFolder();
    void leavesLockedFilesOut_data();
    void leavesLockedFilesOut();
    void leavesTheEntriesOfLockedFoldersOut_data();
    void leavesTheEntriesOfLockedFoldersOut();
};

void TestFolderSizingRights::followsTheRightsOfTheFolder_data()
{
    QTest::addColumn<unsigned>("mode");
    QTest::addColumn<unsigned>("owner");
    QTest::addColumn<QByteArray>("byNobody");
    QTest::addRow("own, all rights") << 0700U << kNobody << QByteArray("30");
    QTest::addRow("own, no write") << 0500U << kNobody << QByteArray("0");
    QTest::addRow("own, no search") << 0600U << kNobody << QByteArray("0");
    QTest::addRow("own, no read") << 0300U << kNobody << QByteArray("0, incomplete");
    QTest::addRow("foreign, open to all") << 0777U << kRoot << QByteArray("30");
    QTest::addRow("foreign, readable") << 0755U << kRoot << QByteArray("0");
    QTest::addRow("foreign, closed") << 0700U << kRoot << QByteArray("0, incomplete");
}

void TestFolderSizingRights::followsTheRightsOfTheFolder()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, mode);
    QFETCH(unsigned, owner);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/own", 10);
    tree.setOwner("folder/own", kNobody);
    tree.makeFile("folder/foreign", 20);
    tree.setMode("folder/foreign", 0);
    tree.setOwner("folder", owner);
    tree.setMode("folder", mode);
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder"), "byNobody");
    QTEST(measuredBy(ChildUser::Nobody, tree, {}), "byNobody");
    QCOMPARE(measuredBy(ChildUser::Same, tree, "folder"), QByteArray("30"));
}

void TestFolderSizingRights::judgesEveryFolderByItself()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const MadeTree tree;
    tree.makeFolder("locked");
    tree.makeFile("locked/stays", 100);
    tree.makeFolder("locked/open");
    tree.makeFile("locked/open/goes", 10);
    tree.makeFolder("locked/open/closed");
    tree.makeFile("locked/open/closed/unknown", 1000);
    tree.setMode("locked/open/closed", 0);
    tree.setMode("locked", 0555);
    QCOMPARE(measuredBy(ChildUser::Nobody, tree, {}), QByteArray("10, incomplete"));
    QCOMPARE(measuredBy(ChildUser::Nobody, tree, "locked"), QByteArray("10, incomplete"));
    QCOMPARE(measuredBy(ChildUser::Same, tree, {}), QByteArray("1110"));
}

void TestFolderSizingRights::followsAccessLists_data()
{
    QTest::addColumn<unsigned>("owner");
    QTest::addColumn<unsigned>("mode");
    QTest::addColumn<int>("forNobody");
    QTest::addColumn<QByteArray>("byNobody");
    constexpr int kAll = 7;
    constexpr int kReadAndSearch = 5;
    QTest::addRow("foreign, given") << kRoot << 0775U << kAll << QByteArray("10");
    QTest::addRow("foreign, taken") << kRoot << 0777U << kReadAndSearch << QByteArray("0");
    QTest::addRow("foreign, masked") << kRoot << 0715U << kAll << QByteArray("0, incomplete");
    QTest::addRow("own, taken") << kNobody << 0700U << 0 << QByteArray("10");
    QTest::addRow("own, given") << kNobody << 0577U << kAll << QByteArray("0");
}

/// The group's bits are the mask of the list, so the mode shows them. Not for the owner: of him the
/// list says what the mode says.
void TestFolderSizingRights::followsAccessLists()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, owner);
    QFETCH(unsigned, mode);
    QFETCH(int, forNobody);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFolder("folder/inside");
    tree.makeFile("folder/inside/file", 10);
    QVERIFY2(giveToNobody(tree.path("folder/inside"), mode, forNobody), "no access lists here");
    tree.setOwner("folder/inside", owner);
    tree.setOwner("folder", kNobody);
    // The folder around it is the user's own, so the mode may decide in it.
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder"), "byNobody");
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder/inside"), "byNobody");
    QCOMPARE(measuredBy(ChildUser::Same, tree, "folder"), QByteArray("10"));
}

void TestFolderSizingRights::followsTheStickyBit_data()
{
    QTest::addColumn<unsigned>("owner");
    QTest::addColumn<QByteArray>("byNobody");
    QTest::addRow("foreign folder") << kRoot << QByteArray("11");
    QTest::addRow("own folder") << kNobody << QByteArray("31");
}

void TestFolderSizingRights::followsTheStickyBit()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, owner);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/own", 10);
    tree.setOwner("folder/own", kNobody);
    tree.makeLink("folder/own-link", "x");
    tree.setOwner("folder/own-link", kNobody);
    tree.makeFile("folder/foreign", 20);
    tree.setOwner("folder", owner);
    tree.setMode("folder", 01777);
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder"), "byNobody");
    QCOMPARE(measuredBy(ChildUser::Same, tree, "folder"), QByteArray("31"));
}

void TestFolderSizingRights::judgesSingleItemsByTheirFolder_data()
{
    QTest::addColumn<unsigned>("mode");
    QTest::addColumn<QByteArray>("ownFile");
    QTest::addColumn<QByteArray>("foreignFile");
    const QByteArray kept = "0 (0 : 1)";
    QTest::addRow("open") << 0777U << QByteArray("10 (1 : 1)") << QByteArray("20 (1 : 1)");
    QTest::addRow("sticky") << 01777U << QByteArray("10 (1 : 1)") << kept;
    QTest::addRow("readable") << 0755U << kept << kept;
}

void TestFolderSizingRights::judgesSingleItemsByTheirFolder()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, mode);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/own", 10);
    tree.setOwner("folder/own", kNobody);
    tree.makeFile("folder/foreign", 20);
    tree.setMode("folder", mode);
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder/own"), "ownFile");
    QTEST(measuredBy(ChildUser::Nobody, tree, "folder/foreign"), "foreignFile");
}

void TestFolderSizingRights::leavesLockedFilesOut_data()
{
    QTest::addColumn<int>("attribute");
    QTest::addRow("immutable") << int(Attribute::Immutable);
    QTest::addRow("append-only") << int(Attribute::AppendOnly);
}

void TestFolderSizingRights::leavesLockedFilesOut()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(int, attribute);
    MadeTree tree;
    tree.makeFile("locked", 1000);
    tree.makeFile("free", 10);
    tree.setAttribute("locked", Attribute(attribute));
    for (const ChildUser user : {ChildUser::Same, ChildUser::Nobody}) {
        QCOMPARE(measuredBy(user, tree, {}), QByteArray("10"));
        QCOMPARE(measuredBy(user, tree, "locked"), QByteArray("0 (1 : 0)"));
        QCOMPARE(measuredBy(user, tree, "free"), QByteArray("10 (1 : 1)"));
    }
}

void TestFolderSizingRights::leavesTheEntriesOfLockedFoldersOut_data()
{
    leavesLockedFilesOut_data();
}

void TestFolderSizingRights::leavesTheEntriesOfLockedFoldersOut()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(int, attribute);
    MadeTree tree;
    tree.makeFolder("locked");
    tree.makeFile("locked/stays", 1000);
    tree.makeFolder("locked/free");
    tree.makeFile("locked/free/goes", 10);
    tree.setAttribute("locked", Attribute(attribute));
    for (const ChildUser user : {ChildUser::Same, ChildUser::Nobody}) {
        QCOMPARE(measuredBy(user, tree, {}), QByteArray("10"));
        QCOMPARE(measuredBy(user, tree, "locked"), QByteArray("10"));
        QCOMPARE(measuredBy(user, tree, "locked/stays"), QByteArray("0 (0 : 1)"));
    }
}

VANTOR_TEST_MAIN(TestFolderSizingRights)
#include "tst_FolderSizingRights.moc"
