#include "app/settings/SettingValues.h"
#include "app/settings/UserDefaults.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsFolder.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <QSignalSpy>
#include <cerrno>

namespace {

const QString kKey = QStringLiteral("key");
const QStringList kFirstPaths{QStringLiteral("file:///one")};
const QStringList kSecondPaths{QStringLiteral("file:///two")};

std::unique_ptr<UserDefaults> defaultsIn(const SettingsFolder &folder,
                                         const SystemCalls &calls = hostSystemCalls())
{
    return std::make_unique<UserDefaults>(folder.path(), calls);
}

// A literal would become true, or bytes.
template <typename Value>
concept IsBoolean = requires(UserDefaults defaults, Value value)
{
    defaults.setBoolean(kKey, value);
};
template <typename Value>
concept IsData = requires(UserDefaults defaults, Value value)
{
    defaults.setData(kKey, value);
};
static_assert(IsBoolean<bool> && !IsBoolean<const char *> && !IsBoolean<const int *>);
static_assert(IsData<QByteArray> && !IsData<const char *>);

} // namespace

class TestUserDefaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesComeBackAfterARestart();
    void aFreshStoreShowsWhatIsRegistered();
    void whatIsNeitherStoredNorRegisteredIsZero();
    void removingShowsTheRegisteredValueAgain();
    void emptyListsAreStoredToo();
    void aValueOfAnotherTypeReadsAsTheRegisteredOne_data();
    void aValueOfAnotherTypeReadsAsTheRegisteredOne();
    void anyHomeFolderEntryInitialisesTheFolders();
    void bothFolderEntriesAreRemoved();
    void unknownKeysAreKept();
    void theDefaultFolderIsTheUsersOwn();

    void aFailedSaveIsToldAndTriedAgainWithTheNextChange();
    void aFailedSaveIsTriedAgainBySynchronize();

    void aDamageIsRememberedUntilItIsConfirmed();
    void aDamageSurvivesASaveThatFailed();
    void settingExclusionsConfirmsNothing();
    void aConfirmationThatCannotBeSavedHoldsForThisRun();
    void aConfirmationReplacesAnUnreadableFile();
};

void TestUserDefaults::valuesComeBackAfterARestart()
{
    const SettingsFolder folder;
    constexpr qint64 kLarge = std::numeric_limits<qint64>::max() - 1;
    const QByteArray bytes("\0\xff a", 4);
    {
        const auto defaults = defaultsIn(folder);
        defaults->setBoolean(QStringLiteral("boolean"), true);
        defaults->setInteger(QStringLiteral("integer"), kLarge);
        defaults->setStrings(QStringLiteral("strings"), kFirstPaths);
        defaults->setBooleans(QStringLiteral("booleans"), {false, true});
        defaults->setData(QStringLiteral("data"), bytes);
    } // unsaved changes are saved at the end
    const auto defaults = defaultsIn(folder);
    QCOMPARE(defaults->boolean(QStringLiteral("boolean")), true);
    QCOMPARE(defaults->integer(QStringLiteral("integer")), kLarge);
    QCOMPARE(defaults->strings(QStringLiteral("strings")), kFirstPaths);
    QCOMPARE(defaults->booleans(QStringLiteral("booleans")), QList<bool>({false, true}));
    QCOMPARE(defaults->data(QStringLiteral("data")), bytes);
}

void TestUserDefaults::aFreshStoreShowsWhatIsRegistered()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    defaults->registerDefaults(registeredDefaults());
    QCOMPARE(defaults->booleans(VNTSelectedSlicesString),
             QList<bool>({true, false, true, true, true, false, false, false}));
    QCOMPARE(defaults->boolean(VNTHasLaunchedBeforeString), false);
    QCOMPARE(defaults->integer(VNTTotalCleanedSize), 0);
    QCOMPARE(defaults->boolean(VNTHideDemoWindowString), false);
    QVERIFY(defaults->contains(VNTSelectedSlicesString));
    QVERIFY(!defaults->isStored(VNTSelectedSlicesString));
    QVERIFY(!defaults->contains(VNTTotalCleanedSize));
    QVERIFY(defaults->exclusionsAreKnown());

    QVERIFY(defaults->synchronize());
    QVERIFY(QDir(folder.path()).isEmpty()); // registering writes nothing
}

void TestUserDefaults::whatIsNeitherStoredNorRegisteredIsZero()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    QVERIFY(defaults->object(kKey).isUndefined());
    QCOMPARE(defaults->boolean(kKey), false);
    QCOMPARE(defaults->integer(kKey), 0);
    QCOMPARE(defaults->strings(kKey), QStringList());
    QCOMPARE(defaults->booleans(kKey), QList<bool>());
    QCOMPARE(defaults->data(kKey), QByteArray());
}

