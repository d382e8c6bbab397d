#include "platform/walk/WalkShare.h"
#include "tests/support/run/TestMain.h"

#include <QByteArrayList>

namespace {

FolderNames namesOf(const QByteArrayList &list)
{
    FolderNames names;
    for (const QByteArray &name : list)
        names.add({name.constData(), static_cast<std::size_t>(name.size())});
    return names;
}

QByteArrayList takeAll(FolderNames names)
{
    QByteArrayList list;
    while (!names.isEmpty())
        list.prepend(names.takeLast());
    return list;
}

} // namespace

class TestFolderNames final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesNamesBackFromTheLast();
    void takesNamesAfterSomeWereTaken();
    void cutsOffTheFirstHalf_data();
    void cutsOffTheFirstHalf();
};

void TestFolderNames::givesNamesBackFromTheLast()
{
    FolderNames names = namesOf({"a", "long name", "\xff"});
    QCOMPARE(names.count(), std::size_t(3));
    QCOMPARE(names.takeLast(), "\xff");
    QCOMPARE(names.takeLast(), "long name");
    QCOMPARE(names.takeLast(), "a");
    QVERIFY(names.isEmpty());
    QVERIFY(FolderNames().isEmpty());
}

void TestFolderNames::takesNamesAfterSomeWereTaken()
{
    FolderNames names = namesOf({"first", "second"});
    names.takeLast();
    names.add("third");
    QCOMPARE(takeAll(names), (QByteArrayList{"first", "third"}));
}

void TestFolderNames::cutsOffTheFirstHalf_data()
{
    QTest::addColumn<QByteArrayList>("all");
    QTest::addColumn<QByteArrayList>("half");
    QTest::addColumn<QByteArrayList>("rest");
    const QByteArrayList none;
    QTest::addRow("none") << none << none << none;
    QTest::addRow("one") << QByteArrayList{"a"} << QByteArrayList{"a"} << none;
    QTest::addRow("two") << QByteArrayList{"a", "bb"} << QByteArrayList{"a"}
                         << QByteArrayList{"bb"};
    QTest::addRow("three") << QByteArrayList{"a", "bb", "c"} << QByteArrayList{"a", "bb"}
                           << QByteArrayList{"c"};
}

void TestFolderNames::cutsOffTheFirstHalf()
{
    QFETCH(QByteArrayList, all);
    FolderNames names = namesOf(all);
    names.add("taken before");
    names.takeLast();
    const FolderNames half = names.takeFirstHalf();
    QTEST(takeAll(half), "half");
    QTEST(takeAll(names), "rest");
}

VANTOR_TEST_MAIN(TestFolderNames)
#include "tst_FolderNames.moc"
