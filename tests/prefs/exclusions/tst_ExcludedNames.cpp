#include "largefiles/search/LargeFileSearch.h"
#include "platform/base/ByteCount.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "tests/prefs/exclusions/PreferencesFixture.h"
#include "tests/support/run/GuiTestMain.h"

#include <filesystem>

namespace {

constexpr qint64 kSize = kSmallestLargeFile + 7;

class FoundPaths final : public LargeFileListener
{
public:
    void searching(const FileUrl &) override {}
    void found(const File &file) override { paths.append(file.fileURL().path()); }
    void unreadable(const UnreadablePlace &) override {}

    QList<QByteArray> paths;
};

/// A name, and another name for which a careless reader of names would take it.
struct NamePair
{
    const char *what;
    QByteArray name;
    QByteArray twin;
};

const NamePair kNames[] = {
    {"plain", "report", "Report"},
    {"space", "two words", "two%20words"},
    {"space at both ends", " around ", "around"},
    {"several spaces", "a  b", "a b"},
    {"plus", "a+b", "a b"},
    {"percent", "100% sure", "100%25 sure"},
    {"percent with digits", "%41lfa", "Alfa"},
    {"percent with few digits", "x%4", "x%04"},
    {"percent-encoded slash", "a%2Fb", "a%252Fb"},
    {"hash", "#1 hit", "%231 hit"},
    {"hash within", "C# notes", "C%23 notes"},
    {"question mark", "what?.txt", "what%3F.txt"},
    {"query", "?a=b&c=d", "%3Fa=b&c=d"},
    {"semicolon and colon", "12:30;late", "12%3A30%3Blate"},
    {"at and backslash", "me@host\\share", "me@host%5Cshare"},
    {"quotes", "\"it's\" `so`", "its so"},
    {"brackets", "[a]{b}(c)<d>|e", "abcde"},
    {"wildcards", "*?", "any"},
    {"dollar and tilde", "~$HOME", "home"},
    {"option", "-rf", "rf"},
    {"dots", "...", "other"},
    {"hidden", ".hidden", "hidden"},
    {"line end", "two\nlines", "two lines"},
    {"other controls", "\t\r\x01\x7f", "\t\\x01"},
    {"accent in one", "caf\xc3\xa9", "cafe\xcc\x81"},
    {"accent as two", "cafe\xcc\x81", "caf\xc3\xa9"},
    {"Cyrillic", "\xd0\xbf\xd0\xb0\xd0\xbf\xd0\xba\xd0\xb0", "papka"},
    {"Japanese", "\xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e", "nihongo"},
    {"right to left", "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", "shalom"},
    {"beyond the first plane", "\xf0\x9f\x8d\xb0 pie", "pie"},
    {"Turkish i", "\xc4\xb0zmir", "izmir"},
    {"replacement character", "\xef\xbf\xbd", "\xff"},
    {"no UTF-8", "\xff", "\xef\xbf\xbd"},
    {"Latin-1", "caf\xe9", "caf\xc3\xa9"},
    {"cut short", "half \xe6\x97", "half \xe6\x98"},
    {"overlong", "\xc0\xaf", "\xc0\xae"},
    {"surrogate", "\xed\xa0\x80", "\xed\xa0\x81"},
    {"longest", QByteArray(255, 'n'), QByteArray(254, 'n') + 'm'},
};

} // namespace

/// Whatever the name of a file or folder, the text that the preferences store leads back to it and
/// to nothing else. This holds for all that read the list: the sizes beside it, the search and the
/// cleaning.
class TestExcludedNames final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void leadBackToTheirFiles_data();
    void leadBackToTheirFiles();
    void areMeasured_data() { leadBackToTheirFiles_data(); }
    void areMeasured();
    void areNotFoundBySearches_data() { leadBackToTheirFiles_data(); }
    void areNotFoundBySearches();
    void areLeftByCleanings_data() { leadBackToTheirFiles_data(); }
    void areLeftByCleanings();

private:
    QByteArray make(const QByteArray &name);
    void exclude();

    std::unique_ptr<PreferencesFixture> m_fixture;
    QByteArray m_path;    ///< the excluded file or folder
    QByteArray m_content; ///< the file that must stay: the same, or in the folder
    QByteArray m_twin;    ///< the file that is not excluded
};

