#pragma once

#include <QTimer>
#include <QWidget>
#include <chrono>
#include <optional>

/// Keeps the buttons of one sheet that destroy from presses that the user cannot have meant: a
/// press counts only when it begins after the sheet has stood still long enough to be read. Until
/// then the buttons look as always, and a press on them is not taken, now or later. Neither is the
/// second half of a double click, nor a key that repeats itself.
///
/// All this is about the mouse and the keyboard. A press that assistive tools ask for is click(),
/// which nobody does by accident, and counts at once.
///
/// A child of the sheet's overlay, which tells it when the sheet moves. Main thread only.
class DestructivePressGuard final : public QObject
{
    Q_OBJECT

public:
    DestructivePressGuard(QWidget &host, QWidget &overlay);

    /// The sheet begins to move.
    void sheetMoves();
    /// The sheet stands, or stands elsewhere: the user has to see it first.
    void sheetStands();

    bool takesPresses() const { return m_wait && m_wait->count() <= 0; }

    /// The sheet has stood still for so long, and the program has taken input all the while.
    void pass(std::chrono::milliseconds time);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool destroys(const QObject *watched) const;
    bool refusesMouse(QObject *watched, QEvent::Type type);
    bool refuses(bool isMeant);
    void hold();

    QWidget &m_host;
    QWidget &m_overlay;
    std::optional<std::chrono::milliseconds> m_wait; ///< nothing while the sheet moves
    QTimer m_timer{this};
    bool m_keyRepeats = false; ///< the last key; a shortcut does not say so itself
};
