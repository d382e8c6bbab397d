#include "app/settings/UserDefaults.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsFolder.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/run/TestMain.h"

#include <QSignalSpy>
#include <cerrno>

namespace {

const QString kKey = QStringLiteral("key");
const QStringList kFirstPaths{QStringLiteral("file:///one")};
const QStringList kSecondPaths{QStringLiteral("file:///two")};
const QStringList kThirdPaths{QStringLiteral("file:///three")};

std::unique_ptr<UserDefaults> defaultsIn(const SettingsFolder &folder,
                                         const SystemCalls &calls = hostSystemCalls())
{
    return std::make_unique<UserDefaults>(folder.path(), calls);
}

} // namespace

/// The settings while another program writes the same file. It never reads them anew, so the
/// exclusions of both must hold.
class TestUserDefaultsOfTwoPrograms final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSaveKeepsWhatASecondProgramExcludes();
    void theLastSaveKeepsWhatASecondProgramExcludes();
    void aSaveOverAFileThatIsDamagedMakesTheExclusionsUnknown();
    void aLookTakesOverWhatASecondProgramExcludes();
    void aLookFindsNothingNewInItsOwnFile_data();
    void aLookFindsNothingNewInItsOwnFile();
    void aLookThatCannotReadTheFileMakesTheExclusionsUnknown_data();
    void aLookThatCannotReadTheFileMakesTheExclusionsUnknown();
    void aSecondProgramsDoubtIsSharedToo();
    void aConfirmationThatCannotBeSavedOutlastsALook();
    void aLookAnswersNobodyWhoHasEnded();
    void aLookNeverWaitsForTheDisk();
    void aDoubtHoldsForThisRunUntilItIsConfirmed();
    void aConfirmationOverwritesNoExclusions();

private:
    static bool look(UserDefaults &defaults);
};

void TestUserDefaultsOfTwoPrograms::aDoubtHoldsForThisRunUntilItIsConfirmed()
{
    const SettingsFolder folder;
    folder.fill();
    const auto defaults = defaultsIn(folder);
    QSignalSpy known(defaults.get(), &UserDefaults::exclusionsKnownChanged);
    defaults->doubtExclusions({});
    QVERIFY(defaults->exclusionsAreKnown() && known.isEmpty());
    defaults->doubtExclusions(QStringLiteral("reason"));
    QVERIFY(!defaults->exclusionsAreKnown());
    QCOMPARE(defaults->damageMessage(), QStringLiteral("reason"));
    defaults->setBoolean(kKey, true);
    QVERIFY(defaults->synchronize());
    QVERIFY(defaultsIn(folder)->exclusionsAreKnown());
    QVERIFY(look(*defaults));
    QVERIFY(!defaults->exclusionsAreKnown()); // a file that can be read is no answer to that
    defaults->confirmExclusions();
    QVERIFY(defaults->exclusionsAreKnown() && defaults->damageMessage().isEmpty());
    QCOMPARE(known, (QList<QVariantList>{{false}, {true}}));
}

/// Whether the look was answered.
bool TestUserDefaultsOfTwoPrograms::look(UserDefaults &defaults)
{
    bool isAnswered = false;
    defaults.lookAtFile(&defaults, [&isAnswered] { isAnswered = true; });
    return QTest::qWaitFor([&isAnswered] { return isAnswered; });
}

void TestUserDefaultsOfTwoPrograms::aSaveKeepsWhatASecondProgramExcludes()
{
    const SettingsFolder folder;
    folder.fill();
    const auto mine = defaultsIn(folder);
    defaultsIn(folder)->setStrings(VNTExcludedPathsString, kFirstPaths + kSecondPaths);
    QSignalSpy found(mine.get(), &UserDefaults::exclusionsFound);
    QSignalSpy failures(mine.get(), &UserDefaults::saveFailed);
    mine->setStrings(VNTExcludedPathsString, kThirdPaths);
    QVERIFY(found.wait());
    QCOMPARE(found, (QList<QVariantList>{{kFirstPaths + kSecondPaths}}));
    mine->setBoolean(kKey, true);
    QVERIFY(mine->synchronize());
    QVERIFY(mine->exclusionsAreKnown() && failures.isEmpty());
    const auto stored = defaultsIn(folder);
    QCOMPARE(stored->strings(VNTExcludedPathsString), kThirdPaths + kFirstPaths + kSecondPaths);
    QCOMPARE(stored->boolean(kKey), true);
    QCOMPARE(mine->strings(VNTExcludedPathsString), stored->strings(VNTExcludedPathsString));
}

