#include "largefiles/preview/MediaView.h"

#include "largefiles/preview/MediaControls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QBuffer>
#include <QFileInfo>
#include <QSignalSpy>

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
    QString player(const QByteArray &line)
    {
        const FileUrl url = write("player", "#!/bin/sh\n" + line + '\n');
        const QString path = QFile::decodeName(url.path());
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    /// What such a player says in this report.
    QByteArray report(const QByteArray &name, const PlayerReport &report)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        writeReport(buffer, report);
        return "cat '" + write(name, buffer.data()).path() + "'\n";
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
        MediaView view(&m_window, QStringLiteral("/nowhere/vantor-player"));
        view.setFile(write("a.mp4", "x"));
        QVERIFY(!view.isVisible());
        QVERIFY(!view.togglePlaying());
    }

    void opensNothingBeforeThePress()
    {
        const QByteArray trace = m_folder.path("started");
        MediaView view(&m_window, player("touch '" + trace + "'"));
        QSignalSpy changes(&view, &MediaView::changed);
        view.setFile(write("a.mp4", "x"));
        QVERIFY(!view.isOpen());
        QVERIFY(!view.findChild<PositionSlider *>()->isVisible());
        QVERIFY(!QFileInfo::exists(QFile::decodeName(trace)));
        QTest::mouseClick(button(view), Qt::LeftButton);
        QVERIFY(view.isOpen());
        QVERIFY(changes.wait());
        QVERIFY(QFileInfo::exists(QFile::decodeName(trace)));
    }

    void saysSoWhenThePlayerFails_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("ends without a word") << QByteArray("exit 0");
        QTest::newRow("crashes") << QByteArray("kill -SEGV $$");
        QTest::newRow("talks nonsense") << QByteArray("yes nonsense");
        QTest::newRow("says that it cannot") << report("failed", {});
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
        MediaView view(&m_window, player(report("silent", {PlayerReport::Kind::Silent, 0, 0, {}})));
        view.setFile(write("a.wav", "x"));
        view.togglePlaying();
        QTRY_COMPARE(view.message(), QStringLiteral("There is nothing to hear this with"));
    }

    void tellsWhereItIs()
    {
        MediaView view(&m_window,
                       player(report("at", {PlayerReport::Kind::Playing, 65'000, 7'200'000, {}}) +
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
        const QByteArray heard = m_folder.path("heard");
        MediaView view(&m_window, player(report("at", {PlayerReport::Kind::Playing, 0, 1000, {}}) +
                                         "exec cat >'" + heard + "'"));
        view.resize(400, 300);
        view.setFile(write("a.mp4", "x"));
        view.togglePlaying();
        QTRY_VERIFY(view.isPlaying());
        view.togglePlaying();
        auto *const slider = view.findChild<PositionSlider *>();
        QTest::mouseClick(slider, Qt::LeftButton, {}, slider->rect().topRight());
        QFile file(QFile::decodeName(heard));
        QTRY_VERIFY(file.size() == qint64(sizeof "pause\nseek 1000\n") - 1);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("pause\nseek 1000\n"));
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
        if (!QFileInfo::exists(PlayerProcess::besideTheProgram())) { // built without a player
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
