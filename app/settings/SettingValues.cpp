#include "app/settings/SettingValues.h"

#include <QJsonArray>
#include <QJsonObject>
#include <limits>

namespace {

constexpr QLatin1StringView kDataTag("data");

template <typename List, typename Reader>
std::optional<List> listFrom(const QJsonValue &value, Reader read)
{
    if (!value.isArray())
        return std::nullopt;
    List list;
    for (const QJsonValue element : value.toArray()) {
        const auto read1 = read(element);
        if (!read1)
            return std::nullopt;
        list.append(*read1);
    }
    return list;
}

template <typename List> QJsonArray arrayFrom(const List &list)
{
    QJsonArray array;
    for (const auto &element : list)
        array.append(element);
    return array;
}

} // namespace

std::optional<bool> booleanFrom(const QJsonValue &value)
{
    if (!value.isBool())
        return std::nullopt;
    return value.toBool();
}

std::optional<qint64> integerFrom(const QJsonValue &value)
{
    // A number that is no integer gives the fallback. Two different fallbacks tell it from a real
    // 0.
    if (value.toInteger(0) != value.toInteger(1))
        return std::nullopt;
    return value.toInteger();
}

std::optional<QString> stringFrom(const QJsonValue &value)
{
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

std::optional<QStringList> stringsFrom(const QJsonValue &value)
{
    return listFrom<QStringList>(value, stringFrom);
}

std::optional<QList<bool>> booleansFrom(const QJsonValue &value)
{
    return listFrom<QList<bool>>(value, booleanFrom);
}

std::optional<QByteArray> dataFrom(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const QJsonValue text = object.value(kDataTag);
    if (object.size() != 1 || !text.isString())
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(text.toString().toUtf8(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return *decoded;
}

QJsonValue jsonFrom(const QStringList &value)
{
    return arrayFrom(value);
}

QJsonValue jsonFrom(const QList<bool> &value)
{
    return arrayFrom(value);
}

QJsonValue jsonFrom(const QByteArray &value)
{
    return QJsonObject{{kDataTag, QString::fromLatin1(value.toBase64())}};
}
