#include "app/settings/SettingValues.h"
#include "app/settings/SettingsKeys.h"
#include "tests/support/run/TestMain.h"

#include <QSet>

namespace {

bool isOfType(const QJsonValue &value, SettingType type)
{
    switch (type) {
    case SettingType::Boolean:
        return booleanFrom(value).has_value();
    case SettingType::Integer:
        return integerFrom(value).has_value();
    case SettingType::String:
        return stringFrom(value).has_value();
    case SettingType::Strings:
        return stringsFrom(value).has_value();
    case SettingType::Booleans:
        return booleansFrom(value).has_value();
    case SettingType::Data:
        return dataFrom(value).has_value();
    }
    return false;
}

} // namespace

class TestSettingsKeys final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereAreSevenKeys();
    void aKeyIsItsOwnName();
    void defaultsAreOfTheirType();
    void onlyTwoAreRegistered();
};

void TestSettingsKeys::thereAreSevenKeys()
{
    QSet<QString> keys;
    for (const SettingDescription &setting : settingDescriptions())
        keys.insert(setting.key);
    QCOMPARE(keys.size(), 7);
    QCOMPARE(settingDescriptions().size(), 7);
}

void TestSettingsKeys::aKeyIsItsOwnName()
{
#define VANTOR_COMPARE_KEY(key) QCOMPARE(key, QLatin1StringView(#key))
    VANTOR_COMPARE_KEY(VNTHomeFolderString);
    VANTOR_COMPARE_KEY(VNTApplicationFolderString);
    VANTOR_COMPARE_KEY(VNTExcludedPathsString);
    VANTOR_COMPARE_KEY(VNTTotalCleanedSize);
    VANTOR_COMPARE_KEY(VNTHideDemoWindowString);
    VANTOR_COMPARE_KEY(VNTSelectedSlicesString);
    VANTOR_COMPARE_KEY(VNTHasLaunchedBeforeString);
#undef VANTOR_COMPARE_KEY
}

void TestSettingsKeys::defaultsAreOfTheirType()
{
    for (const SettingDescription &setting : settingDescriptions())
        QVERIFY2(setting.registeredDefault.isUndefined() ||
                     isOfType(setting.registeredDefault, setting.type),
                 setting.key.data());
}

void TestSettingsKeys::onlyTwoAreRegistered()
{
    const QJsonObject defaults = registeredDefaults();
    QCOMPARE(defaults.size(), 2);
    QCOMPARE(booleansFrom(defaults.value(VNTSelectedSlicesString)),
             QList<bool>({true, false, true, true, true, false, false, false}));
    QCOMPARE(booleanFrom(defaults.value(VNTHasLaunchedBeforeString)), false);
}

VANTOR_TEST_MAIN(TestSettingsKeys)
#include "tst_SettingsKeys.moc"
