#include "largefiles/preview/Thumbnail.h"
#include "largefiles/preview/ThumbnailCache.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QPainter>
#include <QPdfWriter>
#include <QStandardPaths>
#include <sys/stat.h>
#include <zlib.h>

namespace {

constexpr QSize kRoom(400, 300);
constexpr std::chrono::milliseconds kNoTime{0};

QByteArray encoded(const char *format, QSize size, const QColor &color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return buffer.data();
}

/// A picture that says that it is huge, and ends after that.
QByteArray hugePngHeader()
{
    const QByteArray header =
        QByteArray("IHDR") + QByteArray::fromHex("00007530000075300806000000");
    const auto sum =
        quint32(crc32(0, reinterpret_cast<const Bytef *>(header.constData()), uInt(header.size())));
    QByteArray bytes = QByteArray::fromHex("89504e470d0a1a0a0000000d") + header;
    for (const int shift : {24, 16, 8, 0})
        bytes.append(char(sum >> shift));
    return bytes;
}

} // namespace

class ThumbnailTest final : public QObject
{
    Q_OBJECT

private:
    ScratchFolder m_folder;
    FolderAccess m_access{m_folder.path()};
    FileReading m_reading{hostSystemCalls(), m_access};

    FileUrl write(const QByteArray &name, const QByteArray &bytes) const
    {
        QFile file(QFile::decodeName(m_folder.path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
        return FileUrl::fromPath(m_folder.path(name), FileUrlKind::File);
    }

    QImage made(const FileUrl &file, qreal scale = 1,
                ThumbnailMode mode = ThumbnailMode::Plain) const
    {
        return imageWithPreviewOfFileAtPath(m_reading, file, {kRoom, scale}, mode);
    }

    bool isIcon(const FileUrl &file) const { return made(file) == iconOfFile(file, {kRoom, 1}); }

private Q_SLOTS:
    void initTestCase()
    {
        m_folder.makeFolder("shared"); // without thumbnail programs
        m_folder.makeLink("shared/mime", "/usr/share/mime");
        qputenv("XDG_DATA_DIRS", m_folder.path("shared"));
    }
    void cleanup() { QCOMPARE(m_access.count(), 0); }

    void aPictureIsFittedIntoTheRoom()
    {
        const FileUrl file = write("a.jpg", encoded("JPG", {2000, 1000}, Qt::red));
        QCOMPARE(made(file).size(), QSize(400, 200));
        const QImage sharp = made(file, 2);
        QCOMPARE(sharp.size(), QSize(800, 400));
        QCOMPARE(sharp.deviceIndependentSize(), QSizeF(400, 200));
    }

    void aSmallPictureStaysSmall()
    {
        QCOMPARE(made(write("s.png", encoded("PNG", {40, 30}, Qt::green))).size(), QSize(40, 30));
    }

    void anIconHasRoundCorners()
    {
        const FileUrl file = write("r.png", encoded("PNG", {400, 300}, Qt::blue));
        QCOMPARE(qAlpha(made(file).pixel(0, 0)), 255);
        QVERIFY(qAlpha(made(file, 1, ThumbnailMode::Icon).pixel(0, 0)) < 128);
    }

    void whatIsNoPictureGetsASquareIcon_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("empty.png") << QByteArray();
        QTest::newRow("text") << QByteArray("notes.txt") << QByteArray("one\ntwo\n").repeated(1000);
        QTest::newRow("30000 by 30000") << QByteArray("huge.png") << hugePngHeader();
        QTest::newRow("noise") << QByteArray("noise.mkv") << QByteArray("\x1a\x45\xdf\xa3 etc");
        QTest::newRow("no document") << QByteArray("a.pdf") << QByteArray("%PDF-1.4\nnothing");
    }

    void whatIsNoPictureGetsASquareIcon()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, bytes);
        const FileUrl file = write(name, bytes);
        QCOMPARE(made(file).size(), QSize(300, 300));
        QVERIFY(isIcon(file));
    }

    void aCutPictureDoesNoHarm()
    {
        const QByteArray whole = encoded("JPG", {1200, 900}, Qt::yellow);
        const QImage image = made(write("cut.jpg", whole.left(whole.size() / 2)));
        QVERIFY(!image.isNull());
        QVERIFY(image.width() <= kRoom.width() && image.height() <= kRoom.height());
    }

    void anEndlesslyLargeFileIsNotRead()
    {
        const FileUrl file = write("disk.img", "begin");
        QFile grown(QFile::decodeName(file.path()));
        QVERIFY(grown.resize(50LL * 1024 * 1024 * 1024));
        QVERIFY(isIcon(file));
    }

    void aPipeIsNotOpened()
    {
        QCOMPARE(::mkfifo(m_folder.path("pipe.png").constData(), 0600), 0);
        const FileUrl pipe = FileUrl::fromPath(m_folder.path("pipe.png"), FileUrlKind::File);
        QVERIFY(isIcon(pipe));
        int opened = 0;
        const HookedSystem calls([&opened](int, std::string_view name) {
            opened += name == "openFile" ? 1 : 0;
            return 0;
        });
        const AccessScope scope(m_access);
        QVERIFY(!GuardedFile::open({calls, m_access}, pipe, {}));
        QCOMPARE(opened, 0);
    }

    void aLinkIsNotFollowed()
    {
        const FileUrl file = write("target.png", encoded("PNG", {40, 30}, Qt::green));
        m_folder.makeLink("link.png", file.path());
        QVERIFY(isIcon(FileUrl::fromPath(m_folder.path("link.png"), FileUrlKind::File)));
    }

    void readingEndsWithTheLimits()
    {
        const FileUrl file = write("long.bin", QByteArray(5000, 'x'));
        const auto device =
            GuardedFile::open(m_reading, file, {}, {1000, std::chrono::seconds(60)});
        QCOMPARE(device->read(1000).size(), 1000);
        QVERIFY(device->read(1000).isEmpty());
        QVERIFY(device->hasGivenUp());
        const auto late = GuardedFile::open(m_reading, file, {}, {10'000, kNoTime});
        QVERIFY(late->read(1).isEmpty());
        QVERIFY(late->hasGivenUp());
    }

    void aStopEndsTheWork()
    {
        std::stop_source stop;
        const FileUrl file = write("b.jpg", encoded("JPG", {2000, 1000}, Qt::red));
        const auto device = GuardedFile::open(m_reading, file, stop.get_token());
        stop.request_stop();
        QVERIFY(device->read(1).isEmpty());
        QVERIFY(imageWithPreviewOfFileAtPath(m_reading, file, {kRoom, 1}, ThumbnailMode::Icon,
                                             stop.get_token())
                    .isNull());
    }

    void noFileAndNoSizeGiveNothing()
    {
        QVERIFY(made(FileUrl()).isNull());
        const FileUrl file = write("n.txt", "n");
        QVERIFY(imageWithPreviewOfFileAtPath(m_reading, file, {{0, 10}, 1}, ThumbnailMode::Icon)
                    .isNull());
    }

    void theCacheIsUsedForTheFileAsItIs_data()
    {
        QTest::addColumn<double>("late");
        QTest::addColumn<bool>("isUsed");
        QTest::newRow("whole seconds") << 0.0 << true;
        QTest::newRow("a fraction") << 0.394842 << true;
        QTest::newRow("older picture") << -1.0 << false;
    }

    void theCacheIsUsedForTheFileAsItIs()
    {
        QFETCH(double, late);
        QFETCH(bool, isUsed);
        const FileUrl file = write("film.mkv", "film");
        struct stat status = {};
        QCOMPARE(::stat(file.path().constData(), &status), 0);
        QImage picture(256, 128, QImage::Format_RGB32);
        picture.fill(Qt::magenta);
        picture.setText(QStringLiteral("Thumb::URI"), QString::fromLatin1(file.absoluteString()));
        picture.setText(QStringLiteral("Thumb::MTime"),
                        QString::number(double(status.st_mtime) + late, 'f', 6));
        const QDir cache(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                         QStringLiteral("/thumbnails/large"));
        QVERIFY(cache.mkpath(QStringLiteral(".")));
        const QByteArray sum =
            QCryptographicHash::hash(file.absoluteString(), QCryptographicHash::Md5).toHex();
        QVERIFY(picture.save(cache.filePath(QString::fromLatin1(sum + ".png"))));
        QCOMPARE(isIcon(file), !isUsed);
        if (isUsed)
            QCOMPARE(made(file).pixelColor(100, 50), QColor(Qt::magenta));
    }

    void aSmallPictureInTheCacheGivesWayToABetterOne()
    {
        QImage small(128, 128, QImage::Format_RGB32);
        small.fill(Qt::magenta);
        const auto colourOf = [&](const FileUrl &file) {
            QFile opened(QFile::decodeName(file.path()));
            const QDateTime old = QDateTime::currentDateTime().addDays(-1);
            if (!opened.open(QIODevice::ReadWrite) ||
                !opened.setFileTime(old, QFileDevice::FileModificationTime))
                qFatal("cannot set the time");
            cacheThumbnail(file, old, small, 128);
            return made(file).pixelColor(60, 60);
        };
        QCOMPARE(colourOf(write("better.png", encoded("PNG", {400, 300}, Qt::blue))),
                 QColor(Qt::blue));
        QCOMPARE(colourOf(write("scene.mkv", "film")), QColor(Qt::magenta));
    }

    void aDocumentShowsItsPageOnWhitePaper()
    {
        const FileUrl file = write("d.pdf", {});
        QPdfWriter writer(QFile::decodeName(file.path()));
        QPainter painter(&writer);
        painter.fillRect(0, 0, writer.width(), writer.height() / 2, Qt::red);
        painter.end();
        const auto device = GuardedFile::open(m_reading, file, {});
        const int pageCount = device->picture(0, kRoom).pageCount;
        if (pageCount == 0) { // built without documents
            QVERIFY(isIcon(file));
            return;
        }
        QCOMPARE(pageCount, 1);
        const QImage image = made(file);
        QCOMPARE(image.height(), kRoom.height());
        QCOMPARE(image.pixelColor(image.width() / 2, image.height() / 4), QColor(Qt::red));
        QCOMPARE(image.pixelColor(2, image.height() - 3), QColor(Qt::white));
    }
};

VANTOR_GUI_TEST_MAIN(ThumbnailTest)
#include "tst_Thumbnail.moc"
