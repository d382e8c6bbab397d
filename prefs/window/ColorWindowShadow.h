#pragma once

#include <QMargins>

class QWidget;

/// The soft shadow that a borderless window draws around its frame, where the desktop allows. The
/// window gives it room within itself and tells the desktop how much of it is shadow. A window that
/// fills the screen has none.
///
/// Owned by the window. Main thread.
class ColorWindowShadow final
{
public:
    /// The window must outlive it.
    explicit ColorWindowShadow(QWidget &window);

    bool isWanted() const { return m_isWanted; }
    void setIsWanted(bool isWanted) { m_isWanted = isWanted; }

    /// What it takes of the window now.
    QMargins margins() const;

    /// All sizes of the window that were set until now are the frame's; from now on they are the
    /// window's, with the shadow around the frame.
    void makeRoom();
    /// Tells the desktop of it, if it is wanted.
    void announce() const;
    void paint() const;

private:
    QWidget &m_window;
    bool m_isWanted;
};
