#include "platform/system/FileStatus.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemResult.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/TestMain.h"

#include <QByteArrayList>
#include <limits>

namespace {

constexpr qint64 kMost = std::numeric_limits<qint64>::max();

/// A file system on which every file claims the same size.
class SizedCalls final : public ForwardingSystemCalls
{
public:
    explicit SizedCalls(std::uint64_t size) : m_size(size) {}

    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        auto status = ForwardingSystemCalls::status(parent, name);
        if (status)
            status->size = m_size;
        return status;
    }

private:
    const std::uint64_t m_size;
};

/// A file system on which every file is locked by an attribute.
class LockedCalls final : public ForwardingSystemCalls
{
public:
    SystemResult<FileStatus> status(int parent, const char *name) const override
    {
        auto status = ForwardingSystemCalls::status(parent, name);
        if (status)
            status->isImmutable = true;
        return status;
    }
};

FolderSize measured(const MadeTree &tree, const QByteArray &location, unsigned threads = 0)
{
    return measureFolder(hostSystemCalls(), {tree.descriptor(), location}, {}, threads);
}

QByteArrayList *s_logLines = nullptr;

void keepLogLine(QtMsgType, const QMessageLogContext &, const QString &text)
{
    s_logLines->append(text.toUtf8());
}

/// Collects what is logged for as long as it lives.
class LogLines final
{
public:
    LogLines()
    {
        s_logLines = &m_lines;
        m_before = qInstallMessageHandler(keepLogLine);
    }
    ~LogLines() { qInstallMessageHandler(m_before); }
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    const QByteArrayList &lines() const { return m_lines; }

private:
    QByteArrayList m_lines;
    QtMessageHandler m_before = nullptr;
};

} // namespace

class TestFolderSizing final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sumsUpWhatLiesBeneath();
    void findsNothingInAnEmptyFolder();
    void leavesHiddenItemsOut();
    void measuresAHiddenFolderThatItIsGiven();
    void countsLinksWithTheirOwnSize();
    void countsEveryNameOfAHardLinkedFile();
    void doesNotTurnOver_data();
    void doesNotTurnOver();
    void reachesPlacesDeeperThanAnyPath();
    void isIncompleteWhenStopped();

    void judgesPlacesOfAllKinds_data();
    void judgesPlacesOfAllKinds();
    void logsWhetherItMayBeRemovedBeforeWhetherItIsUnlocked();
    void refusesLinksOnTheWay();
    void leavesOutWhatIsKept();
    void finds0OutsideTheGrant();
};

void TestFolderSizing::sumsUpWhatLiesBeneath()
{
    const MadeTree tree;
    tree.makeFile("a", 1);
    tree.makeFolder("folder");
    tree.makeFile("folder/b", 20);
    tree.makeFolder("folder/folder");
    tree.makeFile("folder/folder/c", 300);
    tree.makePipe("folder/pipe");
    for (const unsigned threads : {0U, 1U, 2U, 4U}) {
        const FolderSize size = measured(tree, {}, threads);
        QCOMPARE(size.bytes, 321);
        QCOMPARE(size.items, 6);
        QVERIFY(size.isComplete);
        QVERIFY(!size.item);
    }
}

void TestFolderSizing::findsNothingInAnEmptyFolder()
{
    const MadeTree tree;
    const FolderSize size = measured(tree, {});
    QCOMPARE(size.bytes, 0);
    QCOMPARE(size.items, 0);
    QVERIFY(size.isComplete);
}

void TestFolderSizing::leavesHiddenItemsOut()
{
    const MadeTree tree;
    tree.makeFile(".directory", 1000);
    tree.makeFolder(".hidden");
    tree.makeFile(".hidden/file", 1000);
    tree.makeFolder(".hidden/folder");
    tree.makeFile(".hidden/folder/file", 1000);
    QCOMPARE(measured(tree, {}).bytes, 0);
    QCOMPARE(measured(tree, {}).items, 0);
}

void TestFolderSizing::measuresAHiddenFolderThatItIsGiven()
{
    const MadeTree tree;
    tree.makeFolder(".Trash");
    tree.makeFile(".Trash/file", 1000);
    tree.makeFile(".Trash/.hidden", 1000);
    QCOMPARE(measured(tree, ".Trash").bytes, 1000);
}

