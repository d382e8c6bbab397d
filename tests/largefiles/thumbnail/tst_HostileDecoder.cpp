#include "largefiles/preview/PictureDecoder.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFile>
#include <QImageReader>
#include <QProcess>
#include <QTcpServer>
#include <QTest>

namespace {

constexpr QSize kRoom(10, 10);
constexpr int kLongest = 20'000; ///< milliseconds

} // namespace

/// A picture that has taken over its decoder, in the program that decodes pictures.
class HostileDecoderTest final : public QObject
{
    Q_OBJECT

private:
    ScratchFolder m_folder;
    QTcpServer m_server;

    QString write(const QByteArray &name, const QByteArray &bytes) const
    {
        QFile file(QFile::decodeName(m_folder.path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
        return file.fileName();
    }

    /// White when the decoder could do it in the program.
    QColor shown(const QString &picture) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"),
                           QStringLiteral(VANTOR_HOSTILE_PLUGINS));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardInputFile(picture);
        process.start(
            PictureDecoder::besideTheProgram(),
            {QString::number(kRoom.width()), QString::number(kRoom.height()), QStringLiteral("0")});
        if (!process.waitForFinished(kLongest) || process.exitCode() != 0)
            return {};
        return readPicture(process, kRoom).image.pixelColor(0, 0);
    }

    /// The same where nothing is confined.
    static QColor shownUnconfined(const QString &picture)
    {
        QImageReader reader(picture);
        reader.setDecideFormatFromContent(true);
        return reader.read().pixelColor(0, 0);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::addLibraryPath(QStringLiteral(VANTOR_HOSTILE_PLUGINS));
        QVERIFY(m_server.listen(QHostAddress::LocalHost));
    }

    void isShownWhenItDoesNothing()
    {
        QCOMPARE(shown(write("picture", "HOSTILE\nnothing\n")), QColor(Qt::white));
    }

    void canDoNothing_data()
    {
        QTest::addColumn<QByteArray>("act");
        QTest::addColumn<QByteArray>("argument");
        const QByteArray file = m_folder.path("file");
        QTest::newRow("reads a file") << QByteArray("read") << file;
        QTest::newRow("reads the system") << QByteArray("read") << QByteArray("/etc/passwd");
        QTest::newRow("reads about itself")
            << QByteArray("read") << QByteArray("/proc/self/environ");
        QTest::newRow("writes a file") << QByteArray("write") << file;
        QTest::newRow("writes what it shows") << QByteArray("write") << m_folder.path("picture");
        QTest::newRow("makes a file") << QByteArray("make") << m_folder.path("new");
        QTest::newRow("removes a file") << QByteArray("remove") << file;
        QTest::newRow("gives a file away") << QByteArray("give away") << file;
        QTest::newRow("connects") << QByteArray("connect")
                                  << QByteArray::number(m_server.serverPort());
        QTest::newRow("starts a program") << QByteArray("start") << QByteArray();
    }

    void canDoNothing()
    {
        QFETCH(QByteArray, act);
        QFETCH(QByteArray, argument);
        write("file", "words");
        const QString picture = write("picture", "HOSTILE\n" + act + '\n' + argument + '\n');
        QCOMPARE(shown(picture), QColor(Qt::black));
        QFile file(QFile::decodeName(m_folder.path("file")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("words"));
        QCOMPARE(shownUnconfined(picture), QColor(Qt::white));
    }
};

VANTOR_GUI_TEST_MAIN(HostileDecoderTest)
#include "tst_HostileDecoder.moc"
