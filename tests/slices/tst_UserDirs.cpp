#include "slices/UserDirs.h"
#include "tests/support/TestMain.h"

namespace {

const QByteArray kHome = "/home/anna";

QByteArray downloadsOf(const QByteArray &text)
{
    return UserDirs::parse(text).folder("XDG_DOWNLOAD_DIR", kHome).value_or("-");
}

} // namespace

class TestUserDirs final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheFileOfADesktop();
    void followsTheRulesOfTheFile_data();
    void followsTheRulesOfTheFile();
    void findsWhatIsBelowTheHome_data();
    void findsWhatIsBelowTheHome();
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
    QCOMPARE(dirs.folder("XDG_DESKTOP_DIR", kHome), QByteArray("Schreibtisch"));
    QCOMPARE(dirs.folder("XDG_DOWNLOAD_DIR", kHome), QByteArray("Downloads"));
    QCOMPARE(dirs.folder("XDG_PUBLICSHARE_DIR", kHome), QByteArray("\303\226ffentlich"));
    QVERIFY(!dirs.folder("XDG_TEMPLATES_DIR", kHome)); // the home itself: there is none
    QVERIFY(!dirs.folder("XDG_MUSIC_DIR", kHome));
    QVERIFY(!dirs.folder("", kHome));
}

void TestUserDirs::followsTheRulesOfTheFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("folder");
    const auto row = [](const char *name, const QByteArray &text, const QByteArray &folder) {
        QTest::newRow(name) << text << folder;
    };
    row("absolute", "XDG_DOWNLOAD_DIR=\"/home/anna/get\"", "get");
    row("deep", "XDG_DOWNLOAD_DIR=\"$HOME/a/b c\"", "a/b c");
    row("blanks around", " \tXDG_DOWNLOAD_DIR = \"$HOME/get\" \t", "get");
    row("a remark behind", "XDG_DOWNLOAD_DIR=\"$HOME/get\" # mine", "get");
    row("the last counts", "XDG_DOWNLOAD_DIR=\"$HOME/a\"\nXDG_DOWNLOAD_DIR=\"$HOME/b\"", "b");
    row("the last that is one", "XDG_DOWNLOAD_DIR=\"$HOME/a\"\nXDG_DOWNLOAD_DIR=$HOME/b", "a");
    row("the last leads out", "XDG_DOWNLOAD_DIR=\"$HOME/a\"\nXDG_DOWNLOAD_DIR=\"/etc\"", "-");
    row("escapes", "XDG_DOWNLOAD_DIR=\"$HOME/a\\\"b\\\\c\\$d\\`e\"", "a\"b\\c$d`e");
    row("bytes that are no text", "XDG_DOWNLOAD_DIR=\"$HOME/\xff\xfe\"", "\xff\xfe");
    row("slashes and dots", "XDG_DOWNLOAD_DIR=\"$HOME//a/./b/\"", "a/b");
    row("lines of another system", "XDG_DOWNLOAD_DIR=\"$HOME/get\"\r\n", "get");
    row("no quotes", "XDG_DOWNLOAD_DIR=$HOME/get", "-");
    row("single quotes", "XDG_DOWNLOAD_DIR='/home/anna/get'", "-");
    row("an open quote", "XDG_DOWNLOAD_DIR=\"$HOME/get", "-");
    row("an escape at the end", "XDG_DOWNLOAD_DIR=\"$HOME/get\\", "-");
    row("relative", "XDG_DOWNLOAD_DIR=\"get\"", "-");
    row("an escaped home", "XDG_DOWNLOAD_DIR=\"\\$HOME/get\"", "-");
    row("another variable", "XDG_DOWNLOAD_DIR=\"$HOMES/get\"", "-");
    row("a variable inside", "XDG_DOWNLOAD_DIR=\"$HOME/$USER\"", "-");
    row("a command", "XDG_DOWNLOAD_DIR=\"$HOME/$(touch /tmp/x)\"", "-");
    row("a command in the old way", "XDG_DOWNLOAD_DIR=\"$HOME/`id`\"", "-");
    row("a command behind", "XDG_DOWNLOAD_DIR=\"$HOME/get\"; rm -r /", "-");
    row("exported", "export XDG_DOWNLOAD_DIR=\"$HOME/get\"", "-");
    row("another name", "XDG_DOWNLOAD_DIRS=\"$HOME/get\"", "-");
    row("a NUL", QByteArray("XDG_DOWNLOAD_DIR=\"$HOME/a\0b\"", 28), "-");
    row("the home", "XDG_DOWNLOAD_DIR=\"$HOME\"", "-");
    row("the home, with a slash", "XDG_DOWNLOAD_DIR=\"$HOME/\"", "-");
    row("the home, absolute", "XDG_DOWNLOAD_DIR=\"/home/anna/\"", "-");
    row("the home's folder", "XDG_DOWNLOAD_DIR=\"$HOME/..\"", "-");
    row("out and in again", "XDG_DOWNLOAD_DIR=\"$HOME/../anna/get\"", "-");
    row("a neighbour's", "XDG_DOWNLOAD_DIR=\"/home/annabel/get\"", "-");
    row("the root", "XDG_DOWNLOAD_DIR=\"/\"", "-");
    row("hidden", "XDG_DOWNLOAD_DIR=\"$HOME/.ssh\"", "-");
    row("inside a hidden one", "XDG_DOWNLOAD_DIR=\"$HOME/.config/a\"", "-");
    row("hidden inside", "XDG_DOWNLOAD_DIR=\"$HOME/a/.git\"", "-");
    row("empty", "XDG_DOWNLOAD_DIR=\"\"", "-");
    row("nothing", "", "-");
}

void TestUserDirs::followsTheRulesOfTheFile()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QByteArray, folder);
    QCOMPARE(downloadsOf(text), folder);
}

void TestUserDirs::findsWhatIsBelowTheHome_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("below");
    QTest::newRow("below") << QByteArray("/home/anna/a") << QByteArray("a");
    QTest::newRow("untidy") << QByteArray("//home/./anna//.a/") << QByteArray(".a");
    QTest::newRow("the home") << QByteArray("/home/anna") << QByteArray("-");
    QTest::newRow("a longer name") << QByteArray("/home/anna2/a") << QByteArray("-");
    QTest::newRow("relative") << QByteArray("home/anna/a") << QByteArray("-");
    QTest::newRow("up") << QByteArray("/home/anna/a/../b") << QByteArray("-");
    QTest::newRow("empty") << QByteArray() << QByteArray("-");
}

void TestUserDirs::findsWhatIsBelowTheHome()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, below);
    QCOMPARE(pathBelowHome(path, kHome).value_or("-"), below);
    QCOMPARE(pathBelowHome(path, kHome + '/').value_or("-"), below);
}

VANTOR_TEST_MAIN(TestUserDirs)
#include "tst_UserDirs.moc"
