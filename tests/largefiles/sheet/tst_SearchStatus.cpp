#include "largefiles/sheet/SearchStatus.h"
#include "tests/support/run/TestMain.h"

#include <QTest>

namespace {

FileUrl folder(const QByteArray &path)
{
    return FileUrl::fromPath(path, FileUrlKind::Folder);
}

} // namespace

class SearchStatusTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysNothingBeforeTheFirstSearch()
    {
        const SearchStatus status;
        QCOMPARE(status.text(0), QString());
        QCOMPARE(status.emptyText(), QString());
        QCOMPARE(status.details(), QString());
    }

    void saysWhereItSearches()
    {
        SearchStatus status;
        status.begin();
        QCOMPARE(status.text(0), QStringLiteral("Searching…"));
        QCOMPARE(status.emptyText(), QStringLiteral("Looking for large files…"));
        status.searching(folder("/home/u/Movies"));
        QCOMPARE(status.text(7), QStringLiteral("Searching Movies…"));
    }

    void countsWhatWasFound_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << 0 << QStringLiteral("No files over 100 MB");
        QTest::newRow("one") << 1 << QStringLiteral("1 file over 100 MB");
        QTest::newRow("many") << 12 << QStringLiteral("12 files over 100 MB");
    }

    void countsWhatWasFound()
    {
        QFETCH(int, count);
        SearchStatus status;
        status.begin();
        status.searching(folder("/home/u/Movies"));
        status.end(true);
        QTEST(status.text(count), "text");
        status.begin();
        status.end(false);
        QTEST(status.text(count), "text");
    }

    void saysThatThereIsNothingOnlyAtTheEnd()
    {
        SearchStatus status;
        status.begin();
        status.end(false);
        QCOMPARE(status.emptyText(), QString());
        status.begin();
        status.end(true);
        QVERIFY(status.emptyText().startsWith(QStringLiteral("There are no files over 100 MB")));
    }

    void tellsWhatCouldNotBeRead()
    {
        SearchStatus status;
        status.begin();
        status.unreadable(folder("/home/u/Music/locked"));
        QCOMPARE(status.text(0), QStringLiteral("Searching…  ·  1 place could not be read"));
        status.unreadable(folder("/home/u/Sites"));
        status.end(true);
        QCOMPARE(status.text(3),
                 QStringLiteral("3 files over 100 MB  ·  2 places could not be read"));
        QCOMPARE(status.details(), QStringLiteral("/home/u/Music/locked\n/home/u/Sites"));
        QVERIFY(status.emptyText().contains(QStringLiteral("in what could be read")));
    }

    void tellsWhatIsOnAnotherDisk()
    {
        SearchStatus status;
        status.begin();
        status.onAnotherDisk(folder("/home/u/Movies"));
        status.end(true);
        QCOMPARE(status.text(0), QStringLiteral("No files over 100 MB")); // nothing went wrong
        QVERIFY(status.emptyText().endsWith(QStringLiteral("in your folders on this disk.")));
        status.unreadable(folder("/home/u/Sites"));
        QCOMPARE(status.text(0),
                 QStringLiteral("No files over 100 MB  ·  1 place could not be read"));
        QCOMPARE(status.details(), QStringLiteral("/home/u/Movies is on another disk, which "
                                                  "Vantor never cleans\n/home/u/Sites"));
        status.begin();
        QCOMPARE(status.details(), QString());
    }

    void cutsALongListShort()
    {
        SearchStatus status;
        for (int i = 0; i < 1000; ++i)
            status.unreadable(folder("/home/u/" + QByteArray::number(i)));
        const QStringList lines = status.details().split(u'\n');
        QCOMPARE(lines.size(), 21);
        QCOMPARE(lines.constLast(), QStringLiteral("…"));
    }

    void aNewSearchForgetsTheLastOne()
    {
        SearchStatus status;
        status.unreadable(folder("/home/u/Music"));
        status.begin();
        QCOMPARE(status.details(), QString());
        QCOMPARE(status.text(0), QStringLiteral("Searching…"));
    }
};

VANTOR_TEST_MAIN(SearchStatusTest)
#include "tst_SearchStatus.moc"
