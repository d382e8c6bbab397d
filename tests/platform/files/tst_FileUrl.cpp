#include "platform/files/FileUrl.h"
#include "tests/support/run/TestMain.h"

class TestFileUrl final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadsBackToTheSameBytes_data();
    void leadsBackToTheSameBytes();
    void givesFoldersTheirTrailingSlash();
    void dropsSpareSlashes();
    void refusesWhatIsNotOneAbsolutePath_data();
    void refusesWhatIsNotOneAbsolutePath();
    void appendsRelativePaths();
    void knowsTheLastName();
    void seesNamesThatLeadElsewhere();
};

void TestFileUrl::leadsBackToTheSameBytes_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addRow("plain") << QByteArray("Movies");
    QTest::addRow("blank") << QByteArray("my films");
    QTest::addRow("percent") << QByteArray("100%");
    QTest::addRow("percent escape") << QByteArray("a%2Fb");
    QTest::addRow("hash") << QByteArray("a#b");
    QTest::addRow("question") << QByteArray("what?");
    QTest::addRow("newline") << QByteArray("two\nlines");
    QTest::addRow("umlaut composed") << QByteArray("\xc3\xa4");
    QTest::addRow("umlaut decomposed") << QByteArray("a\xcc\x88");
    QTest::addRow("japanese") << QByteArray("\xe3\x83\x80");
    QTest::addRow("invalid UTF-8") << QByteArray("a\xff");
    QTest::addRow("only invalid") << QByteArray("\xff\xfe");
    QTest::addRow("backslash") << QByteArray("a\\b");
    QTest::addRow("255 bytes") << QByteArray(255, '\xe9');
}

void TestFileUrl::leadsBackToTheSameBytes()
{
    QFETCH(QByteArray, name);
    const FileUrl url = FileUrl::fromPath("/home/u/" + name, FileUrlKind::Folder);
    const QString stored = QString::fromLatin1(url.absoluteString());
    const auto back = FileUrl::fromString(stored);
    QVERIFY(back);
    QCOMPARE(back->path(), "/home/u/" + name);
    QVERIFY(*back == url);
    QCOMPARE(back->lastPathComponent(), name);
}

void TestFileUrl::givesFoldersTheirTrailingSlash()
{
    QCOMPARE(FileUrl::fromPath("/Users/u/Movies", FileUrlKind::Folder).absoluteString(),
             QByteArray("file:///Users/u/Movies/"));
    QCOMPARE(FileUrl::fromPath("/Users/u/a.mov", FileUrlKind::File).absoluteString(),
             QByteArray("file:///Users/u/a.mov"));
    QCOMPARE(FileUrl::fromPath("/", FileUrlKind::Folder).absoluteString(), QByteArray("file:///"));
}

void TestFileUrl::dropsSpareSlashes()
{
    QCOMPARE(FileUrl::fromPath("//a///b//", FileUrlKind::Folder).path(), QByteArray("/a/b"));
}

void TestFileUrl::refusesWhatIsNotOneAbsolutePath_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"",
                             "/home/u",
                             "home",
                             "http://example.invalid/a",
                             "file://host/a",
                             "file:a",
                             "file:///a?b",
                             "file:///a#b",
                             "file:///a%",
                             "file:///a%4",
                             "file:///a%zz",
                             "file:///a%+1",
                             "file:///a%4 ",
                             "file:///a%4\t/b",
                             "file:///a%4\n",
                             "file:///a%00b",
                             "file:///a/../b",
                             "file:///./a",
                             "file:///a/%2e%2e/b",
                             "file://"})
        QTest::addRow("%s", text) << QString::fromLatin1(text);
}

void TestFileUrl::refusesWhatIsNotOneAbsolutePath()
{
    QFETCH(QString, text);
    QVERIFY(!FileUrl::fromString(text));
}

void TestFileUrl::appendsRelativePaths()
{
    const FileUrl home = FileUrl::fromPath("/home/u", FileUrlKind::Folder);
    QCOMPARE(home.appending("Library/Caches", FileUrlKind::Folder).absoluteString(),
             QByteArray("file:///home/u/Library/Caches/"));
    QVERIFY(!FileUrl().appending("a", FileUrlKind::File).isValid());
    QVERIFY(!FileUrl::fromPath("relative", FileUrlKind::File).isValid());
    QVERIFY(!FileUrl::fromPath(QByteArray("/a\0b", 4), FileUrlKind::File).isValid());
}

void TestFileUrl::knowsTheLastName()
{
    QCOMPARE(FileUrl::fromPath("/home/anna", FileUrlKind::Folder).lastPathComponent(),
             QByteArray("anna"));
    QCOMPARE(FileUrl::fromPath("/", FileUrlKind::Folder).lastPathComponent(), QByteArray());
}

void TestFileUrl::seesNamesThatLeadElsewhere()
{
    for (const char *path : {".", "..", "/a/../b", "a/.", "../a"})
        QVERIFY2(hasDotComponent(path), path);
    for (const char *path : {"", "/", "a/.b", "/a..b", "...", "/a/..b/b..", ". "})
        QVERIFY2(!hasDotComponent(path), path);
}

VANTOR_TEST_MAIN(TestFileUrl)
#include "tst_FileUrl.moc"
