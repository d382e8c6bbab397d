#pragma once

#include "largefiles/preview/PlayerReport.h"
#include "platform/confinement/Sandbox.h"
#include "platform/files/FileUrl.h"
#include "platform/threads/BackgroundQueue.h"

#include <QProcess>
#include <memory>

/// What plays, and where. A value.
struct Player
{
    /// vantor-player, in the folder of this program. The file does not exist where nothing can be
    /// played.
    static QString besideTheProgram();

    bool isInstalled() const;

    QString program = besideTheProgram();
    Sandbox sandbox = {};
};

/// One film or sound being played by vantor-player, a process of its own, so that a file made to
/// crash or to hang a codec ends that process and nothing else. The player runs in a sandbox with
/// the one file, so that a file made to take it over finds nothing there but the sound server.
/// Plays from the start; playing ends with this object. Main thread only.
class PlayerProcess final : public QObject
{
    Q_OBJECT

public:
    PlayerProcess(const Player &player, const FileUrl &file, QSize frameSize, QObject *parent);
    ~PlayerProcess() override;

    void play() { say("play\n"); }
    void pause() { say("pause\n"); }
    void seek(qint64 milliseconds);

Q_SIGNALS:
    /// After Silent or Failed no more comes; the process is ending or has ended.
    void reported(const PlayerReport &report);

private:
    struct Opened;

    void start(const Player &player, const FileUrl &file, QSize frameSize, const Opened &opened);
    void say(const QByteArray &command);
    void read();
    void fail();

    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>();
    bool m_isOver = false;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_opening;
};
