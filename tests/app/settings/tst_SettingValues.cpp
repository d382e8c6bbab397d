#include "app/settings/SettingValues.h"
#include "tests/support/run/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <limits>

namespace {

/// The value as a file gives it back.
QJsonValue stored(const QJsonValue &value)
{
    return QJsonDocument::fromJson(QJsonDocument(QJsonArray{value}).toJson()).array().first();
}

/// How many of the readers accept the value as one of theirs.
int readersOf(const QJsonValue &value)
{
    return booleanFrom(value).has_value() + integerFrom(value).has_value() +
           stringFrom(value).has_value() + stringsFrom(value).has_value() +
           booleansFrom(value).has_value() + dataFrom(value).has_value();
}

} // namespace

class TestSettingValues final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void integersAreExact_data();
    void integersAreExact();
    void stringsAreExact_data();
    void stringsAreExact();
    void listsOfAnyLengthComeBack();
    void bytesComeBack_data();
    void bytesComeBack();
    void everyValueHasOneReader();
    void whatIsOfNoTypeHasNoReader_data();
    void whatIsOfNoTypeHasNoReader();
};

void TestSettingValues::integersAreExact_data()
{
    QTest::addColumn<qint64>("value");
    constexpr qint64 kLastExactDouble = qint64(1) << 53;
    for (const qint64 value :
         {qint64(0), qint64(1), qint64(-7), kLastExactDouble, kLastExactDouble + 1,
          -kLastExactDouble - 1, std::numeric_limits<qint64>::max(),
          std::numeric_limits<qint64>::max() - 1, std::numeric_limits<qint64>::min()})
        QTest::newRow(QByteArray::number(value)) << value;
}

void TestSettingValues::integersAreExact()
{
    QFETCH(qint64, value);
    QCOMPARE(integerFrom(stored(value)), value);
}

void TestSettingValues::stringsAreExact_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("empty") << QString();
    QTest::newRow("like a number") << QStringLiteral("1");
    QTest::newRow("special") << QStringLiteral("\"\\\n\t%@#");
    QTest::newRow("with a NUL") << QString(QChar(0)) + QLatin1Char('a');
    QTest::newRow("beyond Latin") << QStringLiteral("ä–日本😀");
}

void TestSettingValues::stringsAreExact()
{
    QFETCH(QString, value);
    QCOMPARE(stringFrom(stored(value)), value);
}

void TestSettingValues::listsOfAnyLengthComeBack()
{
    for (const QList<bool> &value : {QList<bool>{}, {true}, {false}, {true, false, true}})
        QCOMPARE(booleansFrom(stored(jsonFrom(value))), value);
    const QString one = QStringLiteral("one");
    for (const QStringList &value : {QStringList{}, {one}, {QString()}, {one, QString(), one}})
        QCOMPARE(stringsFrom(stored(jsonFrom(value))), value);
}

void TestSettingValues::bytesComeBack_data()
{
    QTest::addColumn<QByteArray>("value");
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(char(byte));
    QTest::newRow("none") << QByteArray();
    QTest::newRow("NUL") << QByteArray(1, '\0');
    QTest::newRow("every") << all;
}

void TestSettingValues::bytesComeBack()
{
    QFETCH(QByteArray, value);
    QCOMPARE(dataFrom(stored(jsonFrom(value))), value);
}

void TestSettingValues::everyValueHasOneReader()
{
    const QJsonValue values[] = {true,
                                 false,
                                 0,
                                 1,
                                 QStringLiteral("true"),
                                 jsonFrom(QStringList{QString()}),
                                 jsonFrom(QList<bool>{false}),
                                 jsonFrom(QByteArray())};
    for (const QJsonValue &value : values)
        QCOMPARE(readersOf(stored(value)), 1);
    // An empty list is one of either kind.
    QCOMPARE(readersOf(stored(QJsonArray())), 2);
}

void TestSettingValues::whatIsOfNoTypeHasNoReader_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const char *json :
         {"null", "0.5", "1e300", "9223372036854775808", "{}", R"({"data": 1})",
          R"({"data": "=A"})", R"({"data": "AA==", "more": 1})", R"({"date": "AA=="})",
          R"(["a", 1])", "[true, 1]", "[null]", "[[]]", "[1]"})
        QTest::newRow(json) << QByteArray(json);
}

void TestSettingValues::whatIsOfNoTypeHasNoReader()
{
    QFETCH(QByteArray, json);
    const QJsonArray array = QJsonDocument::fromJson('[' + json + ']').array();
    QCOMPARE(array.size(), 1);
    QCOMPARE(readersOf(array.first()), 0);
    QCOMPARE(readersOf(QJsonValue(QJsonValue::Undefined)), 0);
}

VANTOR_TEST_MAIN(TestSettingValues)
#include "tst_SettingValues.moc"
