#include "app/settings/SettingsKeys.h"

#include <QJsonArray>

const QList<SettingDescription> &settingDescriptions()
{
    const QJsonValue none(QJsonValue::Undefined);
    // Trash, Large Files, Cache, App Logs, Old iOS, Downloads, Mail Downloads, Browser Data
    const QJsonArray slices{true, false, true, true, true, false, false, false};
    static const QList<SettingDescription> table{
        {VNTHomeFolderString, SettingType::Data, none},
        {VNTApplicationFolderString, SettingType::Data, none},
        {VNTExcludedPathsString, SettingType::Strings, none},
        {VNTTotalCleanedSize, SettingType::Integer, none},
        {VNTHideDemoWindowString, SettingType::Boolean, none},
        {VNTSelectedSlicesString, SettingType::Booleans, slices},
        {VNTHasLaunchedBeforeString, SettingType::Boolean, false},
    };
    return table;
}

QJsonObject registeredDefaults()
{
    QJsonObject defaults;
    for (const SettingDescription &setting : settingDescriptions()) {
        if (!setting.registeredDefault.isUndefined())
            defaults.insert(setting.key, setting.registeredDefault);
    }
    return defaults;
}