void TestUserDefaults::removingShowsTheRegisteredValueAgain()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    defaults->registerDefaults({{kKey, 1}});
    defaults->setInteger(kKey, 2);
    QCOMPARE(defaults->integer(kKey), 2);
    QCOMPARE(defaults->object(kKey), QJsonValue(2));
    defaults->remove(kKey);
    QVERIFY(!defaults->isStored(kKey));
    QCOMPARE(defaults->integer(kKey), 1);
    QCOMPARE(defaults->object(kKey), QJsonValue(1));
    QVERIFY(defaults->synchronize());
    QVERIFY(!defaultsIn(folder)->contains(kKey));
}

void TestUserDefaults::emptyListsAreStoredToo()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    defaults->registerDefaults({{kKey, QJsonArray{true}}});
    defaults->setBooleans(kKey, {});
    QVERIFY(defaults->isStored(kKey));
    QCOMPARE(defaults->booleans(kKey), QList<bool>()); // not the registered one
}

void TestUserDefaults::aValueOfAnotherTypeReadsAsTheRegisteredOne_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const char *json : {"null", "0.5", "{}", "[1]", "[null, []]", R"({"data": 1})"})
        QTest::newRow(json) << QByteArray(json);
}

void TestUserDefaults::aValueOfAnotherTypeReadsAsTheRegisteredOne()
{
    QFETCH(QByteArray, json);
    const SettingsFolder folder;
    folder.setText(R"({"settings": {"a": )" + json + R"(, "b": )" + json + "}}");
    const auto defaults = defaultsIn(folder);
    QVERIFY(defaults->exclusionsAreKnown());
    const QString bare = QStringLiteral("a");
    const QString registered = QStringLiteral("b");
    QVERIFY(defaults->isStored(bare));

    defaults->registerDefaults({{registered, true}});
    QCOMPARE(defaults->boolean(bare), false);
    QCOMPARE(defaults->boolean(registered), true);
    defaults->registerDefaults({{registered, 7}});
    QCOMPARE(defaults->integer(bare), 0);
    QCOMPARE(defaults->integer(registered), 7);
    defaults->registerDefaults({{registered, jsonFrom(kFirstPaths)}});
    QCOMPARE(defaults->strings(bare), QStringList());
    QCOMPARE(defaults->strings(registered), kFirstPaths);
    defaults->registerDefaults({{registered, jsonFrom(QList<bool>{true})}});
    QCOMPARE(defaults->booleans(bare), QList<bool>());
    QCOMPARE(defaults->booleans(registered), QList<bool>{true});
    defaults->registerDefaults({{registered, jsonFrom(QByteArray("b"))}});
    QCOMPARE(defaults->data(bare), QByteArray());
    QCOMPARE(defaults->data(registered), "b");
}

void TestUserDefaults::anyHomeFolderEntryInitialisesTheFolders()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    QVERIFY(!defaults->hasInitializedFolders());
    defaults->setInteger(VNTHomeFolderString, 1); // no grant, but an entry
    QVERIFY(defaults->hasInitializedFolders());
    defaults->removeFolderEntries();
    QVERIFY(!defaults->hasInitializedFolders());
}

void TestUserDefaults::bothFolderEntriesAreRemoved()
{
    const SettingsFolder folder;
    const auto defaults = defaultsIn(folder);
    defaults->setData(VNTHomeFolderString, QByteArray("home"));
    defaults->setData(VNTApplicationFolderString, QByteArray("applications"));
    defaults->setBoolean(VNTHideDemoWindowString, true);
    defaults->removeFolderEntries();
    QVERIFY(!defaults->contains(VNTHomeFolderString));
    QVERIFY(!defaults->contains(VNTApplicationFolderString));
    QVERIFY(defaults->boolean(VNTHideDemoWindowString));
}

void TestUserDefaults::unknownKeysAreKept()
{
    const SettingsFolder folder;
    folder.setText(R"({"settings": {"VNTOfAnotherVersion": {"a": [1, null]}}})");
    {
        const auto defaults = defaultsIn(folder);
        defaults->setBoolean(VNTHideDemoWindowString, true);
    }
    QCOMPARE(defaultsIn(folder)->object(QStringLiteral("VNTOfAnotherVersion")),
             (QJsonObject{{QStringLiteral("a"), QJsonArray{1, QJsonValue()}}}));
}

void TestUserDefaults::theDefaultFolderIsTheUsersOwn()
{
    QVERIFY(defaultSettingsFolder().startsWith(qEnvironmentVariable("XDG_CONFIG_HOME")));
}

void TestUserDefaults::aFailedSaveIsToldAndTriedAgainWithTheNextChange()
{
    const SettingsFolder folder;
    HookedSystem calls([](int, std::string_view name) { return name == "sync" ? ENOSPC : 0; });
    const auto defaults = defaultsIn(folder, calls);
    QSignalSpy failures(defaults.get(), &UserDefaults::saveFailed);
    defaults->setBoolean(kKey, true);
    QVERIFY(failures.wait());
    QVERIFY(failures.first().first().toString().contains(QString::fromLocal8Bit(strerror(ENOSPC))));
    QCOMPARE(defaults->boolean(kKey), true);
    QVERIFY(defaults->exclusionsAreKnown()); // no other program has changed them

    calls.setHook({});
    defaults->setInteger(QStringLiteral("other"), 1);
    QVERIFY(defaults->synchronize());
    QCOMPARE(defaultsIn(folder)->boolean(kKey), true);
}