void TestFolderSizing::countsLinksWithTheirOwnSize()
{
    const MadeTree tree;
    tree.makeFolder("elsewhere");
    tree.makeFile("elsewhere/large", 1'000'000'000);
    tree.makeFolder("folder");
    tree.makeLink("folder/to-file", "../elsewhere/large");
    tree.makeLink("folder/to-folder", "../elsewhere");
    tree.makeLink("folder/dangling", "gone");
    QCOMPARE(measured(tree, "folder").bytes, 18 + 12 + 4);
}

void TestFolderSizing::countsEveryNameOfAHardLinkedFile()
{
    const MadeTree tree;
    tree.makeFile("one", 1000);
    QCOMPARE(::link(tree.path("one").constData(), tree.path("two").constData()), 0);
    QCOMPARE(measured(tree, {}).bytes, 2000);
}

void TestFolderSizing::doesNotTurnOver_data()
{
    QTest::addColumn<quint64>("fileSize");
    QTest::addColumn<qint64>("bytes");
    const auto most = static_cast<quint64>(kMost);
    QTest::addRow("small") << quint64(1) << qint64(4);
    QTest::addRow("just fits") << most / 4 << 4 * (kMost / 4);
    QTest::addRow("sum too large") << most / 4 + 1 << kMost;
    QTest::addRow("largest file") << most << kMost;
    QTest::addRow("beyond the largest") << most + 1 << kMost;
    QTest::addRow("all bits") << std::numeric_limits<quint64>::max() << kMost;
}

void TestFolderSizing::doesNotTurnOver()
{
    QFETCH(quint64, fileSize);
    const MadeTree tree;
    for (const char *folder : {"a", "b"}) { // so that both threads have something to sum up
        tree.makeFolder(folder);
        tree.makeFile(QByteArray(folder) + "/1");
        tree.makeFile(QByteArray(folder) + "/2");
    }
    const SizedCalls calls(fileSize);
    QTEST(measureFolder(calls, {tree.descriptor(), {}}, {}, 1).bytes, "bytes");
    QTEST(measureFolder(calls, {tree.descriptor(), {}}, {}, 2).bytes, "bytes");
    QCOMPARE(measureFolder(calls, {tree.descriptor(), "a/1"}, {}).bytes,
             static_cast<qint64>(qMin(fileSize, static_cast<quint64>(kMost))));
}

void TestFolderSizing::reachesPlacesDeeperThanAnyPath()
{
    const MadeTree tree;
    const QByteArray last = tree.makeChain({}, QByteArray(99, 'n'), 150);
    tree.makeFile(last + "/file", 7);
    QVERIFY(last.size() > 3 * PATH_MAX);
    QCOMPARE(measured(tree, last).bytes, 7);
    QCOMPARE(measured(tree, last + "/file").bytes, 7);
    QCOMPARE(measured(tree, last + "/gone").bytes, 0);
    QCOMPARE(measured(tree, {}).bytes, 7);
}

void TestFolderSizing::isIncompleteWhenStopped()
{
    const MadeTree tree;
    tree.makeFile("file", 7);
    std::stop_source stop;
    stop.request_stop();
    const FolderSize size =
        measureFolder(hostSystemCalls(), {tree.descriptor(), {}}, stop.get_token());
    QCOMPARE(size.bytes, 0);
    QVERIFY(!size.isComplete);
}

void TestFolderSizing::judgesPlacesOfAllKinds_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QByteArrayList>("logged");
    const QByteArrayList verdict{"1 : 1"};
    const QByteArrayList none;
    QTest::addRow("folder") << QByteArray("folder") << qint64(5) << none;
    QTest::addRow("file") << QByteArray("folder/file") << qint64(5) << verdict;
    QTest::addRow("empty file") << QByteArray("empty") << qint64(0) << verdict;
    QTest::addRow("hidden file") << QByteArray(".hidden") << qint64(6) << verdict;
    QTest::addRow("pipe") << QByteArray("pipe") << qint64(0) << verdict;
    QTest::addRow("link to a file") << QByteArray("to-file") << qint64(11) << verdict;
    QTest::addRow("link to a folder") << QByteArray("to-folder") << qint64(0) << none;
    QTest::addRow("link to a link to a folder") << QByteArray("to-link") << qint64(0) << none;
    QTest::addRow("dangling link") << QByteArray("dangling") << qint64(0) << none;
    QTest::addRow("loop of links") << QByteArray("loop") << qint64(0) << none;
    QTest::addRow("nothing there") << QByteArray("gone") << qint64(0) << none;
    QTest::addRow("no folder there") << QByteArray("gone/file") << qint64(0) << none;
    QTest::addRow("beneath a file") << QByteArray("empty/file") << qint64(0) << none;
}

