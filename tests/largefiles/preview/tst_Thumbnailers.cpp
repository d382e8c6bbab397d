#include "largefiles/preview/Thumbnail.h"
#include "largefiles/preview/Thumbnailers.h"
#include "platform/system/FileDescriptor.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/ProcessEnd.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTest>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

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
        if (!QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                             QFile::ReadOther | QFile::ExeOther))
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
        ThumbnailerLimits limits;
        limits.patience = patience;
        return pictureBy(command, limits, stop);
    }

    QImage pictureBy(const QString &command, const ThumbnailerLimits &limits,
                     const std::stop_token &stop = {}) const
    {
        const FileDescriptor file(::open(film().path().constData(), O_RDONLY | O_CLOEXEC));
        return pictureMadeBy({{command, QStringLiteral("%i"), QStringLiteral("%o")}, {}},
                             {film(), file.get()}, 128, stop, limits);
    }

    /// The film is a picture, so that a program has something to give.
    void makeFilm(const QImage &picture) const
    {
        if (!picture.save(QFile::decodeName(film().path()), "PNG"))
            qFatal("cannot write");
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
        makeFilm(picture);
        QVERIFY(picture.save(path("picture"), "PNG")); // a program in the sandbox does not see it
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
        const QString command = program("test $# = 6 && test \"$3\" = --size=128 && "
                                        "test \"$4\" = file:///input/file.mp4 && "
                                        "test \"$5\" = 100% && test \"$6\" = \"a b\" && "
                                        "cp \"$1\" \"$2\"");
        const Thumbnailer thumbnailer{{command, QStringLiteral("%i"), QStringLiteral("%o"),
                                       QStringLiteral("--size=%s"), QStringLiteral("%u"),
                                       QStringLiteral("100%%"), QStringLiteral("a b")},
                                      {}};
        const FileDescriptor file(::open(film().path().constData(), O_RDONLY | O_CLOEXEC));
        const QImage picture = pictureMadeBy(thumbnailer, {film(), file.get()}, 128, {});
        QCOMPARE(picture.size(), QSize(128, 72));
        QCOMPARE(picture.pixelColor(50, 30), QColor(Qt::cyan));
    }

    void tidiesUp()
    {
        const QByteArray temporary = m_folder->makeFolder("temporary");
        const auto before = qgetenv("TMPDIR");
        qputenv("TMPDIR", temporary);
        const QImage picture = pictureBy(program("cp \"$1\" \"$2\""), std::chrono::seconds(20));
        qputenv("TMPDIR", before);
        if (before.isNull())
            qunsetenv("TMPDIR");
        QVERIFY(!picture.isNull());
        QVERIFY(QDir(QFile::decodeName(temporary)).isEmpty());
    }

    void whatFailsGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("fails") << QByteArray("cp \"$1\" \"$2\"; exit 3");
        QTest::newRow("crashes") << QByteArray("cp \"$1\" \"$2\"; kill -9 $$");
        QTest::newRow("writes nothing") << QByteArray("true");
        QTest::newRow("writes no picture") << QByteArray("echo no >\"$2\"");
        QTest::newRow("leaves a pipe") << QByteArray("mkfifo \"$2\"");
        QTest::newRow("leaves a link") << QByteArray("ln -s \"$F/picture\" \"$2\"");
        QTest::newRow("leaves a folder") << QByteArray("mkdir \"$2\"");
        QTest::newRow("leaves a heavy file")
            << QByteArray("cp \"$1\" \"$2\"; truncate -s 30M \"$2\"");
        QTest::newRow("writes without end") << QByteArray("head -c 200M /dev/zero >\"$2\"");
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
        makeFilm(picture);
        const QString command = program("cp \"$1\" \"$2\"");
        QCOMPARE(pictureBy(command, std::chrono::seconds(20)).size(), QSize(128, 64));
    }

    void aPictureOfVeryManyPixelsIsNotRead()
    {
        QImage picture(20'000, 20'000, QImage::Format_Mono); // light as a file
        picture.fill(0);
        makeFilm(picture);
        const QString command = program("cp \"$1\" \"$2\"");
        QVERIFY(pictureBy(command, std::chrono::seconds(20)).isNull());
    }

    void whatItLeavesIsDecodedApart()
    {
        ThumbnailerLimits limits;
        limits.decoder.program = QStringLiteral("/nowhere/vantor-thumbnail");
        QVERIFY(pictureBy(program("cp \"$1\" \"$2\""), limits).isNull());
    }

    void whatTakesTooLongIsEndedWithItsChildren()
    {
        const QString command =
            program("sleep " + longSleep(1) + " & sleep " + longSleep(2) + " & wait");
        bool wasRunning = false;
        std::jthread other([&](const std::stop_token &stop) {
            while (!stop.stop_requested() && !wasRunning)
                wasRunning = isRunning(longSleep(1)) && isRunning(longSleep(2));
        });
        QElapsedTimer timer;
        timer.start();
        QVERIFY(pictureBy(command, std::chrono::milliseconds(1500)).isNull());
        QVERIFY(timer.elapsed() < 10'000);
        other.request_stop();
        other.join();
        QVERIFY(wasRunning);
        QTRY_VERIFY(!isRunning(longSleep(1)) && !isRunning(longSleep(2)));
    }

    void aStopEndsIt()
    {
        const QString command = program("exec sleep " + longSleep(3));
        std::stop_source stop;
        const std::jthread other([&] {
            while (!isRunning(longSleep(3)))
                std::this_thread::yield();
            stop.request_stop();
        });
        QVERIFY(pictureBy(command, std::chrono::seconds(60), stop.get_token()).isNull());
        QTRY_VERIFY(!isRunning(longSleep(3)));
    }

    void anotherFileInItsPlaceIsNotShown()
    {
        const FileDescriptor file(::open(film().path().constData(), O_RDONLY | O_CLOEXEC));
        const Thumbnailer thumbnailer{
            {program("cp \"$1\" \"$2\""), QStringLiteral("%i"), QStringLiteral("%o")}, {}};
        const auto picture = [&] {
            return pictureMadeBy(thumbnailer, {film(), file.get()}, 128, {});
        };
        QVERIFY(!picture().isNull());
        QVERIFY(QFile::rename(QFile::decodeName(film().path()), path("moved")));
        QVERIFY(QFile::copy(path("moved"), QFile::decodeName(film().path())));
        QVERIFY(picture().isNull());
        QVERIFY(QFile::remove(QFile::decodeName(film().path())));
        m_folder->makeLink("a film 100%.mp4", m_folder->path("other"));
        QVERIFY(QFile::copy(path("moved"), path("other")));
        QVERIFY(picture().isNull());
    }

    void withoutASandboxNothingIsRun_data()
    {
        QTest::addColumn<QString>("bubblewrap");
        QTest::newRow("not installed") << QString();
        QTest::newRow("may not make any") << QStringLiteral("/bin/false");
        QTest::newRow("cannot be started") << QStringLiteral("/nowhere/bwrap");
    }

    void withoutASandboxNothingIsRun()
    {
        QFETCH(QString, bubblewrap);
        ThumbnailerLimits limits;
        limits.sandbox.bubblewrap = bubblewrap;
        const QString command = program(": >\"$F/started\"; cp \"$1\" \"$2\"");
        QVERIFY(pictureBy(command, limits).isNull());
        QVERIFY(!QFile::exists(path("started")));
        QVERIFY(!limits.sandbox.isUsable());
    }

    /// A program that a film has taken over tries things; it leaves a picture if it succeeds. $F is
    /// the folder of the test, $1 the film, $2 its output, $P the number of the test's process, $S
    /// the port of a server.
    void keepsItAwayFromAllElse_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("reads another file") << QByteArray("cat \"$F/secret\"");
        QTest::newRow("looks into a folder") << QByteArray("ls \"$F/home\"");
        QTest::newRow("writes another file") << QByteArray("echo x >\"$F/secret\"");
        QTest::newRow("makes a file") << QByteArray("echo x >\"$F/home/new\"");
        QTest::newRow("removes a file") << QByteArray("rm \"$F/home/file\"");
        QTest::newRow("writes the film") << QByteArray("echo x >>\"$1\"");
        QTest::newRow("writes what is open as the film")
            << QByteArray("for n in /proc/*/fd/*; do test \"$n\" -ef \"$1\" && echo x >>\"$n\" && "
                          "exit 0; done; echo x >>\"$1\"");
        QTest::newRow("gives the film away") << QByteArray("chmod 777 \"$1\"");
        QTest::newRow("connects to a server")
            << QByteArray("bash -c \"exec 3<>/dev/tcp/127.0.0.1/$S\"");
        QTest::newRow("sees another process") << QByteArray("test -e /proc/$P/status");
        QTest::newRow("signals another process") << QByteArray("kill -CONT $P");
        QTest::newRow("reads the environment") << QByteArray("env | grep VANTOR_TEST_SECRET");
        QTest::newRow("uses what it inherits") << QByteArray("ls -l /proc/self/fd | grep secret");
        QTest::newRow("writes beside the system") << QByteArray("mkdir /dev/shm/$P.vantor");
        QTest::newRow("makes a world of its own") << QByteArray("unshare -U true");
    }

    void keepsItAwayFromAllElse()
    {
        QFETCH(QByteArray, line);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        m_folder->makeFolder("home");
        write("home/file", "x");
        qputenv("VANTOR_TEST_SECRET", "secret");
        QFile secret(write("secret", "secret"));
        QVERIFY(secret.open(QIODevice::ReadWrite));
        const FileDescriptor inherited(::dup(secret.handle()));
        const QString command =
            program("P=" + QByteArray::number(::getpid()) +
                    " S=" + QByteArray::number(server.serverPort()) +
                    "\ncp \"$1\" \"$2.made\"\nif ( " + line + " ); then mv \"$2.made\" \"$2\"; fi");
        for (const ChildUser user : {ChildUser::Same, ChildUser::Nobody}) {
            const ChildOutcome outcome = runInChild(user, [&] {
                return pictureBy(command, std::chrono::seconds(20)).isNull() ? 0 : 1;
            });
            QCOMPARE(outcome.exitCode, 0);
        }
        QVERIFY(!pictureBy(program("cp \"$1\" \"$2\""), std::chrono::seconds(20)).isNull());
        // All of this is possible without a sandbox.
        const int bare =
            QProcess::execute(command, {QFile::decodeName(film().path()), path("bare picture")});
        QCOMPARE(bare, 0);
        QVERIFY(QFile::exists(path("bare picture")));
        QDir(QStringLiteral("/dev/shm")).rmdir(QStringLiteral("%1.vantor").arg(::getpid()));
    }

    void anOrdinaryUserGetsAPictureToo()
    {
        const QString command = program("cp \"$1\" \"$2\"");
        const ChildOutcome outcome = runInChild(ChildUser::Nobody, [&] {
            return pictureBy(command, std::chrono::seconds(20)).isNull() ? 1 : 0;
        });
        QCOMPARE(outcome.exitCode, 0);
    }

    void aFilmIsShownAndItsPictureKept()
    {
        QFile file(QFile::decodeName(film().path()));
        QVERIFY(file.open(QIODevice::ReadWrite));
        install("own", "films",
                program("echo " + file.readAll().toBase64() + " | base64 -d >\"$2\""));
        QVERIFY(file.resize(0)); // so that nothing but the program can show it
        QVERIFY(file.write("no film at all") > 0 && file.flush());
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-1),
                                 QFileDevice::FileModificationTime));
        const FolderAccess access{m_folder->path()};
        const FileReading reading{hostSystemCalls(), const_cast<FolderAccess &>(access)};
        for (int time = 0; time < 2; ++time) {
            const QImage image = imageWithPreviewOfFileAtPath(reading, film(), {{100, 100}, 1},
                                                              ThumbnailMode::Plain);
            QCOMPARE(image.size(), QSize(100, 56));
            QCOMPARE(image.pixelColor(50, 30), QColor(Qt::cyan));
            install("own", "films", program("exit 1")); // the second time it is not asked
        }
    }
};

VANTOR_GUI_TEST_MAIN(ThumbnailersTest)
#include "tst_Thumbnailers.moc"
