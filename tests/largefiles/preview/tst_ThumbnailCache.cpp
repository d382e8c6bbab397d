#include "largefiles/preview/ThumbnailCache.h"
#include "tests/support/run/GuiTestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

namespace {

const FileUrl kFile = FileUrl::fromPath("/home/u/Movies/a film 1%.mkv", FileUrlKind::File);
const QDateTime kModified = QDateTime::fromMSecsSinceEpoch(1'600'000'000'750);

QImage pictureOf(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    return picture;
}

QString cached(const QString &folder)
{
    const QByteArray sum = QCryptographicHash::hash("file:///home/u/Movies/a%20film%201%25.mkv",
                                                    QCryptographicHash::Md5)
                               .toHex();
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/thumbnails/%1/%2.png").arg(folder, QString::fromLatin1(sum));
}

} // namespace

class ThumbnailCacheTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
             QStringLiteral("/thumbnails"))
            .removeRecursively();
    }

    void theKeptSizesAreThoseOfTheCache_data()
    {
        QTest::addColumn<int>("side");
        QTest::addColumn<int>("kept");
        QTest::newRow("tiny") << 1 << 128;
        QTest::newRow("normal") << 128 << 128;
        QTest::newRow("one more") << 129 << 256;
        QTest::newRow("large") << 220 << 256;
        QTest::newRow("x-large") << 440 << 512;
        QTest::newRow("xx-large") << 513 << 1024;
        QTest::newRow("larger than all") << 4000 << 1024;
    }

    void theKeptSizesAreThoseOfTheCache()
    {
        QFETCH(int, side);
        QTEST(cachedSide(side), "kept");
    }

    void whatIsKeptIsFoundByEverybody()
    {
        cacheThumbnail(kFile, kModified, pictureOf({256, 100}), 220);
        const QString path = cached(QStringLiteral("large"));
        const QImage picture(path);
        QCOMPARE(picture.size(), QSize(256, 100));
        QCOMPARE(picture.text(QStringLiteral("Thumb::URI")),
                 QStringLiteral("file:///home/u/Movies/a%20film%201%25.mkv"));
        QCOMPARE(picture.text(QStringLiteral("Thumb::MTime")), QStringLiteral("1600000000"));
        constexpr auto kMine =
            QFile::ReadUser | QFile::WriteUser | QFile::ReadOwner | QFile::WriteOwner;
        QCOMPARE(QFile::permissions(path), kMine);
        QCOMPARE(QFile::permissions(QFileInfo(path).path()),
                 kMine | QFile::ExeUser | QFile::ExeOwner);
        QCOMPARE(QFileInfo(path).dir().entryList(QDir::Files).size(), 1);
        QCOMPARE(cachedThumbnail(kFile, kModified, 220).size(), QSize(256, 100));
    }

    void anotherTimeIsAnotherFile()
    {
        cacheThumbnail(kFile, kModified, pictureOf({128, 128}), 128);
        QVERIFY(cachedThumbnail(kFile, kModified.addSecs(1), 128).isNull());
        QVERIFY(!cachedThumbnail(kFile, kModified.addMSecs(100), 128).isNull());
    }

    void aPictureThatNamesAnotherFileIsNotTaken()
    {
        cacheThumbnail(kFile, kModified, pictureOf({128, 128}), 128);
        const QString path = cached(QStringLiteral("normal"));
        for (const char *uri : {"file:///home/u/Movies/another.mkv", ""}) {
            QImage picture(path);
            picture.setText(QStringLiteral("Thumb::URI"), QLatin1String(uri));
            QVERIFY(picture.save(path));
            QVERIFY(cachedThumbnail(kFile, kModified, 128).isNull());
        }
    }

    void theNextLargerSizeComesFirst()
    {
        cacheThumbnail(kFile, kModified, pictureOf({100, 100}), 128);
        QVERIFY(cachedThumbnail(kFile, kModified, 256).isNull());
        cacheThumbnail(kFile, kModified, pictureOf({1000, 1000}), 1024);
        QCOMPARE(cachedThumbnail(kFile, kModified, 256).size(), QSize(1000, 1000));
    }

    void theLargestOfTheSmallerOnesIsThereInNeed()
    {
        QVERIFY(smallerCachedThumbnail(kFile, kModified, 512).isNull());
        cacheThumbnail(kFile, kModified, pictureOf({100, 100}), 128);
        cacheThumbnail(kFile, kModified, pictureOf({250, 250}), 256);
        QCOMPARE(smallerCachedThumbnail(kFile, kModified, 512).size(), QSize(250, 250));
        QCOMPARE(smallerCachedThumbnail(kFile, kModified, 256).size(), QSize(100, 100));
        QVERIFY(smallerCachedThumbnail(kFile, kModified, 128).isNull());
        QVERIFY(smallerCachedThumbnail(kFile, kModified.addSecs(1), 256).isNull());
    }

    void whatChangesJustNowIsNotKept()
    {
        const QDateTime now = QDateTime::currentDateTime();
        cacheThumbnail(kFile, now, pictureOf({128, 128}), 128);
        QVERIFY(cachedThumbnail(kFile, now, 128).isNull());
    }

    void nothingAndADamagedPictureAreNoMatter()
    {
        cacheThumbnail(kFile, kModified, QImage(), 128);
        QVERIFY(!QFile::exists(cached(QStringLiteral("normal"))));
        cacheThumbnail(kFile, kModified, pictureOf({128, 128}), 128);
        QVERIFY(QFile::resize(cached(QStringLiteral("normal")), 40));
        QVERIFY(cachedThumbnail(kFile, kModified, 128).isNull());
    }
};

VANTOR_GUI_TEST_MAIN(ThumbnailCacheTest)
#include "tst_ThumbnailCache.moc"
