#include "app/settings/SettingsKeys.h"

#include "slices/record/SliceCatalogue.h"

#include <QJsonArray>

namespace {

QJsonArray slicesOnByDefault()
{
    QJsonArray slices;
    for (const SliceDescription &slice : sliceCatalogue())
        slices.append(slice.isOnByDefault);
    return slices;
}

} // namespace

const QList<SettingDescription> &settingDescriptions()
{
    const QJsonValue none(QJsonValue::Undefined);
    static const QList<SettingDescription> table{
        {VNTHomeFolderString, SettingType::Data, none},
        {VNTApplicationFolderString, SettingType::Data, none},
        {VNTExcludedPathsString, SettingType::Strings, none},
        {VNTTotalCleanedSize, SettingType::Integer, none},
        {VNTHideDemoWindowString, SettingType::Boolean, none},
        {VNTSelectedSlicesString, SettingType::Booleans, slicesOnByDefault()},
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