void TestFolderSizing::judgesPlacesOfAllKinds()
{
    QFETCH(QByteArray, location);
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFile("folder/file", 5);
    tree.makeFile("empty");
    tree.makeFile(".hidden", 6);
    tree.makePipe("pipe");
    tree.makeLink("to-file", "folder/file");
    tree.makeLink("to-folder", "folder");
    tree.makeLink("to-link", "to-folder");
    tree.makeLink("dangling", "nowhere");
    tree.makeLink("loop", "loop");

    FolderAccess access(tree.path(), FolderAccess::Answers::WhileAccessed);
    const LogLines log;
    const FileUrl url = FileUrl::fromPath(tree.path(location), FileUrlKind::File);
    QTEST(sizeForFolderAtPath(hostSystemCalls(), access, url), "bytes");
    QTEST(log.lines(), "logged");
    QCOMPARE(access.starts(), 1);
    QCOMPARE(access.stops(), 1);
    QVERIFY(measured(tree, location).isComplete);
}

void TestFolderSizing::logsWhetherItMayBeRemovedBeforeWhetherItIsUnlocked()
{
    const MadeTree tree;
    tree.makeFile("file", 5);
    FolderAccess access(tree.path(), FolderAccess::Answers::WhileAccessed);
    const LogLines log;
    const FileUrl url = FileUrl::fromPath(tree.path("file"), FileUrlKind::File);
    QCOMPARE(sizeForFolderAtPath(LockedCalls(), access, url), 0);
    QCOMPARE(log.lines(), QByteArrayList{"1 : 0"});
}

void TestFolderSizing::refusesLinksOnTheWay()
{
    const MadeTree tree;
    tree.makeFolder("folder");
    tree.makeFolder("folder/folder");
    tree.makeFile("folder/folder/file", 5);
    tree.makeLink("link", "folder");
    QCOMPARE(measured(tree, "folder/folder").bytes, 5);
    QCOMPARE(measured(tree, "link/folder").bytes, 0);
    QCOMPARE(measured(tree, "link/folder/file").bytes, 0);
    QCOMPARE(measured(tree, "folder/folder/../../../etc").bytes, 0);
    QCOMPARE(measured(tree, QByteArray("folder\0/folder", 14)).bytes, 0);
}

void TestFolderSizing::leavesOutWhatIsKept()
{
    const MadeTree tree;
    for (const char *folder : {"cache", "cache/web", "cache/web/deep", "cache/my web",
                               "cache/maker", "cache/maker/web", "cache/maker/other"}) {
        tree.makeFolder(folder);
        tree.makeFile(QByteArray(folder) + "/file", 1);
    }
    tree.makeFile("cache/lone", 10);
    const auto sizeWithout = [&](const QByteArrayList &kept) {
        return measureFolder(hostSystemCalls(), {tree.descriptor(), "cache"}, {}, 2, {.kept = kept})
            .bytes;
    };
    QCOMPARE(sizeWithout({}), 17);
    QCOMPARE(sizeWithout({"web"}), 15);
    QCOMPARE(sizeWithout({"web", "maker/web"}), 14);
    QCOMPARE(sizeWithout({"maker/other", "lone", "gone"}), 6);
    QCOMPARE(sizeWithout({"we", "file/", "eb/deep"}), 17);
}

void TestFolderSizing::finds0OutsideTheGrant()
{
    const MadeTree tree;
    FolderAccess access(tree.path(), FolderAccess::Answers::WhileAccessed);
    const FileUrl elsewhere = FileUrl::fromPath("/usr", FileUrlKind::Folder);
    QCOMPARE(sizeForFolderAtPath(hostSystemCalls(), access, elsewhere), 0);
    QCOMPARE(access.starts(), 1);
    QCOMPARE(access.stops(), 1);
}

VANTOR_TEST_MAIN(TestFolderSizing)
#include "tst_FolderSizing.moc"
