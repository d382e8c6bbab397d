#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsFolder.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

constexpr auto kKnown = Replace::OnlyWhatIsKnown;

} // namespace

/// Where the settings come from when a file is bad, and whether the exclusions are known then.
class TestSettingsFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstStartIsWell();
    void contentsComeBack();
    void theNoteOfADamageComesBack();
    void aPeekChangesNothing();
    void theFolderIsMadeByTheFirstSave();
    void theFolderMayBeReachedThroughALink();

    void aDamagedFileIsSetAsideForThePreviousOne_data();
    void aDamagedFileIsSetAsideForThePreviousOne();
    void withoutAPreviousOneItStartsEmpty();
    void aDamagedPreviousOneIsSetAside();
    void aFileThatVanishedIsADamage();
    void anUnreadablePreviousOneOfAVanishedFileIsADamage();
    void aBadFileOfAnEarlierRunIsADamage();
    void aFolderThatCannotBeListedIsADamage();
    void aFileThatCannotBeReadStays_data();
    void aFileThatCannotBeReadStays();
    void aFolderUnderTheNameStays();
    void aFolderThatIsAFileIsADamage();
    void aFileOfAnotherUserStays();
    void whatCannotBeSetAsideIsNotOverwritten();
    void aBadTextThatCouldNotBeSetAsideIsNoPreviousOne();

    void aSaveTellsWhatWentWrong();
    void aSecondProgramsSettingsStay();
    void aFolderThatAppearsLaterKeepsItsSettings();
    void everyKillOnTheWayOutOfADamageStaysADamage();
};

void TestSettingsFile::theFirstStartIsWell()
{
    const SettingsFolder folder;
    QCOMPARE(folder.settings().load(), SettingsContent{});
    SettingsFile nowhere(folder.path(QStringLiteral("not/there")), hostSystemCalls());
    QCOMPARE(nowhere.load(), SettingsContent{});
    QVERIFY(QDir(folder.path()).isEmpty()); // reading writes nothing
}

void TestSettingsFile::contentsComeBack()
{
    const SettingsFolder folder;
    folder.fill();
    QCOMPARE(folder.settings().load(), SettingsFolder::second());
}

void TestSettingsFile::theNoteOfADamageComesBack()
{
    const SettingsFolder folder;
    SettingsContent content = SettingsFolder::first();
    content.damage = QStringLiteral("It “was” damaged.");
    QVERIFY(folder.settings().save(settingsText(content), kKnown).isWell());
    QCOMPARE(folder.settings().load(), content);
}

void TestSettingsFile::aPeekChangesNothing()
{
    const SettingsFolder folder;
    QCOMPARE(folder.settings().peek(), SettingsContent{});
    QVERIFY(QDir(folder.path()).isEmpty());
    folder.fill();
    QCOMPARE(folder.settings().peek(), SettingsFolder::second());
    SettingsFolder::setRaw(folder.file(), "spoilt");
    QCOMPARE(folder.settings().peek(), SettingsContent{});
    QCOMPARE(SettingsFolder::raw(folder.file()), QByteArray("spoilt"));
    QVERIFY(folder.badFiles().isEmpty());
}

void TestSettingsFile::theFolderIsMadeByTheFirstSave()
{
    const SettingsFolder folder;
    SettingsFile file(folder.path(QStringLiteral("a/b")), hostSystemCalls());
    file.load();
    QVERIFY(file.save(settingsText(SettingsFolder::first()), kKnown).isWell());
    SettingsFile again(folder.path(QStringLiteral("a/b")), hostSystemCalls());
    QCOMPARE(again.load(), SettingsFolder::first());
}

void TestSettingsFile::theFolderMayBeReachedThroughALink()
{
    const SettingsFolder folder;
    folder.fill();
    const QTemporaryDir elsewhere;
    const QString link = elsewhere.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(folder.path(), link));
    SettingsFile file(link, hostSystemCalls());
    QCOMPARE(file.load(), SettingsFolder::second());
    QVERIFY(file.save(settingsText(SettingsFolder::first()), kKnown).isWell());
    QCOMPARE(folder.settings().load(), SettingsFolder::first());
}

