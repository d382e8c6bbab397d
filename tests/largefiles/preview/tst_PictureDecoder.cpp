#include "largefiles/preview/Thumbnail.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <thread>

namespace {

using namespace std::chrono_literals;
constexpr QSize kRoom(400, 300);

/// A document of one page that draws a form, which draws another ten times, and so on: to draw it
/// all takes longer than a life.
QByteArray endlessDocument()
{
    constexpr int kDepth = 16;
    QByteArray pdf = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                     "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                     "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]/Contents 4 0 R"
                     "/Resources<</XObject<</F 10 0 R>>>>>>endobj\n"
                     "4 0 obj<</Length 4>>stream\n/F Do\nendstream endobj\n";
    for (int level = 0; level < kDepth; ++level) {
        const QByteArray content =
            level + 1 < kDepth ? QByteArray("/F Do ").repeated(10) : QByteArray("0 0 9 9 re f ");
        pdf += QByteArray::number(10 + level) +
               " 0 obj<</Type/XObject/Subtype/Form/BBox[0 0 100 100]/Resources<</XObject<</F " +
               QByteArray::number(11 + level) + " 0 R>>>>/Length " +
               QByteArray::number(content.size()) + ">>stream\n" + content + "\nendstream endobj\n";
    }
    return pdf + "trailer<</Root 1 0 R>>\n%%EOF\n";
}

} // namespace

/// What happens with files whose decoder misbehaves.
class PictureDecoderTest final : public QObject
{
    Q_OBJECT

private:
    ScratchFolder m_folder;
    FolderAccess m_access{m_folder.path()};

    FileUrl write(const QByteArray &name, const QByteArray &bytes) const
    {
        QFile file(QFile::decodeName(m_folder.path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
        return FileUrl::fromPath(m_folder.path(name), FileUrlKind::File);
    }

    FileUrl photograph() const
    {
        QImage image(900, 600, QImage::Format_RGB32);
        image.fill(Qt::red);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return write("photograph.png", buffer.data());
    }

    /// A decoder made of this line of the shell.
    QString program(const QByteArray &line) const
    {
        const FileUrl file = write("decoder", "#!/bin/sh\n" + line + "\n");
        const QString path = QFile::decodeName(file.path());
        if (!QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            qFatal("cannot make a program");
        return path;
    }

    QImage made(const FileUrl &file, const PictureDecoder &decoder,
                const std::stop_token &stop = {})
    {
        return pictureOfFile({hostSystemCalls(), m_access, decoder}, file, kRoom, stop);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_folder.makeFolder("shared"); // without thumbnail programs
        m_folder.makeLink("shared/mime", "/usr/share/mime");
        qputenv("XDG_DATA_DIRS", m_folder.path("shared"));
    }

    void decodesBesideTheProgram()
    {
        QVERIFY(QFileInfo(PictureDecoder::besideTheProgram()).isExecutable());
        const QImage image = made(photograph(), {});
        QCOMPARE(image.size(), QSize(400, 266));
        QCOMPARE(image.pixelColor(200, 100), QColor(Qt::red));
    }

    void aBadDecoderGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("fails") << QByteArray("exit 1");
        QTest::newRow("crashes") << QByteArray("kill -SEGV $$");
        QTest::newRow("says nothing") << QByteArray("true");
        QTest::newRow("says something else") << QByteArray("echo a picture");
        QTest::newRow("gives it back") << QByteArray("cat");
        QTest::newRow("never ends saying") << QByteArray("head -c 200M /dev/zero");
        // The mark, the pages, and a size that was not asked for.
        QTest::newRow("claims too much") << QByteArray(
            "printf 'VTP1\\0\\0\\0\\1\\0\\1\\0\\0\\0\\1\\0\\0'; head -c 200M /dev/zero");
        QTest::newRow("claims less than nothing")
            << QByteArray("printf 'VTP1\\377\\0\\0\\1\\377\\1\\0\\0\\377\\1\\0\\0'");
        QTest::newRow("ends early")
            << QByteArray("printf 'VTP1\\0\\0\\0\\1\\0\\0\\0\\11\\0\\0\\0\\11abcd'");
    }

    void aBadDecoderGivesNothing()
    {
        QFETCH(QByteArray, line);
        QVERIFY(made(photograph(), {program(line), 20s}).isNull());
    }

    void withoutADecoderThereIsAnIcon()
    {
        const FileUrl file = photograph();
        const FileReading reading{
            hostSystemCalls(), m_access, {QStringLiteral("/nowhere/vantor-thumbnail"), 20s}};
        QCOMPARE(imageWithPreviewOfFileAtPath(reading, file, {kRoom, 1}, ThumbnailMode::Icon),
                 iconOfFile(file, {kRoom, 1}));
    }

    void anEndlessDocumentEndsWithThePatience()
    {
        const FileUrl file = write("endless.pdf", endlessDocument());
        QElapsedTimer timer;
        timer.start();
        const auto device = GuardedFile::open(
            {hostSystemCalls(), m_access, {PictureDecoder::besideTheProgram(), 700ms}}, file, {});
        QVERIFY(device);
        QVERIFY(device->picture(0, kRoom).image.isNull());
        QVERIFY(timer.elapsed() < 20'000); // not for ever
    }

    void aStopEndsTheDecoder()
    {
        const QString begun = QFile::decodeName(m_folder.path("begun"));
        const QString decoder = program(": >'" + m_folder.path("begun") + "'; exec sleep 600");
        std::stop_source stop;
        const std::jthread other([&] {
            while (!QFile::exists(begun))
                std::this_thread::yield();
            stop.request_stop();
        });
        QVERIFY(made(photograph(), {decoder, 200s}, stop.get_token()).isNull());
    }

    void theDecoderIsToldWhatIsWanted()
    {
        made(photograph(), {program("echo $* >'" + m_folder.path("arguments") + "'"), 20s});
        QFile arguments(QFile::decodeName(m_folder.path("arguments")));
        QVERIFY(arguments.open(QIODevice::ReadOnly));
        QCOMPARE(arguments.readAll(), QByteArray("512 512 0\n"));
    }

    void noProcessIsStartedForWhatIsNoPicture()
    {
        const QString mark = QFile::decodeName(m_folder.path("started"));
        FileReading reading{hostSystemCalls(), m_access};
        reading.decoder.program = program("touch " + QFile::encodeName(mark));
        const AccessScope scope(m_access);
        const FileUrl film = write("film.mkv", "\x1a\x45\xdf\xa3 and so on");
        QVERIFY(GuardedFile::open(reading, film, {})->picture(0, kRoom).image.isNull());
        QVERIFY(!QFile::exists(mark));
        GuardedFile::open(reading, photograph(), {})->picture(0, kRoom);
        QVERIFY(QFile::exists(mark));
    }
};

VANTOR_GUI_TEST_MAIN(PictureDecoderTest)
#include "tst_PictureDecoder.moc"
