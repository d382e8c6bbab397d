#include "largefiles/preview/MediaView.h"

#include "largefiles/preview/MediaControls.h"
#include "platform/system/FileDescriptor.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/ProcessEnd.h"

#include <QBuffer>
#include <QLocalServer>
#include <QSignalSpy>
#include <QTcpServer>
#include <unistd.h>

namespace {

/// Three seconds of one colour, as uncompressed as it gets; green is 150, 90, 40.
QByteArray film()
{
    constexpr int kWidth = 64;
    constexpr int kHeight = 48;
    const QByteArray frame = QByteArray("FRAME\n") + QByteArray(kWidth * kHeight, char(150)) +
                             QByteArray(kWidth * kHeight / 4, char(90)) +
                             QByteArray(kWidth * kHeight / 4, char(40));
    return QByteArray("YUV4MPEG2 W64 H48 F10:1 C420jpeg\n") + frame.repeated(30);
}

} // namespace

class MediaViewTest final : public QObject
{
    Q_OBJECT

private:
    FileUrl write(const QByteArray &name, const QByteArray &bytes)
    {
        QFile file(QFile::decodeName(m_folder.path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
        return FileUrl::fromPath(m_folder.path(name), FileUrlKind::File);
    }
    /// A player that does what the shell's line does.
    Player player(const QByteArray &line)
    {
        const FileUrl url = write("player", "#!/bin/sh\n" + line + '\n');
        const QString path = QFile::decodeName(url.path());
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return {path, {}};
    }
    /// The line of such a player that makes this report. It finds no file but the film.
    static QByteArray report(const PlayerReport &report)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        writeReport(buffer, report);
        return "echo " + buffer.data().toBase64() + " | base64 -d\n";
    }
    static QAbstractButton *button(const MediaView &view) { return view.findChild<PlayButton *>(); }

    ScratchFolder m_folder;
    QWidget m_window;

private Q_SLOTS:
    void initTestCase()
    {
        m_window.resize(400, 300);
        m_window.show();
    }

    void offersToPlayFilmsAndSoundsAlone_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<bool>("isOffered");
        QTest::newRow("film") << QByteArray("a.mp4") << true;
        QTest::newRow("sound") << QByteArray("a.flac") << true;
        QTest::newRow("text") << QByteArray("a.txt") << false;
        QTest::newRow("picture") << QByteArray("a.png") << false;
        QTest::newRow("no extension") << QByteArray("mp4") << false;
    }
    void offersToPlayFilmsAndSoundsAlone()
    {
        QFETCH(QByteArray, name);
        QFETCH(bool, isOffered);
        MediaView view(&m_window, player("cat"));
        view.setFile(write(name, "x"));
        QCOMPARE(button(view)->isVisible(), isOffered);
        QCOMPARE(view.togglePlaying(), isOffered);
        QCOMPARE(view.isOpen(), isOffered);
    }

    void offersNothingWithoutAPlayer()
    {
        MediaView view(&m_window, {QStringLiteral("/nowhere/vantor-player"), {}});
        view.setFile(write("a.mp4", "x"));
        QVERIFY(!view.isVisible());
        QVERIFY(!view.togglePlaying());
    }

    void opensNothingBeforeThePress()
    {
        MediaView view(&m_window, player(report({PlayerReport::Kind::Playing, 0, 1000, {}}) +
                                         "exec sleep " + longSleep(1)));
        QSignalSpy changes(&view, &MediaView::changed);
        view.setFile(write("a.mp4", "x"));
        QVERIFY(!view.isOpen());
        QVERIFY(!view.findChild<PositionSlider *>()->isVisible());
        QVERIFY(!isRunning(longSleep(1)));
        QTest::mouseClick(button(view), Qt::LeftButton);
        QVERIFY(view.isOpen());
        QVERIFY(changes.wait());
        QTRY_VERIFY(isRunning(longSleep(1)));
        view.clear();
        QTRY_VERIFY(!isRunning(longSleep(1)));
    }

