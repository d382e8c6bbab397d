#include "tests/slices/kit/PlanKit.h"
#include "tests/support/run/TestMain.h"

namespace {

/// What else lies in a home: traps for a survey that goes wrong.
const QByteArrayList kBait{
    "letter at the top",
    ".ssh/id",
    ".gnupg/secring",
    "Documents/Trash/files/x",
    "Papers/Trash/files/x",
    "Papers/Trash/info/x",
    "Papers/cache/x",
    "Documents/Trash/info/x",
    "Documents/cache/x",
    "Downloads/Trash/files/x",
    "Downloads/Trash/info/x",
    "Downloads/cache/x",
    "Trash/files/x",
    "Trash/info/x",
    "cache/x",
    ".cache/cache/x",
    ".cache/Trash/files/x",
    ".cache/Trash/info/x",
    "snap/cache/x",
    "linked -> Documents",
    "led out -> ../elsewhere",
};

} // namespace

/// The plan stays the same or becomes smaller, whatever the user's file and the environment say.
class TestSlicesToCleanHazards final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isLedNowhereByTheUsersFile_data();
    void isLedNowhereByTheUsersFile();
    void isLedNowhereByTheEnvironment_data();
    void isLedNowhereByTheEnvironment();
};

void TestSlicesToCleanHazards::isLedNowhereByTheUsersFile_data()
{
    QTest::addColumn<QByteArray>("downloads");
    QTest::addColumn<QByteArrayList>("lost");
    const auto row = [](const char *name, const QByteArray &value,
                        const QByteArrayList &lost = {}) { QTest::newRow(name) << value << lost; };
    // A location in the home that may not be emptied: no other folder replaces it.
    const auto refused = [&row](const char *name, const QByteArray &value) {
        row(name, value, {"Downloads"});
    };
    row("the home", "$HOME");
    row("the home with a slash", "$HOME/");
    row("the home with a dot", "$HOME/.");
    row("the home by its path", "HOME");
    row("around the home", "$HOME/..");
    row("beside the home", "$HOME/../elsewhere");
    row("beside the home, named like it", "HOME2");
    refused("out and in again", "$HOME/../anna/Papers");
    row("everything", "/");
    row("elsewhere", "/etc");
    row("relative", "Papers");
    row("another variable", "$HOMES/Papers");
    row("a command", "$HOME/$(echo Papers)");
    row("a command in other words", "$HOME/`echo Papers`");
    row("a quote that ends early", "$HOME/Doc\"uments");
    row("a line that goes on", "$HOME/Papers\" \"$HOME/Music");
    row("the end of a text within", QByteArray("$HOME/Papers\0x", 14));
    refused("the documents", "$HOME/Documents");
    refused("hidden", "$HOME/.ssh");
    refused("in the hidden", "$HOME/.gnupg/private");
    row("a cache", "$HOME/.cache", {"Downloads", "Cache"});
    row("in a cache", "$HOME/.cache/cache", {"Downloads", "Cache"});
    refused("around the trash", "$HOME/.local/share");
    refused("the programs' own", "$HOME/snap");
}

void TestSlicesToCleanHazards::isLedNowhereByTheUsersFile()
{
    QFETCH(QByteArray, downloads);
    QFETCH(const QByteArrayList, lost);
    const MadeHome home(kPlainHome);
    makeAll(home, kBait);
    makeFile(home.outside("elsewhere/x"));
    makeFile(home.outside("anna2/x"));
    if (downloads.startsWith("HOME"))
        downloads.replace(0, 4, home.path());
    home.nameUserDirs("XDG_DOWNLOAD_DIR=\"" + downloads + "\"\n");
    const CleaningPlan plan = planOfEverything(home, home.survey());
    QByteArrayList expected = plainPlan();
    expected.removeIf(
        [&](const QByteArray &line) { return lost.contains(line.first(line.indexOf(':'))); });
    QCOMPARE(linesOf(home, plan), expected);
    QVERIFY(plan.refusals().isEmpty());
}

void TestSlicesToCleanHazards::isLedNowhereByTheEnvironment_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("cache");
    const auto row = [](const char *name, const QByteArray &data, const QByteArray &cache) {
        QTest::newRow(name) << data << cache;
    };
    row("where they are anyway", "HOME/.local/share", "HOME/.cache");
    row("nothing there", "HOME/nothing", "HOME/nothing/cache");
    row("the home", "HOME", "HOME");
    row("the home with a slash", "HOME/", "HOME/");
    row("around the home", "HOME/..", "HOME/..");
    row("beside the home", "HOME/../elsewhere", "HOME/../elsewhere/cache");
    row("beside the home, named like it", "HOME2", "HOME2/cache");
    row("out and in again", "HOME/../anna/Papers", "HOME/../anna/Papers/cache");
    row("everything", "/", "/");
    row("elsewhere", "/usr/share", "/var/cache");
    row("relative", "Papers", "Papers/cache");
    row("the documents", "HOME/Documents", "HOME/Documents");
    row("among the documents", "HOME/Documents", "HOME/Documents/cache");
    row("among the downloads", "HOME/Downloads", "HOME/Downloads/cache");
    row("in a cache", "HOME/.cache", "HOME/.cache/cache");
    row("around the trash", "HOME/.local", "HOME/.local/share");
    row("the keys", "HOME/.ssh", "HOME/.gnupg");
    row("the programs' own", "HOME/snap", "HOME/snap/cache");
    row("a link", "HOME/linked", "HOME/linked/cache");
    row("a link out of the home", "HOME/led out", "HOME/led out/cache");
    row("the end of a text within", QByteArray("HOME/cache\0/x", 13),
        QByteArray("HOME/\0/cache", 12));
}

void TestSlicesToCleanHazards::isLedNowhereByTheEnvironment()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, cache);
    const MadeHome home(kPlainHome);
    makeAll(home, kBait);
    for (const char *folder : {"elsewhere", "anna2"}) {
        for (const char *path : {"/Trash/files/x", "/Trash/info/x", "/cache/x"})
            makeFile(home.outside(folder) + path);
    }
    const CleaningPlan plan = planOfEverything(
        home, home.survey({data.replace("HOME", home.path()), cache.replace("HOME", home.path())}));
    QCOMPARE(linesOf(home, plan), plainPlan());
    QVERIFY(plan.refusals().isEmpty());
}

VANTOR_TEST_MAIN(TestSlicesToCleanHazards)
#include "tst_SlicesToCleanHazards.moc"