/// At the end no event is handled any more.
void TestUserDefaultsOfTwoPrograms::theLastSaveKeepsWhatASecondProgramExcludes()
{
    const SettingsFolder folder;
    folder.fill();
    {
        const auto mine = defaultsIn(folder);
        defaultsIn(folder)->setStrings(VNTExcludedPathsString, kFirstPaths + kSecondPaths);
        mine->setStrings(VNTExcludedPathsString, kFirstPaths + kThirdPaths);
    }
    QCOMPARE(defaultsIn(folder)->strings(VNTExcludedPathsString),
             kFirstPaths + kThirdPaths + kSecondPaths);
}

void TestUserDefaultsOfTwoPrograms::aSaveOverAFileThatIsDamagedMakesTheExclusionsUnknown()
{
    const SettingsFolder folder;
    folder.fill();
    const auto mine = defaultsIn(folder);
    SettingsFolder::setRaw(folder.file(), "damaged");
    QSignalSpy known(mine.get(), &UserDefaults::exclusionsKnownChanged);
    mine->setBoolean(kKey, true);
    QVERIFY(known.wait());
    QCOMPARE(known, (QList<QVariantList>{{false}}));
    QVERIFY(mine->damageMessage().contains(QStringLiteral("another program")));
    QCOMPARE(SettingsFolder::raw(folder.file()), "damaged");
}

void TestUserDefaultsOfTwoPrograms::aLookTakesOverWhatASecondProgramExcludes()
{
    const SettingsFolder folder;
    folder.fill();
    const auto mine = defaultsIn(folder);
    defaultsIn(folder)->setStrings(VNTExcludedPathsString, kFirstPaths);
    QSignalSpy found(mine.get(), &UserDefaults::exclusionsFound);
    QVERIFY(look(*mine));
    QCOMPARE(found, (QList<QVariantList>{{kFirstPaths}}));
    QCOMPARE(mine->strings(VNTExcludedPathsString), kSecondPaths + kFirstPaths);
    QVERIFY(mine->exclusionsAreKnown());
    QVERIFY(mine->synchronize());
    QCOMPARE(defaultsIn(folder)->strings(VNTExcludedPathsString), kSecondPaths + kFirstPaths);
    QVERIFY(look(*mine));
    QCOMPARE(found.size(), 1);
}

void TestUserDefaultsOfTwoPrograms::aLookFindsNothingNewInItsOwnFile_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<bool>("isSaved");
    QTest::addRow("as it was read") << true << true;
    QTest::addRow("not there yet") << false << true;
    QTest::addRow("a save failed") << true << false;
    QTest::addRow("not there, and a save failed") << false << false;
}

/// Its own changes are never taken for those of another program, saved or not.
void TestUserDefaultsOfTwoPrograms::aLookFindsNothingNewInItsOwnFile()
{
    QFETCH(bool, isThere);
    QFETCH(bool, isSaved);
    const SettingsFolder folder;
    if (isThere)
        folder.fill();
    HookedSystem calls;
    const auto mine = defaultsIn(folder, calls);
    QSignalSpy found(mine.get(), &UserDefaults::exclusionsFound);
    QVERIFY(look(*mine));
    if (!isSaved)
        calls.setHook([](int, std::string_view name) { return name == "write" ? ENOSPC : 0; });
    mine->setStrings(VNTExcludedPathsString, {});
    QVERIFY(look(*mine)); // right after the save
    QCOMPARE(mine->synchronize().has_value(), isSaved);
    QVERIFY(look(*mine));
    QVERIFY(found.isEmpty() && mine->exclusionsAreKnown());
    QCOMPARE(mine->strings(VNTExcludedPathsString), QStringList());
}

void TestUserDefaultsOfTwoPrograms::aLookThatCannotReadTheFileMakesTheExclusionsUnknown_data()
{
    using Harm = std::function<void(const SettingsFolder &, HookedSystem &)>;
    QTest::addColumn<Harm>("harm");
    QTest::addColumn<QString>("told");
    QTest::addRow("damaged") << Harm([](const SettingsFolder &folder, HookedSystem &) {
        SettingsFolder::setRaw(folder.file(), "damaged");
    }) << QStringLiteral("damaged");
    QTest::addRow("no settings") << Harm([](const SettingsFolder &folder, HookedSystem &) {
        folder.setText("{}");
    }) << QStringLiteral("damaged");
    QTest::addRow("gone") << Harm([](const SettingsFolder &folder, HookedSystem &) {
        QFile::remove(folder.file());
    }) << QStringLiteral("gone");
    QTest::addRow("gone with its folder") << Harm([](const SettingsFolder &folder, HookedSystem &) {
        QDir(folder.path()).removeRecursively();
    }) << QStringLiteral("gone");
    for (const char *call : {"openRoot", "openFile", "read"}) {
        QTest::addRow("%s fails", call) << Harm([call](const SettingsFolder &,
                                                       HookedSystem &calls) {
            calls.setHook([call](int, std::string_view name) { return name == call ? EIO : 0; });
        }) << QStringLiteral("cannot be read");
    }
}

