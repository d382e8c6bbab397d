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

    /// The room that it takes of the window now.
    QMargins margins() const;

    /// The window's sizes that were set until now are the frame's. From now on they are the
    /// window's: they include the shadow around the frame.
    void makeRoom();
    /// Tells the desktop about the shadow, if a shadow is wanted.
    void announce() const;
    void paint() const;

private:
    QWidget &m_window;
    bool m_isWanted;
};
