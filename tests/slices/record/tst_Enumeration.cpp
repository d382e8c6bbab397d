#include "slices/record/Enumeration.h"
#include "tests/support/run/TestMain.h"

class TestEnumeration final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsNamesAsASentenceHasThem_data();
    void joinsNamesAsASentenceHasThem();
};

void TestEnumeration::joinsNamesAsASentenceHasThem_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QStringList() << QString();
    QTest::newRow("one") << QStringList{QStringLiteral("Firefox")} << "Firefox";
    QTest::newRow("two") << QStringList{QStringLiteral("Edge"), QStringLiteral("Firefox")}
                         << "Edge and Firefox";
    QTest::newRow("three") << QStringList{QStringLiteral("Chromium"), QStringLiteral("Edge"),
                                          QStringLiteral("Firefox")}
                           << "Chromium, Edge and Firefox";
}

void TestEnumeration::joinsNamesAsASentenceHasThem()
{
    QFETCH(const QStringList, names);
    QFETCH(const QString, text);
    QCOMPARE(enumerated(names), text);
}

VANTOR_TEST_MAIN(TestEnumeration)
#include "tst_Enumeration.moc"
