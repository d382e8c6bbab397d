#include "slices/AnchoredFolder.h"
#include "tests/support/MadeTree.h"
#include "tests/support/TestMain.h"

#include <cerrno>

namespace {

std::uint64_t inodeOf(const FileDescriptor &folder)
{
    return hostSystemCalls().statusOf(folder.get())->inode;
}

/// 0 when the place can be opened.
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
    void opensPathsOfAnyLength();
    void refusesWhatLeadsElsewhere();
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

void TestAnchoredFolder::opensPathsOfAnyLength()
{
    const MadeTree tree;
    // Pieces of the path end before, at and behind the longest that the system takes.
    const QByteArray start = tree.makeChain({}, QByteArray(200, 'n'), 18);
    QByteArray last = tree.makeChain(start, QByteArray(9, 'm'), 1100);
    QVERIFY(last.size() > 3 * PATH_MAX);
    for (; last.size() > start.size(); last.chop(7 * 10)) {
        const auto opened =
            openAnchored(hostSystemCalls(), {tree.descriptor(), last}, Descent::Strict);
        QVERIFY(opened);
    }
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

VANTOR_TEST_MAIN(TestAnchoredFolder)
#include "tst_AnchoredFolder.moc"
