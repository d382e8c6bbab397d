#include "largefiles/search/LargeFileList.h"
#include "tests/largefiles/search/ToldSizes.h"
#include "tests/support/run/TestMain.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <random>

namespace {

File fileOf(const QByteArray &name, qint64 size)
{
    File file(FileUrl::fromPath("/home/anna/Movies/" + name, FileUrlKind::File));
    file.setSize(size);
    file.setSizeString(QString::number(size));
    return file;
}

QByteArray namesOf(const LargeFileList &list)
{
    return namesOf(list.fileURLs()).join(' ');
}

/// Inserts files of one letter and one digit: name and size.
void fill(LargeFileList &list, const QByteArrayList &files)
{
    for (const QByteArray &file : files)
        list.insert(fileOf(file.left(1), file.mid(1).toLongLong()));
}

struct Found
{
    QByteArray name;
    qint64 size;
};

} // namespace

class TestLargeFileList final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void putsEveryFileInItsPlace_data();
    void putsEveryFileInItsPlace();
    void agreesWithAStableSort();
    void tellsOfTheVeryRowInserted();
    void listsNoPathTwice();
    void showsNameSizeAndPick();
    void takesVanishedFilesOut_data();
    void takesVanishedFilesOut();
    void forgetsThePathsOfRemovedFiles();
    void togglesPicks();
    void dropsAllPicksOnCancel();
    void selectsInListOrder();
    void totalsWhatIsOnTheDiskNow();
    void totalsWhatWasFoundUntilTheDiskAnswers();
    void ignoresTheAnswerToAnOlderQuestion();
    void remembersWhatWasPicked();
    void ignoresAnAnswerAfterItsEnd();
    void stopsAtTheLargestTotal();
    void emptiesOnDeleteData();
    void keeps100000RowsInOrder();
};

void TestLargeFileList::putsEveryFileInItsPlace_data()
{
    QTest::addColumn<QByteArrayList>("files");
    QTest::addColumn<QByteArray>("order");
    QTest::addRow("none") << QByteArrayList{} << QByteArray();
    QTest::addRow("one") << QByteArrayList{"a1"} << QByteArray("a");
    QTest::addRow("growing") << QByteArrayList{"a1", "b2", "c3"} << QByteArray("c b a");
    QTest::addRow("shrinking") << QByteArrayList{"a3", "b2", "c1"} << QByteArray("a b c");
    QTest::addRow("equal") << QByteArrayList{"b1", "a1", "c1"} << QByteArray("b a c");
    QTest::addRow("equal among others")
        << QByteArrayList{"a2", "b1", "c3", "d2", "e2", "f3"} << QByteArray("c f a d e b");
}

void TestLargeFileList::putsEveryFileInItsPlace()
{
    QFETCH(QByteArrayList, files);
    LargeFileList list;
    const QAbstractItemModelTester tester(&list);
    fill(list, files);
    QTEST(namesOf(list), "order");
    QCOMPARE(list.rowCount(), files.size());
}

void TestLargeFileList::agreesWithAStableSort()
{
    constexpr int kLists = 10'000;
    std::mt19937 random(20'261); // the same lists every time
    for (int number = 0; number < kLists; ++number) {
        QList<Found> found;
        const int count = static_cast<int>(random() % 13);
        const auto sizes = 1 + random() % 6; // few, so that many are equal
        for (int i = 0; i < count; ++i)
            found.append({QByteArray::number(i), qint64(random() % sizes)});
        LargeFileList list;
        for (const Found &file : std::as_const(found))
            list.insert(fileOf(file.name, file.size));

        std::stable_sort(found.begin(), found.end(),
                         [](const Found &a, const Found &b) { return a.size > b.size; });
        QByteArrayList expected;
        for (const Found &file : std::as_const(found))
            expected.append(file.name);
        QCOMPARE(namesOf(list.fileURLs()), expected);
    }
}

void TestLargeFileList::tellsOfTheVeryRowInserted()
{
    LargeFileList list;
    fill(list, {"a3", "b1"});
    const QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
    list.insert(fileOf("c", 2));
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted.first().at(1).toInt(), 1);
    QCOMPARE(inserted.first().at(2).toInt(), 1);
}