void TestSettingsFile::aDamagedFileIsSetAsideForThePreviousOne_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("hasChecksum");
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("no checksum") << QByteArray("{\"settings\": {}}\n") << false;
    QTest::newRow("wrong checksum") << QByteArray("{\"settings\": {}}\n#crc32 00000000\n") << false;
    const auto row = [](const char *name, const char *text) {
        QTest::newRow(name) << QByteArray(text) << true;
    };
    row("empty text", "");
    row("no JSON", "{\"settings\": {}");
    row("a list", "[]");
    row("a number", "1");
    row("no settings", "{}");
    row("settings of another type", "{\"settings\": []}");
    row("a note of another type", "{\"settings\": {}, \"damage\": 1}");
    row("excluded string", R"({"settings": {"VNTExcludedPathsString": "file:///a"}})");
    row("excluded null", R"({"settings": {"VNTExcludedPathsString": null}})");
    row("excluded object", R"({"settings": {"VNTExcludedPathsString": {"0": "file:///a"}}})");
    row("excluded number", R"({"settings": {"VNTExcludedPathsString": ["file:///a", 1]}})");
    row("excluded list", R"({"settings": {"VNTExcludedPathsString": [["file:///a"]]}})");
    row("excluded nothing", R"({"settings": {"VNTExcludedPathsString": ["file:///a", null]}})");
}

void TestSettingsFile::aDamagedFileIsSetAsideForThePreviousOne()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, hasChecksum);
    const SettingsFolder folder;
    folder.fill();
    if (hasChecksum)
        folder.setText(text); // what was current becomes the previous one
    else
        SettingsFolder::setRaw(folder.file(), text);
    const QByteArray bad = SettingsFolder::raw(folder.file());

    const SettingsContent content = folder.settings().load();
    QCOMPARE(content.values,
             (hasChecksum ? SettingsFolder::second() : SettingsFolder::first()).values);
    QCOMPARE(folder.badFiles().size(), 1);
    const QString kept = folder.path(folder.badFiles().first());
    QVERIFY2(content.damage.contains(kept), qPrintable(content.damage));
    QCOMPARE(SettingsFolder::raw(kept), bad);
    QVERIFY(!QFile::exists(folder.file()));
}

void TestSettingsFile::withoutAPreviousOneItStartsEmpty()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    const SettingsContent content = folder.settings().load();
    QVERIFY(content.values.isEmpty());
    QVERIFY(content.damage.contains(QStringLiteral("without any settings")));
}

void TestSettingsFile::aDamagedPreviousOneIsSetAside()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    SettingsFolder::setRaw(folder.previousFile(), "damaged, too");
    const SettingsContent content = folder.settings().load();
    QVERIFY(content.values.isEmpty() && !content.damage.isEmpty());
    QCOMPARE(folder.badFiles().size(), 2);
    QVERIFY(!QFile::exists(folder.previousFile()));
}

void TestSettingsFile::aFileThatVanishedIsADamage()
{
    const SettingsFolder folder;
    folder.fill();
    QVERIFY(QFile::remove(folder.file()));
    const SettingsContent content = folder.settings().load();
    QCOMPARE(content.values, SettingsFolder::first().values);
    QVERIFY2(content.damage.contains(QStringLiteral("are gone")), qPrintable(content.damage));
}

void TestSettingsFile::anUnreadablePreviousOneOfAVanishedFileIsADamage()
{
    const SettingsFolder folder;
    QVERIFY(QDir().mkpath(folder.previousFile()));
    const SettingsContent content = folder.settings().load();
    QVERIFY(content.values.isEmpty() && !content.damage.isEmpty());
    QVERIFY(QFile::exists(folder.previousFile()));
}

void TestSettingsFile::aBadFileOfAnEarlierRunIsADamage()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file() + QStringLiteral(".bad-20250101T000000Z"), "damaged");
    QVERIFY(!folder.settings().load().damage.isEmpty());
    // Once the user has looked, a good content counts.
    QVERIFY(folder.settings().save(settingsText(SettingsFolder::first()), kKnown).isWell());
    QCOMPARE(folder.settings().load(), SettingsFolder::first());
}

void TestSettingsFile::aFolderThatCannotBeListedIsADamage()
{
    const SettingsFolder folder;
    const HookedSystem calls(
        [](int, std::string_view name) { return name == "readEntries" ? EIO : 0; });
    QVERIFY(!folder.settings(calls).load().damage.isEmpty());
}