    void saysSoWhenThePlayerFails_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("ends without a word") << QByteArray("exit 0");
        QTest::newRow("crashes") << QByteArray("kill -SEGV $$");
        QTest::newRow("talks nonsense") << QByteArray("yes nonsense");
        QTest::newRow("says that it cannot") << report({});
    }
    void saysSoWhenThePlayerFails()
    {
        QFETCH(QByteArray, line);
        MediaView view(&m_window, player(line));
        view.setFile(write("a.mp4", "x"));
        QVERIFY(view.togglePlaying());
        QTRY_COMPARE(view.message(), QStringLiteral("This file cannot be played"));
        QVERIFY(!view.isOpen());
        QVERIFY(button(view)->isVisible());
        QCOMPARE(button(view)->accessibleName(), QStringLiteral("Play"));
        QVERIFY(view.togglePlaying()); // may be tried again
        QVERIFY(view.isOpen());
        QVERIFY(view.message().isEmpty());
    }

    void aPlayerThatHangsCanBeGivenUp()
    {
        MediaView view(&m_window, player("exec cat >/dev/null"));
        view.setFile(write("a.mp4", "x"));
        view.togglePlaying();
        QVERIFY(view.isOpen());
        QCOMPARE(button(view)->accessibleName(), QStringLiteral("Pause"));
        view.togglePlaying();
        QVERIFY(!view.isOpen());
        QCOMPARE(button(view)->accessibleName(), QStringLiteral("Play"));
    }

    void saysThatNothingCanBeHeard()
    {
        MediaView view(&m_window, player(report({PlayerReport::Kind::Silent, 0, 0, {}})));
        view.setFile(write("a.wav", "x"));
        view.togglePlaying();
        QTRY_COMPARE(view.message(), QStringLiteral("There is nothing to hear this with"));
    }

    void tellsWhereItIs()
    {
        MediaView view(&m_window,
                       player(report({PlayerReport::Kind::Playing, 65'000, 7'200'000, {}}) +
                              "cat >/dev/null"));
        view.setFile(write("a.mp4", "x"));
        view.togglePlaying();
        QTRY_COMPARE(view.time(), QStringLiteral("1:05 / 2:00:00"));
        QVERIFY(view.isPlaying());
        QCOMPARE(button(view)->accessibleName(), QStringLiteral("Pause"));
        QCOMPARE(button(view)->toolTip(), QStringLiteral("Pause (P)"));
        QCOMPARE(view.findChild<PositionSlider *>()->value(), 65'000);
    }

    void asksForPausesAndPlaces()
    {
        const QByteArray answers =
            "while read -r line; do case $line in\npause)\n" +
            report({PlayerReport::Kind::Paused, 7, 60'000, {}}) + ";;\n\"seek 60000\")\n" +
            report({PlayerReport::Kind::Position, 60'000, 60'000, {}}) + ";;\nesac; done";
        MediaView view(&m_window,
                       player(report({PlayerReport::Kind::Playing, 0, 60'000, {}}) + answers));
        view.resize(400, 300);
        view.setFile(write("a.mp4", "x"));
        view.togglePlaying();
        QTRY_VERIFY(view.isPlaying());
        view.togglePlaying();
        QTRY_VERIFY(!view.isPlaying());
        auto *const slider = view.findChild<PositionSlider *>();
        QTest::mouseClick(slider, Qt::LeftButton, {}, slider->rect().topRight());
        QTRY_COMPARE(view.time(), QStringLiteral("1:00 / 1:00"));
    }

    void withoutASandboxNothingIsPlayed()
    {
        Player bare = player(report({PlayerReport::Kind::Playing, 0, 1000, {}}) + "exec sleep " +
                             longSleep(2));
        bare.sandbox.bubblewrap.clear();
        MediaView hidden(&m_window, bare);
        hidden.setFile(write("a.mp4", "x"));
        QVERIFY(!hidden.isVisible());
        bare.sandbox.bubblewrap = QStringLiteral("/bin/false"); // may not make any
        MediaView view(&m_window, bare);
        view.setFile(write("a.mp4", "x"));
        QVERIFY(view.togglePlaying());
        QTRY_COMPARE(view.message(), QStringLiteral("This file cannot be played"));
        QVERIFY(!isRunning(longSleep(2)));
    }

    void playsTheFileAloneInASandbox_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isPossible");
        QTest::newRow("reads the film") << QByteArray("grep -q film \"$3\"") << true;
        QTest::newRow("talks to the sound server") << QByteArray("test -S /run/socket") << true;
        QTest::newRow("is told about the sound server")
            << QByteArray("test $PULSE_SERVER = unix:/run/socket") << true;
        QTest::newRow("writes the film") << QByteArray("echo x >>\"$3\"") << false;
        QTest::newRow("reads another file") << QByteArray("cat \"$F/secret\"") << false;
        QTest::newRow("makes a file") << QByteArray(": >\"$F/new\"") << false;
        QTest::newRow("makes a file inside") << QByteArray(": >/new || : >/tmp/new") << false;
        QTest::newRow("connects to a server")
            << QByteArray("bash -c \"exec 3<>/dev/tcp/127.0.0.1/$S\"") << false;
        QTest::newRow("reads the environment") << QByteArray("env | grep VANTOR_TEST") << false;
        QTest::newRow("talks to the bus") << QByteArray("test -S \"$F/bus\"") << false;
        QTest::newRow("uses what it inherits")
            << QByteArray("ls -l /proc/self/fd /proc/1/fd | grep -e secret -e film") << false;
    }

    void playsTheFileAloneInASandbox()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isPossible);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QLocalServer sound;
        QLocalServer bus;
        m_folder.makeFolder("pulse");
        QVERIFY(sound.listen(QFile::decodeName(m_folder.path("pulse/native"))));
        QVERIFY(bus.listen(QFile::decodeName(m_folder.path("bus"))));
        const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", m_folder.path());
        qputenv("VANTOR_TEST_SECRET", "secret");
        QFile secret(QFile::decodeName(write("secret", "secret").path()));
        QVERIFY(secret.open(QIODevice::ReadOnly));
        const FileDescriptor inherited(::dup(secret.handle()));
        MediaView view(
            &m_window,
            player("F='" + m_folder.path() + "' S=" + QByteArray::number(server.serverPort()) +
                   "\nif ( " + line + " ) >/dev/null; then\n" +
                   report({PlayerReport::Kind::Playing, 0, 60'000, {}}) + "else\n" +
                   report({PlayerReport::Kind::Silent, 0, 0, {}}) + "fi\nexec cat >/dev/null"));
        view.setFile(write("film.mp4", "a film"));
        view.togglePlaying();
        QTRY_VERIFY(view.isPlaying() || !view.message().isEmpty());
        QCOMPARE(view.isPlaying(), isPossible);
        QCOMPARE(view.message(),
                 isPossible ? QString() : QStringLiteral("There is nothing to hear this with"));
        qputenv("XDG_RUNTIME_DIR", before);
    }

    void stopsWhenItIsHiddenOrShowsAnotherFile()
    {
        MediaView view(&m_window, player("exec cat"));
        const FileUrl file = write("a.mp4", "x");
        view.setFile(file);
        view.togglePlaying();
        view.setFile(file);
        QVERIFY(!view.isOpen());
        view.togglePlaying();
        QVERIFY(view.isOpen());
        m_window.hide();
        QVERIFY(!view.isOpen());
        m_window.show();
    }

    void playsAFilm()
    {
        if (!Player().isInstalled()) { // built without a player
            MediaView view(&m_window);
            view.setFile(write("film.mp4", film()));
            QVERIFY(!view.isVisible());
            return;
        }
        MediaView view(&m_window);
        view.resize(400, 300);
        view.setFile(write("film.mp4", film()));
        view.togglePlaying();
        QTRY_VERIFY2_WITH_TIMEOUT(!view.frame().isNull(), qPrintable(view.message()), 20'000);
        QCOMPARE(view.frame().size(), QSize(64, 48));
        const QColor seen = view.grab().toImage().pixelColor(180, 120);
        QVERIFY2(seen.green() > seen.red() + 60, qPrintable(seen.name()));
        QVERIFY(view.isPlaying());
        view.togglePlaying();
        QTRY_VERIFY(!view.isPlaying());
        QVERIFY(view.isOpen());
    }

    void saysSoOfAFileThatIsNoFilm()
    {
        MediaView view(&m_window);
        view.setFile(write("broken.mp4", QByteArray("\0\1\2\3", 4)));
        if (!view.togglePlaying()) // built without a player
            return;
        QTRY_COMPARE_WITH_TIMEOUT(view.message(), QStringLiteral("This file cannot be played"),
                                  20'000);
    }
};

VANTOR_GUI_TEST_MAIN(MediaViewTest)
#include "tst_MediaView.moc"