void TestExcludedNames::init()
{
    m_fixture = std::make_unique<PreferencesFixture>();
    m_fixture->folder.makeFolder("Downloads");
}

/// All measurements must end before the test's own log is gone.
void TestExcludedNames::cleanup()
{
    m_fixture.reset();
}

/// Makes a large file of this name in Downloads, or a folder of this name with one in it.
QByteArray TestExcludedNames::make(const QByteArray &name)
{
    QFETCH(bool, isFolder);
    QByteArray path = "Downloads/" + name;
    if (isFolder) {
        m_fixture->folder.makeFolder(path);
        path += "/inside";
    }
    return m_fixture->folder.makeFile(path, kSize);
}

/// The user drops it on the table, ends the program and starts it again.
void TestExcludedNames::exclude()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, twin);
    QFETCH(bool, isFolder);
    m_content = make(name);
    m_twin = make(twin);
    m_path = m_fixture->folder.path("Downloads/" + name);
    m_fixture->controller->window();
    QSignalSpy saved(&m_fixture->changed, &ExcludedFilesChangedNotification::posted);
    const FileUrl dragged = FileUrl::fromPath(m_path, FileUrlKind::File);
    Q_EMIT m_fixture->controller->tableView()->pathsDropped(
        pathsOfUriList(dragged.absoluteString() + "\r\n"));
    QCOMPARE(saved.size(), 1);
    QCOMPARE(m_fixture->setting().size(), 1);
    QTRY_COMPARE(m_fixture->setting().constFirst().endsWith(u'/'), isFolder);
    QVERIFY(m_fixture->defaults->synchronize());
    m_fixture->reopenSettings();
    QCOMPARE(m_fixture->setting().constFirst().endsWith(u'/'), isFolder);
}

void TestExcludedNames::leadBackToTheirFiles_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("twin");
    QTest::addColumn<bool>("isFolder");
    for (const NamePair &pair : kNames) {
        QTest::addRow("%s, file", pair.what) << pair.name << pair.twin << false;
        QTest::addRow("%s, folder", pair.what) << pair.name << pair.twin << true;
    }
}

void TestExcludedNames::leadBackToTheirFiles()
{
    exclude();
    const std::optional<FileUrl> url = FileUrl::fromString(m_fixture->setting().constFirst());
    QVERIFY(url);
    QCOMPARE(url->path(), m_path);
    QVERIFY(std::filesystem::exists(url->path().toStdString()));
    m_fixture->controller->window();
    QCOMPARE(m_fixture->controller->array().constFirst()->fileURL(), *url);
}

void TestExcludedNames::areMeasured()
{
    exclude();
    m_fixture->controller->window();
    QTRY_COMPARE(m_fixture->text(0, 1), stringFromByteCount(kSize));
}

void TestExcludedNames::areNotFoundBySearches()
{
    exclude();
    FoundPaths found;
    const LargeFileQuery query{.searchURLs = {m_fixture->url("Downloads")},
                               .excludedTexts = m_fixture->setting(),
                               .isListed = {}};
    searchLargeFiles(hostSystemCalls(), m_fixture->access(), query, found, {});
    QCOMPARE(found.paths, QList<QByteArray>{m_twin});
}

void TestExcludedNames::areLeftByCleanings()
{
    exclude();
    const SliceToClean downloads{.name = QStringLiteral("Downloads"),
                                 .fileURLs = {m_fixture->url("Downloads")},
                                 .confirmed = Moment::never()};
    const CleaningPlan plan =
        makeCleaningPlan(hostSystemCalls(), m_fixture->access(), {downloads},
                         ExcludedPaths::fromStoredStrings(m_fixture->setting()));
    const CleaningReport report = performCleaning(hostSystemCalls(), plan, {});
    QCOMPARE(report.refusalCount, 0U);
    QVERIFY(std::filesystem::exists(m_content.toStdString()));
    QVERIFY(!std::filesystem::exists(m_twin.toStdString()));
}

VANTOR_GUI_TEST_MAIN(TestExcludedNames)
#include "tst_ExcludedNames.moc"
