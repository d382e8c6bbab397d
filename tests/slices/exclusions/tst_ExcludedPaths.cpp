#include "slices/exclusions/ExcludedPaths.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/run/TestMain.h"

#include <QRandomGenerator>

Q_DECLARE_METATYPE(ExclusionMatch)

class TestExcludedPaths final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsOrderAndDuplicates();
    void keepsWhatItCannotReadApart();

    void findsASliceExcludedOnlyWhenAllItsPlacesAre_data();
    void findsASliceExcludedOnlyWhenAllItsPlacesAre();
    void logsEachMatchOfASlice();
    void logsNoNameAsALineOfItsOwn();

    void judgesByText_data();
    void judgesByText();
    void judgesByPath_data();
    void judgesByPath();
    void sparesNamesOfAnyBytesAndNoOthers_data();
    void sparesNamesOfAnyBytesAndNoOthers();
    void agreesWithTheRuleOnWholeUrls();
};

namespace {

FileUrl urlOf(const QByteArray &path)
{
    return FileUrl::fromPath(path, path.endsWith('/') ? FileUrlKind::Folder : FileUrlKind::File);
}

FileUrls urlsOf(const QByteArrayList &paths)
{
    FileUrls urls;
    for (const QByteArray &path : paths)
        urls.append(urlOf(path));
    return urls;
}

ExcludedPaths excludedPaths(const QByteArrayList &paths)
{
    return excluding(urlsOf(paths));
}

/// Whether one of the two rules keeps the candidate.
bool isSpared(const ExcludedPaths &excluded, const FileUrl &candidate)
{
    const QByteArray path = candidate.path();
    return excluded.matchByText(candidate.isFolder() ? path + '/' : path) != ExclusionMatch::None ||
           excluded.matchByPath(path + '/') != ExclusionMatch::None;
}

} // namespace