void TestUserDefaultsOfTwoPrograms::aLookThatCannotReadTheFileMakesTheExclusionsUnknown()
{
    QFETCH(std::function<void(const SettingsFolder &, HookedSystem &)>, harm);
    QFETCH(QString, told);
    const SettingsFolder folder;
    folder.fill();
    HookedSystem calls;
    const auto mine = defaultsIn(folder, calls);
    QSignalSpy known(mine.get(), &UserDefaults::exclusionsKnownChanged);
    harm(folder, calls);
    QVERIFY(look(*mine));
    QCOMPARE(known, (QList<QVariantList>{{false}}));
    QVERIFY(!mine->exclusionsAreKnown());
    QVERIFY(mine->damageMessage().contains(told));
    calls.setHook({});
    mine->confirmExclusions();
    QVERIFY(mine->synchronize());
    QVERIFY(look(*mine));
    QVERIFY(mine->exclusionsAreKnown());
    QCOMPARE(defaultsIn(folder)->strings(VNTExcludedPathsString), kSecondPaths);
}

void TestUserDefaultsOfTwoPrograms::aSecondProgramsDoubtIsSharedToo()
{
    const SettingsFolder folder;
    folder.fill();
    const auto mine = defaultsIn(folder);
    folder.setText(settingsText({SettingsFolder::first().values, QStringLiteral("in doubt")}));
    QVERIFY(look(*mine));
    QVERIFY(!mine->exclusionsAreKnown());
    QCOMPARE(mine->damageMessage(), QStringLiteral("in doubt"));
    QCOMPARE(mine->strings(VNTExcludedPathsString), kSecondPaths + kFirstPaths);
}

void TestUserDefaultsOfTwoPrograms::aConfirmationThatCannotBeSavedOutlastsALook()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    const HookedSystem readOnly([](int, std::string_view name) {
        return name == "createFile" || name == "rename" ? EROFS : 0;
    });
    const auto defaults = defaultsIn(folder, readOnly);
    QVERIFY(look(*defaults));
    QVERIFY(!defaults->exclusionsAreKnown());
    defaults->confirmExclusions();
    QVERIFY(!defaults->synchronize());
    QVERIFY(look(*defaults));
    QVERIFY(defaults->exclusionsAreKnown());
}

void TestUserDefaultsOfTwoPrograms::aLookAnswersNobodyWhoHasEnded()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    auto asker = std::make_unique<QObject>();
    bool isAnswered = false;
    defaults->lookAtFile(asker.get(), [&isAnswered] { isAnswered = true; });
    asker.reset();
    QVERIFY(look(*defaults)); // answered after the other
    QVERIFY(!isAnswered);
}

void TestUserDefaultsOfTwoPrograms::aLookNeverWaitsForTheDisk()
{
    const SettingsFolder folder;
    folder.fill();
    SlowDisk disk;
    const auto defaults = defaultsIn(folder, disk.calls());
    disk.takeAskedHere();
    disk.hang();
    bool isAnswered = false;
    defaults->lookAtFile(defaults.get(), [&isAnswered] { isAnswered = true; });
    QTRY_VERIFY(disk.waiting() > 0);
    QVERIFY(!isAnswered);
    disk.answer();
    QTRY_VERIFY(isAnswered);
    QCOMPARE(disk.takeAskedHere(), QStringList());
}

/// The user has confirmed what this program shows, and has not seen the rest.
void TestUserDefaultsOfTwoPrograms::aConfirmationOverwritesNoExclusions()
{
    const SettingsFolder folder;
    folder.fill();
    const auto mine = defaultsIn(folder);
    mine->doubtExclusions(QStringLiteral("reason"));
    defaultsIn(folder)->setStrings(VNTExcludedPathsString, kFirstPaths);
    QSignalSpy found(mine.get(), &UserDefaults::exclusionsFound);
    mine->confirmExclusions();
    QVERIFY(found.wait());
    QVERIFY(mine->synchronize());
    QCOMPARE(mine->strings(VNTExcludedPathsString), kSecondPaths + kFirstPaths);
    QCOMPARE(defaultsIn(folder)->strings(VNTExcludedPathsString), kSecondPaths + kFirstPaths);
}

VANTOR_TEST_MAIN(TestUserDefaultsOfTwoPrograms)
#include "tst_UserDefaultsOfTwoPrograms.moc"