void TestSettingsFile::aFileThatCannotBeReadStays_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<int>("error");
    QTest::newRow("may not be opened") << QByteArray("openFile") << EACCES;
    QTest::newRow("bad disk") << QByteArray("read") << EIO;
    QTest::newRow("no descriptors") << QByteArray("openFile") << EMFILE;
    QTest::newRow("the folder may not be opened") << QByteArray("openRoot") << EACCES;
}

void TestSettingsFile::aFileThatCannotBeReadStays()
{
    QFETCH(QByteArray, call);
    QFETCH(int, error);
    const SettingsFolder folder;
    folder.fill();
    HookedSystem calls([&](int, std::string_view name) {
        return name == std::string_view(call.constData()) ? error : 0;
    });
    SettingsFile file = folder.settings(calls);
    const SettingsContent content = file.load();
    QVERIFY(content.damage.contains(QString::fromLocal8Bit(strerror(error))));
    QVERIFY(folder.badFiles().isEmpty());

    // This run must not overwrite it, not even when it can be read again.
    QVERIFY(!file.save(settingsText(content), kKnown).isWell());
    calls.setHook({});
    QVERIFY(file.save(settingsText(content), Replace::Anything).foreign);
    const QByteArray theirs = settingsText(folder.settings().load());
    // What it excludes is taken over: what was there is kept beside.
    QVERIFY(file.save(settingsText(SettingsFolder::first()), kKnown, theirs).isWell());
    QCOMPARE(folder.settings().load(), SettingsFolder::first());
    QVERIFY(SettingsFolder::raw(folder.previousFile()).contains("file:///two"));
}

void TestSettingsFile::aFolderUnderTheNameStays()
{
    const SettingsFolder folder;
    QVERIFY(QDir().mkpath(folder.file() + QStringLiteral("/inside")));
    SettingsFile file = folder.settings();
    const SettingsContent content = file.load();
    QVERIFY(!content.damage.isEmpty());
    QVERIFY(!file.save(settingsText(content), kKnown).isWell());
    QVERIFY(QFile::exists(folder.file() + QStringLiteral("/inside")));

    QVERIFY(file.save(settingsText(SettingsFolder::first()), Replace::Anything).isWell());
    QCOMPARE(folder.settings().load(), SettingsFolder::first());
    QVERIFY(QFile::exists(folder.path(folder.badFiles().first()) + QStringLiteral("/inside")));
}

void TestSettingsFile::aFolderThatIsAFileIsADamage()
{
    const SettingsFolder folder;
    const QString path = folder.path(QStringLiteral("file"));
    SettingsFolder::setRaw(path, "not a folder");
    SettingsFile file(path, hostSystemCalls());
    QVERIFY(!file.load().damage.isEmpty());
    QVERIFY(!file.save(settingsText(SettingsFolder::first()), Replace::Anything).isWell());
    QCOMPARE(SettingsFolder::raw(path), "not a folder");
}

void TestSettingsFile::aFileOfAnotherUserStays()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const SettingsFolder folder;
    folder.fill();
    constexpr QFile::Permissions kEverybody(0x7777);
    QVERIFY(QFile::setPermissions(folder.path(), kEverybody));
    QVERIFY(QFile::setPermissions(folder.file(), {}));
    const int answer =
        runInChild(ChildUser::Nobody, [&folder] {
            SettingsFile file = folder.settings();
            const SettingsContent content = file.load();
            if (content.damage.isEmpty())
                return 1;
            if (file.save(settingsText(content), kKnown).isWell())
                return 2;
            return file.save(settingsText(content), Replace::Anything).isWell() ? 0 : 3;
        }).exitCode;
    QCOMPARE(answer, 0);
    QCOMPARE(folder.badFiles().size(), 1);
    QVERIFY(SettingsFolder::raw(folder.path(folder.badFiles().first())).contains("file:///two"));
}

