#pragma once

#include "largefiles/preview/PlayerReport.h"

#include <QAudioOutput>
#include <QFile>
#include <QMediaPlayer>
#include <QVideoFrame>
#include <QVideoSink>

/// Plays one file from its beginning and reports to a device; quits the application when nothing
/// more will come. Main thread only.
class Playback final : public QObject
{
    Q_OBJECT

public:
    /// `frameSize` is the room for frames, in pixels; `reports` outlives this.
    Playback(QIODevice &reports, QSize frameSize);

    void start(const QString &path);
    /// "play", "pause", or "seek <milliseconds>". Anything else does nothing.
    void obey(const QByteArray &command);

private:
    void takeStatus(QMediaPlayer::MediaStatus status);
    void takeState(QMediaPlayer::PlaybackState state);
    void takeFrame();
    void report(PlayerReport::Kind kind, const QImage &frame = {});
    void giveUp(PlayerReport::Kind kind);

    QIODevice &m_reports;
    QSize m_frameSize;
    QAudioOutput m_output;
    QVideoSink m_sink;
    QMediaPlayer m_player;
    QVideoFrame m_frame;
    bool m_hasStarted = false;
    bool m_hasEnded = false;
};
