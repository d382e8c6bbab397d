#pragma once

#include <QJsonValue>
#include <QStringList>
#include <optional>

/// How the settings' values are written as JSON. Each reader gives nothing for a value of another
/// type, so that no value is ever mistaken for another.

std::optional<bool> booleanFrom(const QJsonValue &value);
std::optional<qint64> integerFrom(const QJsonValue &value);
std::optional<QString> stringFrom(const QJsonValue &value);
std::optional<QStringList> stringsFrom(const QJsonValue &value);
std::optional<QList<bool>> booleansFrom(const QJsonValue &value);
std::optional<QByteArray> dataFrom(const QJsonValue &value);

QJsonValue jsonFrom(const QStringList &value);
QJsonValue jsonFrom(const QList<bool> &value);
/// Bytes are written as {"data": "<base64>"}, so that a reader can tell them from a string.
QJsonValue jsonFrom(const QByteArray &value);
