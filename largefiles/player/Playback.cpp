#include "largefiles/player/Playback.h"

#include <QAudioDevice>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMediaDevices>
#include <QUrl>

Playback::Playback(QIODevice &reports, QSize frameSize) : m_reports(reports), m_frameSize(frameSize)
{
    // A backend may fall over an output that leads nowhere.
    if (!QMediaDevices::defaultAudioOutput().isNull())
        m_player.setAudioOutput(&m_output);
    m_player.setVideoSink(&m_sink);
    connect(&m_player, &QMediaPlayer::mediaStatusChanged, this, &Playback::takeStatus);
    connect(&m_player, &QMediaPlayer::playbackStateChanged, this, &Playback::takeState);
    connect(&m_player, &QMediaPlayer::positionChanged, this,
            [this] { report(PlayerReport::Kind::Position); });
    connect(&m_player, &QMediaPlayer::errorOccurred, this,
            [this] { giveUp(PlayerReport::Kind::Failed); });
    connect(&m_sink, &QVideoSink::videoFrameChanged, this, &Playback::takeFrame);
}

void Playback::start(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile() || file.isSymLink())
        return giveUp(PlayerReport::Kind::Failed);
    m_player.setSource(QUrl::fromLocalFile(path));
}

void Playback::takeStatus(QMediaPlayer::MediaStatus status)
{
    const bool isLoaded =
        status == QMediaPlayer::LoadedMedia || status == QMediaPlayer::BufferedMedia;
    if (status == QMediaPlayer::InvalidMedia || (isLoaded && m_player.error()))
        return giveUp(PlayerReport::Kind::Failed);
    if (isLoaded && !m_hasStarted) {
        m_hasStarted = true;
        if (!m_player.hasVideo() && !m_player.audioOutput())
            return giveUp(PlayerReport::Kind::Silent);
        m_player.play();
    }
    m_hasEnded = status == QMediaPlayer::EndOfMedia;
    if (m_hasEnded)
        report(PlayerReport::Kind::Ended);
}

void Playback::takeState(QMediaPlayer::PlaybackState state)
{
    if (state == QMediaPlayer::PlayingState)
        report(PlayerReport::Kind::Playing);
    else if (state == QMediaPlayer::PausedState)
        report(PlayerReport::Kind::Paused);
}

/// Drops the frames that came while one was being written.
void Playback::takeFrame()
{
    const QVideoFrame frame = m_sink.videoFrame();
    if (frame == m_frame)
        return;
    m_frame = frame;
    QImage image = frame.toImage();
    if (image.isNull())
        return;
    if (image.width() > m_frameSize.width() || image.height() > m_frameSize.height())
        image = image.scaled(m_frameSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    report(PlayerReport::Kind::Frame, image);
}

void Playback::obey(const QByteArray &command)
{
    if (command == "play") {
        if (m_hasEnded)
            m_player.setPosition(0);
        m_player.play();
    } else if (command == "pause") {
        m_player.pause();
    } else if (command.startsWith("seek ")) {
        m_player.setPosition(qMax(0LL, command.mid(5).toLongLong()));
    }
}

void Playback::report(PlayerReport::Kind kind, const QImage &frame)
{
    const PlayerReport report{kind, qMax(0LL, m_player.position()), qMax(0LL, m_player.duration()),
                              frame};
    if (!writeReport(m_reports, report))
        QCoreApplication::quit();
}

void Playback::giveUp(PlayerReport::Kind kind)
{
    m_hasStarted = true;
    report(kind);
    QCoreApplication::quit();
}
