#include "platform/base/LogText.h"

#include "tests/support/run/TestMain.h"

class TestLogText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesWhatShowsAsItIs_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("a path") << QByteArray("/home/u/a film (1).mkv");
        QTest::newRow("other scripts") << QByteArray("/home/u/Größe/写真/وثيقة");
        QTest::newRow("an accent of its own") << QByteArray("/home/u/Gro\xcc\x88sse");
        QTest::newRow("a picture") << QByteArray("/home/u/\xf0\x9f\x98\x80");
        QTest::newRow("a per cent sign") << QByteArray("/home/u/100%");
        QTest::newRow("nothing") << QByteArray("");
    }

    void leavesWhatShowsAsItIs()
    {
        QFETCH(QByteArray, text);
        QCOMPARE(logText(text), text);
        QCOMPARE(logText(QString::fromUtf8(text)), QString::fromUtf8(text));
    }

    void writesTheRestInDigits_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("shown");
        QTest::newRow("a line feed") << QByteArray("/a\nvantor: b") << QByteArray("/a%0Avantor: b");
        QTest::newRow("a carriage return") << QByteArray("/a\rb") << QByteArray("/a%0Db");
        QTest::newRow("a tab") << QByteArray("/a\tb") << QByteArray("/a%09b");
        QTest::newRow("an escape") << QByteArray("/a\x1b[2Jb") << QByteArray("/a%1B[2Jb");
        QTest::newRow("a deletion") << QByteArray("/a\x7f") << QByteArray("/a%7F");
        QTest::newRow("an escape of one byte")
            << QByteArray("/a\xc2\x9b") << QByteArray("/a%C2%9B");
        QTest::newRow("a line separator")
            << QByteArray("/a\xe2\x80\xa8") << QByteArray("/a%E2%80%A8");
        QTest::newRow("a paragraph separator")
            << QByteArray("/a\xe2\x80\xa9") << QByteArray("/a%E2%80%A9");
        QTest::newRow("right to left from here")
            << QByteArray("/a\xe2\x80\xae") << QByteArray("/a%E2%80%AE");
        QTest::newRow("a direction apart")
            << QByteArray("/a\xe2\x81\xa6") << QByteArray("/a%E2%81%A6");
        QTest::newRow("no width") << QByteArray("/a\xe2\x80\x8b") << QByteArray("/a%E2%80%8B");
    }

    void writesTheRestInDigits()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, shown);
        QCOMPARE(logText(text), shown);
        QCOMPARE(logText(QString::fromUtf8(text)), QString::fromUtf8(shown));
    }

    void isOneLineWhateverTheBytes()
    {
        for (int byte = 1; byte < 256; ++byte) {
            const QByteArray shown = logText("/a" + QByteArray(1, static_cast<char>(byte)) + "b");
            for (const char control : {'\n', '\r', '\x1b', '\x85', '\x7f'})
                QVERIFY(!QString::fromUtf8(shown).contains(QLatin1Char(control)));
        }
    }
};

VANTOR_TEST_MAIN(TestLogText)
#include "tst_LogText.moc"
