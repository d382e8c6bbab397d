#include "platform/files/AnchoredFolder.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/calls/SubVolume.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/Must.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <sys/stat.h>

namespace {

std::uint64_t inodeOf(const FileDescriptor &folder)
{
    struct stat found
    {
    };
    must(::fstat(folder.get(), &found) == 0, "an open folder");
    return found.st_ino;
}

/// The errno of opening the folder; 0 when it can be opened.
int errorOf(const MadeTree &tree, const QByteArray &path)
{
    const auto opened =
        openAnchored(hostSystemCalls(), {tree.descriptor(), path}, Descent::AcrossMounts);
    return opened ? 0 : opened.error();
}

} // namespace

class TestAnchoredFolder final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesPathsApart_data();
    void takesPathsApart();
    void opensTheFolder_data();
    void opensTheFolder();
    void opensPathsOfAnyLength_data();
    void opensPathsOfAnyLength();
    void refusesWhatLeadsElsewhere();
    void staysOnTheAnchorsVolume();
};

void TestAnchoredFolder::takesPathsApart_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<QByteArray>("name");
    QTest::addRow("deep") << QByteArray("a/b/c") << QByteArray("a/b") << QByteArray("c");
    QTest::addRow("flat") << QByteArray("a") << QByteArray() << QByteArray("a");
    QTest::addRow("the anchor") << QByteArray() << QByteArray() << QByteArray();
}

void TestAnchoredFolder::takesPathsApart()
{
    QFETCH(QByteArray, path);
    const AnchoredEntry entry = anchoredEntry({nullptr, path});
    QTEST(entry.folder.relativePath, "folder");
    QTEST(entry.name, "name");
}

void TestAnchoredFolder::opensTheFolder_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char *path : {"", "a", "a/b", "a/two\nlines", "a/\xff"})
        QTest::addRow("'%s'", path) << QByteArray(path);
}

void TestAnchoredFolder::opensTheFolder()
{
    QFETCH(QByteArray, path);
    const MadeTree tree;
    for (const char *folder : {"a", "a/b", "a/two\nlines", "a/\xff"})
        tree.makeFolder(folder);
    const auto opened = openAnchored(hostSystemCalls(), {tree.descriptor(), path}, Descent::Strict);
    QVERIFY(opened);
    QCOMPARE(inodeOf(*opened), inodeOf(tree.open(path)));
}

void TestAnchoredFolder::opensPathsOfAnyLength_data()
{
    // The lengths put a slash before, at and behind the end of the longest path that the system
    // takes.
    QTest::addColumn<int>("firstName");
    for (const int length : {7, 8, 9})
        QTest::addRow("%d", length) << length;
}

void TestAnchoredFolder::opensPathsOfAnyLength()
{
    QFETCH(int, firstName);
    const MadeTree tree;
    QByteArray start = tree.makeChain({}, QByteArray(firstName, 'f'), 1);
    start = tree.makeChain(start, QByteArray(200, 'n'), 18);
    QByteArray last = tree.makeChain(start, QByteArray(9, 'm'), 60);
    QVERIFY(last.size() > PATH_MAX);
    for (; last.size() > start.size(); last.chop(10))
        QCOMPARE(errorOf(tree, last), 0);
    QCOMPARE(errorOf(tree, QByteArray(2 * PATH_MAX, 'n')), ENAMETOOLONG);
    QCOMPARE(errorOf(tree, '/' + QByteArray(2 * PATH_MAX, 'n')), ENAMETOOLONG);
}

void TestAnchoredFolder::refusesWhatLeadsElsewhere()
{
    const MadeTree tree;
    tree.makeFolder("a");
    tree.makeFile("file");
    tree.makeLink("link", "a");
    QVERIFY(errorOf(tree, "link") == ELOOP || errorOf(tree, "link") == ENOTDIR);
    QCOMPARE(errorOf(tree, "link/."), ELOOP);
    QCOMPARE(errorOf(tree, "/etc"), EXDEV);
    QCOMPARE(errorOf(tree, "../etc"), EXDEV);
    QCOMPARE(errorOf(tree, "a/../.."), EXDEV);
    QCOMPARE(errorOf(tree, "file"), ENOTDIR);
    QCOMPARE(errorOf(tree, "gone"), ENOENT);
    QCOMPARE(errorOf(tree, QByteArray("a\0b", 3)), EINVAL);
}

void TestAnchoredFolder::staysOnTheAnchorsVolume()
{
    const MadeTree tree;
    tree.makeFolder("volume");
    tree.makeFolder("plain");
    const SubVolume calls(tree.path("volume"));
    QVERIFY(openOnVolume(calls, {tree.descriptor(), "plain"}));
    QVERIFY(openOnVolume(calls, {tree.descriptor(), {}}));
    const auto opened = openOnVolume(calls, {tree.descriptor(), "volume"});
    QVERIFY(!opened);
    QCOMPARE(opened.error(), EXDEV);
    QCOMPARE(openOnVolume(calls, {tree.descriptor(), "gone"}).error(), ENOENT);
}

VANTOR_TEST_MAIN(TestAnchoredFolder)
#include "tst_AnchoredFolder.moc"