void TestLargeFileList::listsNoPathTwice()
{
    LargeFileList list;
    QVERIFY(list.insert(fileOf("a", 1)));
    list.toggle(0);
    const QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
    QVERIFY(!list.insert(fileOf("a", 5)));
    QCOMPARE(inserted.size(), 0);
    QCOMPARE(list.rowCount(), 1);
    QCOMPARE(list.fileAt(0).size(), 1);
    QVERIFY(list.fileAt(0).isAdded() && list.contains(fileOf("a", 0).fileURL()));
    QVERIFY(!list.contains(fileOf("b", 0).fileURL()));
}

void TestLargeFileList::showsNameSizeAndPick()
{
    LargeFileList list;
    list.insert(fileOf("<b>.mov", 7));
    const QModelIndex index = list.index(0);
    QCOMPARE(index.data(Qt::DisplayRole).toString(), QStringLiteral("<b>.mov"));
    const QString toolTip = index.data(Qt::ToolTipRole).toString();
    QVERIFY(toolTip.contains(QStringLiteral(">/home/anna/Movies/&lt;b&gt;.mov<")));
    QCOMPARE(index.data(LargeFileList::SizeStringRole).toString(), QStringLiteral("7"));
    QCOMPARE(index.data(LargeFileList::IsAddedRole).toBool(), false);
    list.toggle(0);
    QCOMPARE(index.data(LargeFileList::IsAddedRole).toBool(), true);
    QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); // a view may ask so
    QVERIFY(!list.data({}, Qt::DisplayRole).isValid());
}

void TestLargeFileList::takesVanishedFilesOut_data()
{
    QTest::addColumn<QByteArrayList>("gone");
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<int>("runs");
    QTest::addRow("none") << QByteArrayList{} << QByteArray("a b c d e") << 0;
    QTest::addRow("not listed") << QByteArrayList{"x"} << QByteArray("a b c d e") << 0;
    QTest::addRow("first") << QByteArrayList{"a"} << QByteArray("b c d e") << 1;
    QTest::addRow("last") << QByteArrayList{"e"} << QByteArray("a b c d") << 1;
    QTest::addRow("neighbours") << QByteArrayList{"d", "c"} << QByteArray("a b e") << 1;
    QTest::addRow("apart") << QByteArrayList{"a", "c", "e"} << QByteArray("b d") << 3;
    QTest::addRow("all") << QByteArrayList{"c", "b", "a", "e", "d"} << QByteArray() << 1;
}

void TestLargeFileList::takesVanishedFilesOut()
{
    QFETCH(QByteArrayList, gone);
    LargeFileList list;
    const QAbstractItemModelTester tester(&list);
    fill(list, {"a5", "b4", "c3", "d2", "e1"});
    list.toggle(1);
    const QSignalSpy removed(&list, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy total(&list, &LargeFileList::sizeStringChanged);
    FileUrls urls;
    for (const QByteArray &name : gone)
        urls.append(fileOf(name, 0).fileURL());
    list.remove(urls);
    QTEST(namesOf(list), "left");
    QTEST(int(removed.size()), "runs");
    QCOMPARE(total.size(), gone.contains("b") ? 1 : 0);
    QCOMPARE(list.selectedURLs().size(), gone.contains("b") ? 0 : 1);
    QCOMPARE(list.sizeString(),
             gone.contains("b") ? QStringLiteral("Zero KB") : QStringLiteral("4 bytes"));
}

void TestLargeFileList::forgetsThePathsOfRemovedFiles()
{
    LargeFileList list;
    fill(list, {"a5", "b4"});
    list.remove({fileOf("a", 0).fileURL()});
    QVERIFY(list.insert(fileOf("a", 1)));
    QCOMPARE(namesOf(list), QByteArray("b a"));
}

void TestLargeFileList::togglesPicks()
{
    LargeFileList list;
    fill(list, {"a5", "b4", "c3"});
    const QSignalSpy changed(&list, &QAbstractItemModel::dataChanged);
    const QSignalSpy total(&list, &LargeFileList::sizeStringChanged);
    list.toggle(1);
    QVERIFY(!list.fileAt(0).isAdded() && list.fileAt(1).isAdded());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).toModelIndex().row(), 1);
    QCOMPARE(total.size(), 1);
    list.toggle(1);
    QVERIFY(!list.fileAt(1).isAdded() && list.selectedSize() == 0);
}

