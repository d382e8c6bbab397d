#include "largefiles/preview/DecodedPicture.h"
#include "tests/support/run/GuiTestMain.h"

#include <QBuffer>

namespace {

constexpr QSize kRoom(400, 300);

QImage pictureOf(QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::darkCyan);
    return picture;
}

QByteArray written(const DecodedPicture &picture)
{
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !writePicture(buffer, picture))
        qFatal("cannot write");
    return buffer.data();
}

DecodedPicture readFrom(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        qFatal("cannot read");
    return readPicture(buffer, kRoom);
}

} // namespace

/// What is believed of a decoder's output when the file that it decodes may control the decoder.
class DecodedPictureTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBackAsItWasWritten()
    {
        const QImage picture = pictureOf({400, 299});
        const DecodedPicture found = readFrom(written({picture, 7}));
        QCOMPARE(found.image, picture);
        QCOMPARE(found.pageCount, 7);
        QVERIFY(readFrom(written({{}, 3})).image.isNull());
        QCOMPARE(readFrom(written({{}, 3})).pageCount, 3);
    }

    void isNothingWhereItIsLargerThanTheRoom_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("wider") << QSize(401, 10);
        QTest::newRow("higher") << QSize(10, 301);
    }
    void isNothingWhereItIsLargerThanTheRoom()
    {
        QFETCH(QSize, size);
        QVERIFY(readFrom(written({pictureOf(size), 1})).image.isNull());
    }

    void isNothingWhereItIsDamaged_data()
    {
        QTest::addColumn<int>("place"); ///< of the byte that is changed
        QTest::newRow("another mark") << 0;
        QTest::newRow("fewer pages than none") << 4;
        QTest::newRow("an enormous width") << 8;
    }
    void isNothingWhereItIsDamaged()
    {
        QFETCH(int, place);
        QByteArray bytes = written({pictureOf({40, 30}), 1});
        bytes[place] = '\xc0';
        const DecodedPicture found = readFrom(bytes);
        QVERIFY(found.image.isNull());
        QVERIFY(found.pageCount >= 0);
    }

    void isNothingWhereItIsCutAnywhere()
    {
        const QByteArray bytes = written({pictureOf({4, 3}), 1});
        for (qsizetype length = 0; length < bytes.size(); ++length)
            QVERIFY2(readFrom(bytes.first(length)).image.isNull(), QByteArray::number(length));
    }
};

VANTOR_GUI_TEST_MAIN(DecodedPictureTest)
#include "tst_DecodedPicture.moc"