void TestUserDefaults::aFailedSaveIsTriedAgainBySynchronize()
{
    const SettingsFolder folder;
    HookedSystem calls([](int, std::string_view name) { return name == "write" ? ENOSPC : 0; });
    const auto defaults = defaultsIn(folder, calls);
    defaults->setBoolean(kKey, true);
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto result = defaults->synchronize();
        QVERIFY(!result && result.error().contains(folder.path()));
    }
    calls.setHook({});
    QVERIFY(defaults->synchronize());
    QCOMPARE(defaultsIn(folder)->boolean(kKey), true);
}

void TestUserDefaults::aDamageIsRememberedUntilItIsConfirmed()
{
    const SettingsFolder folder;
    folder.fill();
    SettingsFolder::setRaw(folder.file(), "damaged");
    QString message;
    for (int start = 0; start < 3; ++start) {
        const auto defaults = defaultsIn(folder);
        QVERIFY(!defaults->exclusionsAreKnown());
        QVERIFY(defaults->damageMessage().contains(folder.badFiles().first()));
        if (start > 0)
            QCOMPARE(defaults->damageMessage(), message); // also after a restart
        message = defaults->damageMessage();
        QCOMPARE(defaults->strings(VNTExcludedPathsString), kFirstPaths);
        defaults->setInteger(VNTTotalCleanedSize, start);
    }
    QCOMPARE(folder.badFiles().size(), 1);
    {
        const auto defaults = defaultsIn(folder);
        QSignalSpy known(defaults.get(), &UserDefaults::exclusionsKnownChanged);
        defaults->confirmExclusions();
        QVERIFY(defaults->exclusionsAreKnown() && defaults->damageMessage().isEmpty());
        QCOMPARE(known, (QList<QVariantList>{{true}}));
        defaults->confirmExclusions(); // once is enough
        QCOMPARE(known.size(), 1);
    }
    const auto defaults = defaultsIn(folder);
    QVERIFY(defaults->exclusionsAreKnown());
    QCOMPARE(defaults->strings(VNTExcludedPathsString), kFirstPaths);
    QCOMPARE(folder.badFiles().size(), 1);
}

void TestUserDefaults::aDamageSurvivesASaveThatFailed()
{
    const SettingsFolder folder;
    folder.fill();
    SettingsFolder::setRaw(folder.file(), "damaged");
    const HookedSystem full(
        [](int, std::string_view name) { return name == "write" ? ENOSPC : 0; });
    for (int start = 0; start < 2; ++start) {
        const auto defaults = defaultsIn(folder, full);
        QVERIFY(!defaults->exclusionsAreKnown());
        QVERIFY(!defaults->synchronize());
    }
    QVERIFY(!defaultsIn(folder)->exclusionsAreKnown());
}

void TestUserDefaults::settingExclusionsConfirmsNothing()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    {
        const auto defaults = defaultsIn(folder);
        defaults->setStrings(VNTExcludedPathsString, kSecondPaths);
        QVERIFY(!defaults->exclusionsAreKnown());
    }
    const auto defaults = defaultsIn(folder);
    QVERIFY(!defaults->exclusionsAreKnown());
    QCOMPARE(defaults->strings(VNTExcludedPathsString), kSecondPaths);
}

void TestUserDefaults::aConfirmationThatCannotBeSavedHoldsForThisRun()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    const HookedSystem full(
        [](int, std::string_view name) { return name == "write" ? ENOSPC : 0; });
    {
        const auto defaults = defaultsIn(folder, full);
        defaults->confirmExclusions();
        QVERIFY(!defaults->synchronize());
        QVERIFY(defaults->exclusionsAreKnown());
    }
    QVERIFY(!defaultsIn(folder)->exclusionsAreKnown());
}

void TestUserDefaults::aConfirmationReplacesAnUnreadableFile()
{
    const SettingsFolder folder;
    QVERIFY(QDir().mkpath(folder.file()));
    {
        const auto defaults = defaultsIn(folder);
        QVERIFY(!defaults->exclusionsAreKnown());
        defaults->setStrings(VNTExcludedPathsString, kFirstPaths);
        QVERIFY(!defaults->synchronize());
        defaults->confirmExclusions();
        // A change that comes before the save must not take the confirmation's permission away.
        defaults->setBoolean(kKey, true);
        QVERIFY(defaults->synchronize());
    }
    const auto defaults = defaultsIn(folder);
    QVERIFY(defaults->exclusionsAreKnown());
    QCOMPARE(defaults->strings(VNTExcludedPathsString), kFirstPaths);
    QCOMPARE(defaults->boolean(kKey), true);
}

VANTOR_TEST_MAIN(TestUserDefaults)
#include "tst_UserDefaults.moc"
