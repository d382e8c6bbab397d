#include "largefiles/preview/Thumbnail.h"
#include "largefiles/preview/Thumbnailers.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/ProcessEnd.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTest>
#include <thread>

/// Programs that make thumbnails: small scripts here.
class ThumbnailersTest final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ScratchFolder> m_folder;

    QString path(const QByteArray &name) const { return QFile::decodeName(m_folder->path(name)); }

    QString write(const QByteArray &name, const QByteArray &text) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write");
        return file.fileName();
    }

    QByteArray read(const QByteArray &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// A program made of this line of the shell. $F is the folder of the test.
    QString program(const QByteArray &line, const QByteArray &name = "program") const
    {
        const QString file = write(name, "#!/bin/sh\nF='" + m_folder->path() + "'\n" + line + "\n");
        if (!QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            qFatal("cannot make a program");
        return file;
    }

    void install(const QByteArray &folder, const QByteArray &name, const QString &command) const
    {
        write(folder + "/thumbnailers/" + name + ".thumbnailer",
              "[Thumbnailer Entry]\nExec=" + QFile::encodeName(command) +
                  " %i %o %s\nMimeType=application/x-one;video/mp4;\n");
    }

    FileUrl film() const
    {
        return FileUrl::fromPath(m_folder->path("a film 100%.mp4"), FileUrlKind::File);
    }

    QImage pictureBy(const QString &command, std::chrono::milliseconds patience,
                     const std::stop_token &stop = {}) const
    {
        return pictureMadeBy({{command, QStringLiteral("%i"), QStringLiteral("%o")}, {}}, film(),
                             128, stop, patience);
    }

    /// Of the process whose number a program left in the file.
    bool hasEnded(const QByteArray &numberFile) const
    {
        return ::hasEnded(read(numberFile).trimmed().toInt());
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<ScratchFolder>();
        for (const char *folder : {"own/thumbnailers", "shared/thumbnailers"})
            m_folder->makeFolder(folder);
        m_folder->makeLink("shared/mime", "/usr/share/mime");
        qputenv("XDG_DATA_HOME", m_folder->path("own"));
        qputenv("XDG_DATA_DIRS", m_folder->path("shared"));
        QImage picture(128, 72, QImage::Format_RGB32);
        picture.fill(Qt::cyan);
        QVERIFY(picture.save(path("picture"), "PNG"));
        write("a film 100%.mp4", "no film at all");
    }

    void readsWhatIsUsable_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<bool>("isUsable");
        const QByteArray whole = "[Thumbnailer Entry]\nTryExec=sh\nExec=sh %i\nMimeType=a/b;c/d;\n";
        const auto without = [&](const QByteArray &line) {
            return QByteArray(whole).replace(line, "");
        };
        QTest::newRow("whole") << whole << true;
        QTest::newRow("with spaces and comments")
            << QByteArray("# one\n[Thumbnailer Entry]\nExec = sh %i\n\nMimeType = a/b\n") << true;
        QTest::newRow("no try") << without("TryExec=sh\n") << true;
        QTest::newRow("try what is missing")
            << QByteArray(whole).replace("TryExec=sh", "TryExec=no-such-program") << false;
        QTest::newRow("run what is missing")
            << QByteArray(whole).replace("Exec=sh %i", "Exec=no-such-program %i") << false;
        QTest::newRow("no command") << without("Exec=sh %i\n") << false;
        QTest::newRow("no kinds") << without("MimeType=a/b;c/d;\n") << false;
        QTest::newRow("another group")
            << "[Desktop Entry]\n" + without("[Thumbnailer Entry]\n") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void readsWhatIsUsable()
    {
        QFETCH(QByteArray, entry);
        QFETCH(bool, isUsable);
        const auto thumbnailer = readThumbnailer(write("entry", entry));
        QCOMPARE(thumbnailer.has_value(), isUsable);
        if (isUsable)
            QCOMPARE(thumbnailer->command,
                     QStringList({QStringLiteral("sh"), QStringLiteral("%i")}));
        QVERIFY(!readThumbnailer(path("no such entry")));
    }

    void theUsersEntryHidesTheSystems()
    {
        install("shared", "films", program("exit 1", "shared program"));
        QVERIFY(!thumbnailerFor(QStringLiteral("video/mp4")).has_value()); // the space splits it
        install("shared", "films", program("exit 1", "shared-program"));
        QCOMPARE(thumbnailerFor(QStringLiteral("video/mp4"))->command.constFirst(),
                 path("shared-program"));
        install("own", "films", program("exit 1", "own-program"));
        QCOMPARE(thumbnailerFor(QStringLiteral("video/mp4"))->command.constFirst(),
                 path("own-program"));
        QVERIFY(!thumbnailerFor(QStringLiteral("text/plain")));
    }

    void fillsInTheFields()
    {
        const QString command =
            program("printf '%s\\n' \"$@\" > \"$F/arguments\"; cp \"$F/picture\" \"$2\"");
        const Thumbnailer thumbnailer{{command, QStringLiteral("%i"), QStringLiteral("%o"),
                                       QStringLiteral("--size=%s"), QStringLiteral("%u"),
                                       QStringLiteral("100%%")},
                                      {}};
        const QImage picture = pictureMadeBy(thumbnailer, film(), 128, {});
        QCOMPARE(picture.size(), QSize(128, 72));
        const QByteArrayList arguments = read("arguments").split('\n');
        QCOMPARE(arguments.value(0), film().path());
        QCOMPARE(arguments.value(2), QByteArray("--size=128"));
        QCOMPARE(arguments.value(3), film().absoluteString());
        QCOMPARE(arguments.value(4), QByteArray("100%"));
        QVERIFY(!QFile::exists(QFile::decodeName(arguments.value(1)))); // tidied up
    }

    void whatFailsGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("fails") << QByteArray("cp \"$F/picture\" \"$2\"; exit 3");
        QTest::newRow("crashes") << QByteArray("cp \"$F/picture\" \"$2\"; kill -9 $$");
        QTest::newRow("writes nothing") << QByteArray("true");
        QTest::newRow("writes no picture") << QByteArray("echo no >\"$2\"");
        QTest::newRow("leaves a pipe") << QByteArray("mkfifo \"$2\"");
        QTest::newRow("leaves a link") << QByteArray("ln -s \"$F/picture\" \"$2\"");
        QTest::newRow("leaves a folder") << QByteArray("mkdir \"$2\"");
        QTest::newRow("leaves a heavy file")
            << QByteArray("cp \"$F/picture\" \"$2\"; truncate -s 30M \"$2\"");
        QTest::newRow("writes without end") << QByteArray("cat /dev/zero >\"$2\"");
    }

    void whatFailsGivesNothing()
    {
        QFETCH(QByteArray, line);
        QVERIFY(pictureBy(program(line), std::chrono::seconds(20)).isNull());
        QVERIFY(pictureBy(path("no such program"), std::chrono::seconds(20)).isNull());
    }

    void tooLargeAPictureIsMadeSmaller()
    {
        QImage picture(2000, 1000, QImage::Format_RGB32);
        picture.fill(Qt::cyan);
        QVERIFY(picture.save(path("picture"), "PNG"));
        const QString command = program("cp \"$F/picture\" \"$2\"");
        QCOMPARE(pictureBy(command, std::chrono::seconds(20)).size(), QSize(128, 64));
    }

    void aPictureOfVeryManyPixelsIsNotRead()
    {
        QImage picture(5760, 5760, QImage::Format_Mono); // light as a file
        picture.fill(0);
        QVERIFY(picture.save(path("picture"), "PNG"));
        const QString command = program("cp \"$F/picture\" \"$2\"");
        QVERIFY(pictureBy(command, std::chrono::seconds(20)).isNull());
    }

    void whatTakesTooLongIsEndedWithItsChildren()
    {
        const QString command =
            program("echo $$ >\"$F/number\"; sleep 600 & echo $! >\"$F/child\"; wait");
        QElapsedTimer timer;
        timer.start();
        QVERIFY(pictureBy(command, std::chrono::milliseconds(500)).isNull());
        QVERIFY(timer.elapsed() < 5000);
        QVERIFY(hasEnded("number"));
        QVERIFY(hasEnded("child"));
    }

    void aStopEndsIt()
    {
        const QString command = program("echo $$ >\"$F/number\"; exec sleep 600");
        std::stop_source stop;
        const std::jthread other([&] {
            while (read("number").isEmpty())
                std::this_thread::yield();
            stop.request_stop();
        });
        QVERIFY(pictureBy(command, std::chrono::seconds(60), stop.get_token()).isNull());
        QVERIFY(hasEnded("number"));
    }

    void aFilmIsShownAndItsPictureKept()
    {
        install("own", "films", program("echo run >>\"$F/runs\"; cp \"$F/picture\" \"$2\""));
        QFile file(QFile::decodeName(film().path()));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-1),
                                 QFileDevice::FileModificationTime));
        const FolderAccess access{m_folder->path()};
        const FileReading reading{hostSystemCalls(), const_cast<FolderAccess &>(access)};
        for (int time = 0; time < 2; ++time) {
            const QImage image = imageWithPreviewOfFileAtPath(reading, film(), {{100, 100}, 1},
                                                              ThumbnailMode::Plain);
            QCOMPARE(image.size(), QSize(100, 56));
            QCOMPARE(image.pixelColor(50, 30), QColor(Qt::cyan));
        }
        QCOMPARE(read("runs"), QByteArray("run\n"));
    }
};

VANTOR_GUI_TEST_MAIN(ThumbnailersTest)
#include "tst_Thumbnailers.moc"