void TestSettingsFile::whatCannotBeSetAsideIsNotOverwritten()
{
    const SettingsFolder folder;
    folder.fill();
    SettingsFolder::setRaw(folder.file(), "damaged");
    const HookedSystem calls(
        [](int, std::string_view name) { return name == "rename" ? EROFS : 0; });
    SettingsFile file = folder.settings(calls);
    const SettingsContent content = file.load();
    QCOMPARE(content.values, SettingsFolder::first().values);
    QVERIFY(!content.damage.isEmpty());
    QVERIFY(!file.save(settingsText(content), kKnown).isWell());
    QVERIFY(!file.save(settingsText(content), Replace::Anything).isWell());
    QCOMPARE(SettingsFolder::raw(folder.file()), "damaged");
}

void TestSettingsFile::aBadTextThatCouldNotBeSetAsideIsNoPreviousOne()
{
    const SettingsFolder folder;
    folder.fill();
    const QByteArray good = SettingsFolder::raw(folder.previousFile());
    folder.setText("no settings, but a right checksum");
    SettingsFolder::setRaw(folder.previousFile(), good);
    HookedSystem calls([](int, std::string_view name) { return name == "rename" ? EBUSY : 0; });
    SettingsFile file = folder.settings(calls);
    const SettingsContent content = file.load();
    calls.setHook({});
    QVERIFY(!file.save(settingsText(content), kKnown).isWell());
    QCOMPARE(SettingsFolder::raw(folder.previousFile()), good);
}

void TestSettingsFile::aSaveTellsWhatWentWrong()
{
    const SettingsFolder folder;
    folder.fill();
    HookedSystem calls;
    SettingsFile file = folder.settings(calls);
    file.load();
    calls.setHook([](int, std::string_view name) { return name == "write" ? ENOSPC : 0; });
    const SaveOutcome outcome = file.save(settingsText(SettingsFolder::first()), kKnown);
    QVERIFY(outcome.message.contains(QString::fromLocal8Bit(strerror(ENOSPC))));
    QVERIFY(outcome.message.contains(folder.path()));
    QVERIFY(!outcome.isConflict);
    QCOMPARE(folder.settings().load(), SettingsFolder::second());
}

void TestSettingsFile::aSecondProgramsSettingsStay()
{
    const SettingsFolder folder;
    folder.fill();
    SettingsFile mine = folder.settings();
    mine.load();
    SettingsFile theirs = folder.settings();
    theirs.load();
    const SettingsContent change = SettingsFolder::excluding(QStringLiteral("file:///theirs"));
    QVERIFY(theirs.save(settingsText(change), kKnown).isWell());

    const SaveOutcome outcome = mine.save(settingsText(SettingsFolder::first()), kKnown);
    QVERIFY(outcome.isConflict);
    QVERIFY(outcome.message.contains(QStringLiteral("another program")));
    QCOMPARE(folder.settings().load(), change);
}

void TestSettingsFile::aFolderThatAppearsLaterKeepsItsSettings()
{
    const SettingsFolder folder;
    const QString later = folder.path(QStringLiteral("later"));
    SettingsFile file(later, hostSystemCalls());
    QCOMPARE(file.load(), SettingsContent{});
    const SettingsFolder mounted;
    mounted.fill();
    QVERIFY(QFile::link(mounted.path(), later));
    QVERIFY(file.save(settingsText({}), kKnown).isConflict);
    QCOMPARE(mounted.settings().load(), SettingsFolder::second());
}

void TestSettingsFile::everyKillOnTheWayOutOfADamageStaysADamage()
{
    // Killed before every call, from the start on a damaged file to the save of the note.
    for (int number = 1;; ++number) {
        const SettingsFolder folder;
        folder.fill();
        SettingsFolder::setRaw(folder.file(), "damaged");
        HookedSystem calls(HookedSystem::killedBefore(number));
        SettingsFile file = folder.settings(calls);
        const SettingsContent content = file.load();
        const bool isSaved = file.save(settingsText(content), kKnown).isWell();

        const SettingsContent afterwards = folder.settings().load();
        QVERIFY2(!afterwards.damage.isEmpty(), qPrintable(QString::number(number)));
        QCOMPARE(afterwards.values, SettingsFolder::first().values);
        QCOMPARE(folder.badFiles().size(), 1);
        QCOMPARE(SettingsFolder::raw(folder.path(folder.badFiles().first())), "damaged");
        if (isSaved)
            break;
    }
}

VANTOR_TEST_MAIN(TestSettingsFile)
#include "tst_SettingsFile.moc"
