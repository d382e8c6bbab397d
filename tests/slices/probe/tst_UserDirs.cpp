#include "slices/probe/UserDirs.h"
#include "tests/support/run/TestMain.h"

namespace {

const QByteArray kHome = "/home/anna";

/// What the text says, and "?" before it where a line is not understood.
QByteArray downloadsOf(const QByteArray &text)
{
    const UserDirs dirs = UserDirs::parse(text);
    const QByteArray path = dirs.path("XDG_DOWNLOAD_DIR", kHome).value_or("-");
    return dirs.isUnclearBut("XDG_MUSIC_DIR") ? "?" + path : path;
}

} // namespace

class TestUserDirs final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheFileOfADesktop();
    void followsTheRulesOfTheFile_data();
    void followsTheRulesOfTheFile();
    void tellsOfWhichNamesItUnderstoodAll();
    void namesAllButOne();
};

void TestUserDirs::readsTheFileOfADesktop()
{
    const UserDirs dirs = UserDirs::parse("# This file is written by xdg-user-dirs-update\n"
                                          "# XDG_MUSIC_DIR=\"$HOME/Lieder\"\n"
                                          "\n"
                                          "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                          "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                                          "XDG_PUBLICSHARE_DIR=\"$HOME/\303\226ffentlich\"\n"
                                          "XDG_TEMPLATES_DIR=\"$HOME/\"\n");
    QCOMPARE(dirs.path("XDG_DESKTOP_DIR", kHome), kHome + "/Schreibtisch");
    QCOMPARE(dirs.path("XDG_DOWNLOAD_DIR", kHome), kHome + "/Downloads");
    QCOMPARE(dirs.path("XDG_PUBLICSHARE_DIR", kHome), kHome + "/\303\226ffentlich");
    QCOMPARE(dirs.path("XDG_TEMPLATES_DIR", kHome), kHome + '/');
    QVERIFY(!dirs.path("XDG_MUSIC_DIR", kHome));
    QVERIFY(!dirs.path("", kHome));
    QVERIFY(!dirs.isUnclearBut(""));
}

void TestUserDirs::followsTheRulesOfTheFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("folder");
    const auto row = [](const char *name, const QByteArray &text, const QByteArray &folder) {
        QTest::newRow(name) << text << folder;
    };
    row("absolute", "XDG_DOWNLOAD_DIR=\"/data/get\"", "/data/get");
    row("deep", "XDG_DOWNLOAD_DIR=\"$HOME/a/b c\"", "/home/anna/a/b c");
    row("blanks around", " \tXDG_DOWNLOAD_DIR = \"$HOME/get\" \t", "/home/anna/get");
    row("a remark behind", "XDG_DOWNLOAD_DIR=\"$HOME/get\" # mine", "/home/anna/get");
    row("the last counts", "XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=\"/b\"", "/b");
    row("the last that is one", "XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=/b", "?/a");
    row("escapes", "XDG_DOWNLOAD_DIR=\"/a\\\"b\\\\c\\$d\\`e\"", "/a\"b\\c$d`e");
    row("bytes that are no text", "XDG_DOWNLOAD_DIR=\"/\xff\xfe\"", "/\xff\xfe");
    row("as it is written", "XDG_DOWNLOAD_DIR=\"$HOME//a/../b/\"", "/home/anna//a/../b/");
    row("lines of another system", "XDG_DOWNLOAD_DIR=\"/get\"\r\n", "/get");
    row("the home", "XDG_DOWNLOAD_DIR=\"$HOME\"", "/home/anna");
    row("relative", "XDG_DOWNLOAD_DIR=\"get\"", "-");
    row("an escaped home", "XDG_DOWNLOAD_DIR=\"\\$HOME/get\"", "-");
    row("empty", "XDG_DOWNLOAD_DIR=\"\"", "-");
    row("no quotes", "XDG_DOWNLOAD_DIR=$HOME/get", "?-");
    row("single quotes", "XDG_DOWNLOAD_DIR='/home/anna/get'", "?-");
    row("an open quote", "XDG_DOWNLOAD_DIR=\"$HOME/get", "?-");
    row("an escape at the end", "XDG_DOWNLOAD_DIR=\"$HOME/get\\", "?-");
    row("another variable", "XDG_DOWNLOAD_DIR=\"$HOMES/get\"", "?-");
    row("a variable in braces", "XDG_DOWNLOAD_DIR=\"${HOME}/get\"", "?-");
    row("a variable inside", "XDG_DOWNLOAD_DIR=\"$HOME/$USER\"", "?-");
    row("a command", "XDG_DOWNLOAD_DIR=\"$HOME/$(touch /tmp/x)\"", "?-");
    row("a command in the old way", "XDG_DOWNLOAD_DIR=\"$HOME/`id`\"", "?-");
    row("a command behind", "XDG_DOWNLOAD_DIR=\"$HOME/get\"; rm -r /", "?-");
    row("more behind", "XDG_DOWNLOAD_DIR=\"$HOME/get\"more", "?-");
    row("exported", "export XDG_DOWNLOAD_DIR=\"$HOME/get\"", "?-");
    row("a NUL", QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a\0b\"", 28), "?-");
    row("an escaped NUL", QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a\\\0b\"", 29), "?-");
    row("another name", "XDG_DOWNLOAD_DIRS=\"$HOME/get\"", "-");
    row("something else", "PATH=$HOME/bin:$PATH", "-");
    row("nothing", "", "-");
}

void TestUserDirs::followsTheRulesOfTheFile()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QByteArray, folder);
    QCOMPARE(downloadsOf(text), folder);
}

void TestUserDirs::tellsOfWhichNamesItUnderstoodAll()
{
    const UserDirs dirs = UserDirs::parse("XDG_MUSIC_DIR=\"/a\"\nXDG_MUSIC_DIR=/b\n");
    QVERIFY(dirs.isUnclearBut("XDG_DOWNLOAD_DIR"));
    QVERIFY(!dirs.isUnclearBut("XDG_MUSIC_DIR"));
    const UserDirs two = UserDirs::parse("XDG_MUSIC_DIR=/a; XDG_VIDEOS_DIR=/b\n");
    QVERIFY(two.isUnclearBut("XDG_MUSIC_DIR") && two.isUnclearBut("XDG_VIDEOS_DIR"));
}

void TestUserDirs::namesAllButOne()
{
    const UserDirs dirs = UserDirs::parse("XDG_MUSIC_DIR=\"$HOME/m\"\nXDG_DOWNLOAD_DIR=\"/get\"\n"
                                          "XDG_PROJECTS_DIR=\"/p\"\nXDG_VIDEOS_DIR=\"v\"\n");
    QCOMPARE(dirs.allBut("XDG_DOWNLOAD_DIR", kHome), QByteArrayList({"/home/anna/m", "/p"}));
}

VANTOR_TEST_MAIN(TestUserDirs)
#include "tst_UserDirs.moc"
