#include "app/settings/SettingValues.h"
#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "tests/soak/fuzz/FuzzTargets.h"

namespace {

/// Whether a value that a typed reader takes is the same after it was written and read again.
template <typename Read> bool comesBack(const QJsonValue &value, Read read)
{
    const auto first = read(value);
    return !first || read(jsonFrom(*first)) == first;
}

bool allComeBack(const QJsonValue &value)
{
    return comesBack(value, stringsFrom) && comesBack(value, booleansFrom) &&
           comesBack(value, dataFrom);
}

} // namespace

/// A content that was read says the same when it is written and read again: a save in between
/// changes no exclusion. The exclusions are a list of strings, or there are none at all.
QByteArray findingInSettingsText(const QByteArray &input)
{
    const auto content = settingsFromText(input);
    if (!content)
        return {};
    if (settingsFromText(settingsText(*content)) != content)
        return "the content is not what was written";
    const QJsonValue exclusions = content->values.value(VNTExcludedPathsString);
    if (!exclusions.isUndefined() && !stringsFrom(exclusions))
        return "the exclusions are no list of strings";
    for (const QJsonValue value : content->values) {
        if (!allComeBack(value))
            return "a value is not what was written";
    }
    return {};
}
