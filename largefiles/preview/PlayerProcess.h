#pragma once

#include "largefiles/preview/PlayerReport.h"

#include <QProcess>
#include <memory>

/// One film or sound being played by vantor-player, a process of its own, so that a file made to
/// crash or to hang a codec ends that process and nothing else. Plays from the start; playing ends
/// with this object. Main thread only.
class PlayerProcess final : public QObject
{
    Q_OBJECT

public:
    /// vantor-player, in the folder of this program. The file does not exist where nothing can be
    /// played.
    static QString besideTheProgram();

    PlayerProcess(const QString &program, const QString &path, QSize frameSize, QObject *parent);
    ~PlayerProcess() override;

    void play() { m_process->write("play\n"); }
    void pause() { m_process->write("pause\n"); }
    void seek(qint64 milliseconds);

Q_SIGNALS:
    /// After Silent or Failed no more comes; the process is ending or has ended.
    void reported(const PlayerReport &report);

private:
    void read();
    void fail();

    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>();
    bool m_isOver = false;
};