void TestExcludedPaths::keepsOrderAndDuplicates()
{
    const QStringList strings{QStringLiteral("file:///h/b/"), QStringLiteral("file:///h/a"),
                              QStringLiteral("file:///h/b/")};
    const auto excluded = ExcludedPaths::fromStoredStrings(strings);
    QCOMPARE(excluded.urls().size(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(stored(excluded.urls().at(i)), strings.at(i));
    QVERIFY(excluded.unparsable().isEmpty());
    QVERIFY(!excluded.isEmpty());
    QVERIFY(ExcludedPaths().isEmpty());
}

void TestExcludedPaths::keepsWhatItCannotReadApart()
{
    const auto excluded = ExcludedPaths::fromStoredStrings(
        {QStringLiteral("file:///h/a"), QStringLiteral("/h/b"), QStringLiteral("file:///h/%zz")});
    QCOMPARE(excluded.urls().size(), 1);
    QCOMPARE(excluded.unparsable(),
             QStringList({QStringLiteral("/h/b"), QStringLiteral("file:///h/%zz")}));
    QVERIFY(!ExcludedPaths::fromStoredStrings({QString()}).isEmpty());
}

void TestExcludedPaths::findsASliceExcludedOnlyWhenAllItsPlacesAre_data()
{
    QTest::addColumn<QByteArrayList>("locations");
    QTest::addColumn<QByteArrayList>("excluded");
    QTest::addColumn<bool>("isExcluded");
    const QByteArrayList three{"/h/i/iPad/", "/h/i/iPod/", "/h/i/iPhone/"};
    QTest::addRow("no places") << QByteArrayList() << QByteArrayList{"/h/a/"} << false;
    QTest::addRow("nothing excluded") << three << QByteArrayList() << false;
    QTest::addRow("its place") << QByteArrayList{"/h/a/"} << QByteArrayList{"/h/a/"} << true;
    QTest::addRow("as a file") << QByteArrayList{"/h/a/"} << QByteArrayList{"/h/a"} << true;
    QTest::addRow("one of three") << three << QByteArrayList{"/h/i/iPod/"} << false;
    QTest::addRow("all three") << three << QByteArrayList{three[2], three[0], three[1]} << true;
    QTest::addRow("parent") << three << QByteArrayList{"/h/i/"} << false;
    QTest::addRow("child") << QByteArrayList{"/h/a/"} << QByteArrayList{"/h/a/b/"} << false;
    QTest::addRow("prefix") << QByteArrayList{"/h/ab/"} << QByteArrayList{"/h/a"} << false;
    QTest::addRow("other case") << QByteArrayList{"/h/a/"} << QByteArrayList{"/h/A/"} << false;
}

void TestExcludedPaths::findsASliceExcludedOnlyWhenAllItsPlacesAre()
{
    QFETCH(QByteArrayList, locations);
    QFETCH(QByteArrayList, excluded);
    QFETCH(bool, isExcluded);
    const LogRecorder log;
    QCOMPARE(excludedPaths(excluded).containsExcludedFile(urlsOf(locations)), isExcluded);
}

void TestExcludedPaths::logsNoNameAsALineOfItsOwn()
{
    const LogRecorder log;
    const auto excluded = excludedPaths({"/h/b\nvantor: all is well\x1b[2J/"});
    QVERIFY(excluded.containsExcludedFile(urlsOf({"/h/b\nvantor: all is well\x1b[2J/"})));
    const auto logged = QStringLiteral("/h/b%0Avantor: all is well%1B[2J");
    QCOMPARE(log.lines(), QStringList(logged + QStringLiteral(", ") + logged));
}

void TestExcludedPaths::logsEachMatchOfASlice()
{
    const LogRecorder log;
    const auto excluded = excludedPaths({"/h/b/", "/h/a/", "/h/b"});
    QVERIFY(!excluded.containsExcludedFile(urlsOf({"/h/b/", "/h/c/", "/h/a/"})));
    // The search goes on over all exclusions, and ends at the first place without a match.
    QCOMPARE(log.lines(),
             QStringList({QStringLiteral("/h/b, /h/b"), QStringLiteral("/h/b, /h/b")}));
}

void TestExcludedPaths::judgesByText_data()
{
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QByteArrayList>("excluded");
    QTest::addColumn<ExclusionMatch>("match");
    const QByteArrayList folder{"/h/d/Keep/"};
    QTest::addRow("the folder") << QByteArray("/h/d/Keep/") << folder << ExclusionMatch::Whole;
    QTest::addRow("in it") << QByteArray("/h/d/Keep/x/y") << folder << ExclusionMatch::Whole;
    QTest::addRow("on the way") << QByteArray("/h/d/") << folder << ExclusionMatch::OnTheWay;
    QTest::addRow("beside") << QByteArray("/h/d/Kept") << folder << ExclusionMatch::None;
    QTest::addRow("longer folder")
        << QByteArray("/h/d/KeepMore/") << folder << ExclusionMatch::None;
    QTest::addRow("file of the name")
        << QByteArray("/h/d/Keep") << folder << ExclusionMatch::OnTheWay;
    QTest::addRow("shorter file") << QByteArray("/h/d/Ke") << folder << ExclusionMatch::OnTheWay;
    QTest::addRow("shorter folder") << QByteArray("/h/d/Ke/") << folder << ExclusionMatch::None;
    const QByteArrayList file{"/h/d/ab"};
    QTest::addRow("longer than the file")
        << QByteArray("/h/d/ab.mov") << file << ExclusionMatch::Whole;
    QTest::addRow("folder longer than it")
        << QByteArray("/h/d/abc/") << file << ExclusionMatch::Whole;
    QTest::addRow("shorter than the file")
        << QByteArray("/h/d/a") << file << ExclusionMatch::OnTheWay;
    QTest::addRow("between two") << QByteArray("/h/d/b") << QByteArrayList{"/h/d/a", "/h/d/c"}
                                 << ExclusionMatch::None;
    QTest::addRow("second of a row")
        << QByteArray("/h/d/a/z") << QByteArrayList{"/h/d/a/", "/h/d/a/b/", "/h/d/a/c"}
        << ExclusionMatch::Whole;
    QTest::addRow("everything") << QByteArray("/x") << QByteArrayList{"/"} << ExclusionMatch::Whole;
}

void TestExcludedPaths::judgesByText()
{
    QFETCH(QByteArray, candidate);
    QFETCH(QByteArrayList, excluded);
    QFETCH(ExclusionMatch, match);
    QCOMPARE(excludedPaths(excluded).matchByText(candidate), match);
}

void TestExcludedPaths::judgesByPath_data()
{
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QByteArrayList>("excluded");
    QTest::addColumn<ExclusionMatch>("match");
    for (const char *form : {"/h/d/ab", "/h/d/ab/"}) {
        const QByteArrayList excluded{form};
        QTest::addRow("itself, %s", form)
            << QByteArray("/h/d/ab/") << excluded << ExclusionMatch::Whole;
        QTest::addRow("in it, %s", form)
            << QByteArray("/h/d/ab/x/") << excluded << ExclusionMatch::Whole;
        QTest::addRow("around, %s", form)
            << QByteArray("/h/") << excluded << ExclusionMatch::OnTheWay;
        QTest::addRow("longer, %s", form)
            << QByteArray("/h/d/abc/") << excluded << ExclusionMatch::None;
        QTest::addRow("shorter, %s", form)
            << QByteArray("/h/d/a/") << excluded << ExclusionMatch::None;
        QTest::addRow("dotted, %s", form)
            << QByteArray("/h/d/ab.c/") << excluded << ExclusionMatch::None;
    }
    QTest::addRow("the root") << QByteArray("/h/") << QByteArrayList{"/"} << ExclusionMatch::Whole;
}

void TestExcludedPaths::judgesByPath()
{
    QFETCH(QByteArray, candidate);
    QFETCH(QByteArrayList, excluded);
    QFETCH(ExclusionMatch, match);
    QCOMPARE(excludedPaths(excluded).matchByPath(candidate), match);
}

void TestExcludedPaths::sparesNamesOfAnyBytesAndNoOthers_data()
{
    QTest::addColumn<QByteArray>("kept");
    QTest::addColumn<QByteArray>("other");
    QTest::addRow("blank") << QByteArray("my films") << QByteArray("my%20films");
    QTest::addRow("percent") << QByteArray("100%x") << QByteArray("100%25x");
    QTest::addRow("escape") << QByteArray("a%2Fb") << QByteArray("a%2fb");
    QTest::addRow("hash") << QByteArray("a#b") << QByteArray("a%23b");
    QTest::addRow("question") << QByteArray("what?") << QByteArray("what%3F");
    QTest::addRow("newline") << QByteArray("two\nlines") << QByteArray("two lines");
    QTest::addRow("invalid UTF-8") << QByteArray("a\xff") << QByteArray("a\xef\xbf\xbd");
    QTest::addRow("replaced") << QByteArray("a\xef\xbf\xbd") << QByteArray("a\xff");
    QTest::addRow("composed") << QByteArray("\xc3\xa4") << QByteArray("a\xcc\x88");
    QTest::addRow("case") << QByteArray("Keep") << QByteArray("keep");
    QTest::addRow("255 bytes") << QByteArray(255, '\xe9') << QByteArray(254, '\xe9') + 'x';
}

void TestExcludedPaths::sparesNamesOfAnyBytesAndNoOthers()
{
    QFETCH(QByteArray, kept);
    QFETCH(QByteArray, other);
    for (const QByteArray &end : {QByteArray(), QByteArray("/")}) {
        const auto excluded = excludedPaths({"/h/d/" + kept + end});
        QVERIFY(isSpared(excluded, urlOf("/h/d/" + kept + end)));
        QVERIFY(!isSpared(excluded, urlOf("/h/d/" + other + end)));
        QVERIFY(isSpared(excluded, urlOf("/h/d/" + kept + "/below")));
        QVERIFY(!isSpared(excluded, urlOf("/h/d/" + other + "/below")));
    }
}

/// Compares the bisection on raw paths with the rule as it is worded: texts that contain each
/// other.
void TestExcludedPaths::agreesWithTheRuleOnWholeUrls()
{
    QRandomGenerator random(20'260'101);
    const QByteArrayList names{"a", "ab", "a.b", "A", "%", "%2", "\xff", "\xc3\xa4", "a b"};
    const auto randomUrl = [&] {
        QByteArray path;
        for (int depth = random.bounded(1, 4); depth > 0; --depth)
            path += '/' + names[random.bounded(int(names.size()))];
        return urlOf(path + (random.bounded(2) ? "/" : ""));
    };
    int spared = 0;
    for (int round = 0; round < 20'000; ++round) {
        FileUrls urls;
        for (int count = random.bounded(1, 6); count > 0; --count)
            urls.append(randomUrl());
        const FileUrl candidate = randomUrl();
        const QByteArray text = candidate.absoluteString();
        const bool isSpared = std::any_of(urls.begin(), urls.end(), [&](const FileUrl &url) {
            const QByteArray other = url.absoluteString();
            return text.contains(other) || other.contains(text);
        });
        const QByteArray path = candidate.path() + (candidate.isFolder() ? "/" : "");
        QCOMPARE(excluding(urls).matchByText(path) != ExclusionMatch::None, isSpared);
        spared += isSpared ? 1 : 0;
    }
    QVERIFY(spared > 2'000 && spared < 18'000);
}

VANTOR_TEST_MAIN(TestExcludedPaths)
#include "tst_ExcludedPaths.moc"
