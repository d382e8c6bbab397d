#include "platform/base/ByteCount.h"
#include "slices/record/SizeText.h"
#include "tests/support/run/TestMain.h"

#include <limits>

class TestSizeText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsThreeDigits_data();
    void keepsThreeDigits();
    void shortensWhateverTheFormatterWrites();
};

void TestSizeText::keepsThreeDigits_data()
{
    QTest::addColumn<QString>("shortened");
    const struct
    {
        const char *text;
        const char *shortened;
    } rows[] = {
        {"Zero KB", "Zero KB"},     {"Zero", "Zero"},
        {"Zer KB", " KB"},          {"1 byte", "1 byte"},
        {"999 bytes", "999 bytes"}, {"12 KB", "12 KB"},
        {"12.5 KB", "12.5 KB"},     {"999 KB", "999 KB"},
        {"1.1 MB", "1.1 MB"},       {"1.05 MB", "1.05 MB"},
        {"12.3 MB", "12.3 MB"},     {"100.5 MB", "100 MB"},
        {"123.4 MB", "123 MB"},     {"1.2 GB", "1.2 GB"},
        {"1.234 GB", "1.23 GB"},    {"12.34 GB", "12.3 GB"},
        {"999.99 GB", "999 GB"},    {"12345 GB", "123 GB"},
        {"1234.5 GB", "123 GB"},    {"1,23 GB", "1 GB"},
        {"-1.23 GB", " GB"},        {"1.23 giga bytes", "1.23 bytes"},
        {"1.23 ", "1.23 "},         {"1.2.3.4 GB", "1.2.3 GB"},
        {"1.23", "1.23 1.23"},      {"", " "},
    };
    for (const auto &row : rows)
        QTest::addRow("%s", row.text) << QString::fromLatin1(row.shortened);
}

void TestSizeText::keepsThreeDigits()
{
    QTEST(threeDigitString(QString::fromLatin1(QTest::currentDataTag())), "shortened");
}

void TestSizeText::shortensWhateverTheFormatterWrites()
{
    for (qint64 bytes = 1; bytes < std::numeric_limits<qint64>::max() / 7; bytes = bytes * 7 + 3) {
        const QString text = threeDigitString(stringFromByteCount(bytes));
        const QString number = text.section(u' ', 0, 0);
        QVERIFY2(number.size() - number.count(u'.') <= 3, qPrintable(text));
        QCOMPARE(text.count(u' '), 1);
        QVERIFY2(number.toDouble() > 0, qPrintable(text));
    }
}

VANTOR_TEST_MAIN(TestSizeText)
#include "tst_SizeText.moc"
