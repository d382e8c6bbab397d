#pragma once

#include "largefiles/preview/PlayerProcess.h"
#include "platform/files/FileUrl.h"

#include <QWidget>
#include <memory>

class PlayButton;
class PositionSlider;
class QLabel;

/// Lets the user play a film or a sound over the picture or icon that stands for it. Shows a play
/// button and, once that was pressed, the frames, the position and the duration. Opens nothing
/// before that, so that a damaged file does not matter to a user who merely looks. Hidden for all
/// other files, and where there is no player or no sandbox for it. Stops when it is hidden. Takes
/// no focus. Main thread only.
class MediaView final : public QWidget
{
    Q_OBJECT

public:
    explicit MediaView(QWidget *parent, Player player = {});
    ~MediaView() override;

    /// Stops. Appears for this file if its name says that it is a film or a sound.
    void setFile(const FileUrl &file);
    /// Stops and hides.
    void clear();
    /// Starts or pauses. Returns whether there was anything to start or to pause. A file that is
    /// not playing yet is stopped.
    bool togglePlaying();

    /// Whether the file was opened. True also while it pauses.
    bool isOpen() const { return m_process != nullptr; }
    bool isPlaying() const { return m_isPlaying; }
    /// The frame that is shown; null for none.
    const QImage &frame() const { return m_frame; }
    /// Why it cannot be played; empty while it can.
    QString message() const;
    /// "0:07 / 1:30"; empty while it is not known.
    QString time() const;

Q_SIGNALS:
    /// A value that the functions return has changed by itself.
    void changed();

protected:
    bool event(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void setUpControls();
    void open();
    void stop();
    void take(const PlayerReport &report);
    void fail(const QString &message);
    void showPosition(qint64 position, qint64 duration);
    void refresh();
    void placeControls();
    QRect frameRoom() const;

    Player m_player;
    FileUrl m_file;
    PlayButton *m_button;
    PositionSlider *m_slider;
    QLabel *m_time;
    QLabel *m_message;
    std::unique_ptr<PlayerProcess> m_process;
    QImage m_frame;
    bool m_isPlaying = false;
    bool m_isOpening = false; ///< nothing is seen or heard yet
};