void TestLargeFileList::dropsAllPicksOnCancel()
{
    LargeFileList list;
    list.dropPicks();
    fill(list, {"a5", "b4", "c3"});
    for (int row = 0; row < 3; ++row)
        list.toggle(row);
    QCOMPARE(list.sizeString(), QStringLiteral("12 bytes"));
    list.dropPicks();
    for (int row = 0; row < 3; ++row)
        QVERIFY(!list.fileAt(row).isAdded());
    QVERIFY(list.selectedURLs().isEmpty());
    QCOMPARE(list.sizeString(), QStringLiteral("Zero KB"));
}

void TestLargeFileList::selectsInListOrder()
{
    LargeFileList list;
    fill(list, {"a1", "b4", "c3", "d9"});
    for (const int row : {3, 0, 2})
        list.toggle(row);
    QCOMPARE(namesOf(list.selectedURLs()), (QByteArrayList{"d", "c", "a"}));
    list.insert(fileOf("e", 100));
    QCOMPARE(namesOf(list.selectedURLs()), (QByteArrayList{"d", "c", "a"}));
}

void TestLargeFileList::totalsWhatIsOnTheDiskNow()
{
    ToldSizes disk;
    disk.sizes = {{"a", 70}, {"b", 40}}; // c has vanished
    disk.locked = {"a"};
    LargeFileList list(disk.reader());
    fill(list, {"a5", "b4", "c3"});
    QCOMPARE(disk.questions, 0);
    list.toggle(0);
    QCOMPARE(list.sizeString(), QStringLiteral("70 bytes"));
    list.toggle(1);
    list.toggle(2);
    QCOMPARE(list.selectedSize(), 110);
    QCOMPARE(list.fileAt(0).size(), 5); // the row keeps what was found
    QCOMPARE(list.deletableSize(), 40);
    disk.sizes["a"] = 1;
    list.refreshSizes();
    QCOMPARE(list.selectedSize(), 41);
    const int questions = disk.questions;
    list.dropPicks();
    QCOMPARE(disk.questions, questions);
    QCOMPARE(list.sizeString(), QStringLiteral("Zero KB"));
}

void TestLargeFileList::totalsWhatWasFoundUntilTheDiskAnswers()
{
    ToldSizes disk;
    disk.setSlow();
    disk.sizes = {{"a", 70}};
    LargeFileList list(disk.reader());
    fill(list, {"a5"});
    list.toggle(0);
    QCOMPARE(list.selectedSize(), 5);
    QCOMPARE(list.deletableSize(), 0); // not found to be deletable
    const QSignalSpy total(&list, &LargeFileList::sizeStringChanged);
    disk.answerAll();
    QCOMPARE(total.size(), 1);
    QCOMPARE(list.selectedSize(), 70);
    QCOMPARE(list.deletableSize(), 70);
}

