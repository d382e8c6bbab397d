#include "platform/base/ByteCount.h"
#include "tests/support/run/TestMain.h"

#include <limits>

class TestByteCount final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesSizesAsPeopleReadThem_data();
    void writesSizesAsPeopleReadThem();
    void addsWithoutTurningOver();
    void takesSizesOfFilesWithoutTurningOver();
};

void TestByteCount::writesSizesAsPeopleReadThem_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    const struct
    {
        qint64 bytes;
        const char *text;
    } rows[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1000, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},
        {2500, "3 KB"},
        {9999, "10 KB"},
        {10500, "11 KB"},
        {12345, "12 KB"},
        {99999, "100 KB"},
        {999499, "999 KB"},
        {999500, "1 MB"},
        {999999, "1 MB"},
        {1000000, "1 MB"},
        {1049999, "1 MB"},
        {1050000, "1.1 MB"},
        {12345678, "12.3 MB"},
        {123456789, "123.5 MB"},
        {999900000, "999.9 MB"},
        {999949999, "999.9 MB"},
        {999950000, "1 GB"},
        {1234000000, "1.23 GB"},
        {12345678987, "12.35 GB"},
        {999994999999, "999.99 GB"},
        {999995000000, "1 TB"},
        {1000000000000000, "1 PB"},
        {1000000000000000000, "1 EB"},
        {std::numeric_limits<qint64>::max(), "9.22 EB"},
        {std::numeric_limits<qint64>::min(), "-9.22 EB"},
        {-1, "-1 byte"},
        {-2, "-2 bytes"},
        {-999, "-999 bytes"},
        {-1023, "-1 KB"},
        {-1234567898, "-1.23 GB"},
    };
    for (const auto &row : rows)
        QTest::addRow("%lld", static_cast<long long>(row.bytes))
            << row.bytes << QString::fromLatin1(row.text);
}

void TestByteCount::writesSizesAsPeopleReadThem()
{
    QFETCH(qint64, bytes);
    QTEST(stringFromByteCount(bytes), "text");
}

void TestByteCount::addsWithoutTurningOver()
{
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
    QCOMPARE(sumOfByteCounts(0, 0), 0);
    QCOMPARE(sumOfByteCounts(20, 1), 21);
    QCOMPARE(sumOfByteCounts(kMost, 0), kMost);
    QCOMPARE(sumOfByteCounts(kMost - 1, 1), kMost);
    QCOMPARE(sumOfByteCounts(kMost, 1), kMost);
    QCOMPARE(sumOfByteCounts(kMost, kMost), kMost);
}

void TestByteCount::takesSizesOfFilesWithoutTurningOver()
{
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
    QCOMPARE(byteCountOf(0), 0);
    QCOMPARE(byteCountOf(kMost), kMost);
    QCOMPARE(byteCountOf(std::uint64_t(kMost) + 1), kMost);
    QCOMPARE(byteCountOf(std::numeric_limits<std::uint64_t>::max()), kMost);
}

VANTOR_TEST_MAIN(TestByteCount)
#include "tst_ByteCount.moc"
