#include "platform/files/FolderListing.h"
#include "platform/system/HostSystemCalls.h"

#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/run/TestMain.h"

#include <array>
#include <cerrno>

class TestFolderListing final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsEveryEntryOnce();
    void tellsKindsAndNumbers();
    void sortsByNumber();
    void isAllOrNothing();
    void holdsASingleEntry();
    void givesEntriesAway();
};

namespace {

/// Reads in small pieces, so that even a few entries need several.
SystemResult<FolderListing> listed(const QByteArray &path,
                                   const SystemCalls &calls = hostSystemCalls())
{
    const FileDescriptor folder = openedFolder(path);
    std::array<char, 1024> space{};
    return FolderListing::ofFolder(calls, folder.get(), space);
}

} // namespace

void TestFolderListing::listsEveryEntryOnce()
{
    const CleaningGround scratch;
    std::set<QByteArray> expected;
    for (int i = 0; i < 500; ++i) {
        const QByteArray name = QByteArray(i % 200, 'x') + QByteArray::number(i);
        makeFile(scratch / name, {});
        expected.insert(name);
    }
    const auto listing = listed(scratch.path());
    QVERIFY(listing);
    QCOMPARE(listing->size(), expected.size());
    std::set<QByteArray> names;
    for (std::size_t i = 0; i < listing->size(); ++i)
        names.insert(listing->name(listing->at(i)));
    QCOMPARE(names, expected);
}

void TestFolderListing::tellsKindsAndNumbers()
{
    const CleaningGround scratch;
    makeFile(scratch / "file");
    makeFolder(scratch / "folder");
    makeLink(scratch / "link", "folder");
    const std::map<QByteArray, FileKind> kinds{
        {"file", FileKind::Regular}, {"folder", FileKind::Folder}, {"link", FileKind::Link}};
    const auto listing = listed(scratch.path());
    QCOMPARE(listing->size(), kinds.size());
    for (std::size_t i = 0; i < listing->size(); ++i) {
        const auto &entry = listing->at(i);
        const QByteArray name = listing->name(entry);
        struct stat found
        {
        };
        QCOMPARE(::lstat((scratch / name).constData(), &found), 0);
        QCOMPARE(entry.inode, std::uint64_t(found.st_ino));
        QCOMPARE(entry.kind, kinds.at(name));
    }
}

void TestFolderListing::sortsByNumber()
{
    const CleaningGround scratch;
    for (int i = 0; i < 100; ++i)
        makeFile(scratch / QByteArray::number(i), {});
    auto listing = listed(scratch.path());
    listing->sortByInode();
    for (std::size_t i = 1; i < listing->size(); ++i)
        QVERIFY(listing->at(i - 1).inode < listing->at(i).inode);
}

void TestFolderListing::isAllOrNothing()
{
    class Breaking final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *, int, const char *) const override
        {
            return ++m_calls == 3 ? std::optional(EIO) : std::nullopt;
        }

    private:
        mutable int m_calls = 0;
    };
    const CleaningGround scratch;
    for (int i = 0; i < 200; ++i)
        makeFile(scratch / QByteArray::number(i), {});
    const auto listing = listed(scratch.path(), Breaking());
    QVERIFY(!listing);
    QCOMPARE(listing.error(), EIO);
}

void TestFolderListing::holdsASingleEntry()
{
    const FolderListing listing = FolderListing::ofEntry({"name", 7, FileKind::Link});
    QCOMPARE(listing.size(), std::size_t(1));
    QCOMPARE(QByteArray(listing.name(listing.at(0))), QByteArray("name"));
    QCOMPARE(listing.at(0).inode, std::uint64_t(7));
    QVERIFY(listing.at(0).kind == FileKind::Link);
}

void TestFolderListing::givesEntriesAway()
{
    const CleaningGround scratch;
    for (const char *name : {"a", "b", "c"})
        makeFile(scratch / name);
    makeFolder(scratch / "d");
    auto listing = listed(scratch.path());
    QVERIFY(listing);
    std::set<QByteArray> names;
    for (const FolderListing &taken :
         listing->takeOut([](const char *name) { return *name == 'b' || *name == 'd'; })) {
        QCOMPARE(taken.size(), 1U);
        const QByteArray name = taken.name(taken.at(0));
        QCOMPARE(taken.at(0).kind, name == "d" ? FileKind::Folder : FileKind::Regular);
        QVERIFY(taken.at(0).inode != 0);
        names.insert(name);
    }
    QCOMPARE(names, std::set<QByteArray>({"b", "d"}));
    QCOMPARE(listing->size(), 2U);
}

VANTOR_TEST_MAIN(TestFolderListing)
#include "tst_FolderListing.moc"