void TestLargeFileList::ignoresTheAnswerToAnOlderQuestion()
{
    ToldSizes disk;
    disk.setSlow();
    disk.sizes = {{"a", 70}};
    LargeFileList list(disk.reader());
    fill(list, {"a5"});
    list.toggle(0);
    ToldSizes late = disk;
    disk.sizes["a"] = 80;
    list.refreshSizes();
    disk.answerAll();
    QCOMPARE(list.selectedSize(), 80);
    late.answerAll();
    QCOMPARE(list.selectedSize(), 80);
}

/// A file is meant as it was at its pick, whatever stands at its path later.
void TestLargeFileList::remembersWhatWasPicked()
{
    ToldSizes disk;
    LargeFileList list(disk.reader());
    fill(list, {"a1", "b2"});
    const auto inodeOf = [&list](const QByteArray &name) {
        return list.picked().locations.value("/home/anna/Movies/" + name).inode;
    };
    const auto show = [&disk](std::uint64_t inode) {
        FileIdentity shown;
        shown.inode = inode;
        disk.identities = {{"a", shown}, {"b", shown}};
    };
    show(7);
    list.setAdded({0, 1}, true);
    QCOMPARE(inodeOf("a"), std::uint64_t(7));
    show(8);
    list.refreshSizes();
    QCOMPARE(inodeOf("a"), std::uint64_t(7));
    list.setAdded({0}, false); // the larger one, b
    list.setAdded({0}, true);
    QCOMPARE(inodeOf("b"), std::uint64_t(8));
    list.dropPicks();
    QVERIFY(list.picked().locations.isEmpty());
    disk.identities.clear();
    list.setAdded({0, 1}, true);
    QVERIFY(list.picked().locations.isEmpty());
}

void TestLargeFileList::ignoresAnAnswerAfterItsEnd()
{
    ToldSizes disk;
    disk.setSlow();
    {
        LargeFileList list(disk.reader());
        fill(list, {"a5"});
        list.toggle(0);
    }
    disk.answerAll();
    QCOMPARE(disk.questions, 1);
}

void TestLargeFileList::stopsAtTheLargestTotal()
{
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
    LargeFileList list;
    list.insert(fileOf("a", kMost));
    list.insert(fileOf("b", kMost));
    list.toggle(0);
    list.toggle(1);
    QCOMPARE(list.selectedSize(), kMost);
}

void TestLargeFileList::emptiesOnDeleteData()
{
    LargeFileList list;
    const QAbstractItemModelTester tester(&list);
    fill(list, {"a5", "b4"});
    list.toggle(0);
    const QSignalSpy reset(&list, &QAbstractItemModel::modelReset);
    const QSignalSpy total(&list, &LargeFileList::sizeStringChanged);
    list.deleteData();
    QCOMPARE(reset.size(), 1);
    QCOMPARE(total.size(), 1);
    QCOMPARE(list.rowCount(), 0);
    QCOMPARE(list.sizeString(), QStringLiteral("Zero KB"));
    QVERIFY(list.insert(fileOf("a", 5)) && !list.fileAt(0).isAdded());
}

void TestLargeFileList::keeps100000RowsInOrder()
{
    constexpr int kRows = 100'000;
    std::mt19937 random(1);
    LargeFileList list;
    QElapsedTimer timer;
    timer.start();
    FileUrls half;
    for (int i = 0; i < kRows; ++i) {
        const File file = fileOf(QByteArray::number(i), qint64(random()));
        list.insert(file);
        if (random() % 2 == 0)
            half.append(file.fileURL());
    }
    qInfo("%d rows inserted in %lld ms", kRows, timer.restart());
    list.remove(half);
    qInfo("%lld rows removed in %lld ms", qint64(half.size()), timer.elapsed());
    QCOMPARE(list.rowCount(), kRows - half.size());
    for (int row = 1; row < list.rowCount(); ++row)
        QVERIFY(list.fileAt(row - 1).size() >= list.fileAt(row).size());
}

VANTOR_TEST_MAIN(TestLargeFileList)
#include "tst_LargeFileList.moc"
