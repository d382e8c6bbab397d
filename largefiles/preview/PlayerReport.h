#pragma once

#include <QImage>
#include <optional>

class QIODevice;

/// What the player's process reports about the one file that it plays. A value.
struct PlayerReport
{
    enum class Kind : quint8 {
        Playing,
        Paused,
        Ended,    ///< played to its end, and stands there
        Position, ///< where it is
        Frame,    ///< `frame` is the one to show now
        Silent,   ///< there is only sound, and nothing to hear it with: the last report
        Failed,   ///< cannot be played: the last report
    };

    Kind kind = Kind::Failed;
    qint64 position = 0; ///< milliseconds
    qint64 duration = 0; ///< milliseconds; 0 while unknown
    QImage frame;        ///< of Format_RGB32
};

/// The longest side of a frame, in pixels.
inline constexpr int kLargestFrameSide = 8192;

bool writeReport(QIODevice &device, const PlayerReport &report);

/// The result of reading a report. The file that is played may control the process that wrote the
/// report, so nothing is believed without a check.
struct ReadReport
{
    enum class State {
        Whole,
        Incomplete, ///< nothing was taken; more has to come
        Broken,     ///< nothing sensible will come any more
    };

    State state = State::Incomplete;
    PlayerReport report;
};
ReadReport readReport(QIODevice &device);
