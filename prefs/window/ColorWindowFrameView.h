#pragma once

#include <QPainterPath>
#include <QWidget>

/// Whether a frame's corners are round; a window that fills the screen has none.
enum class FrameCorners { Round, Square };

/// The real content of a ColorWindow: a nearly opaque white rounded rectangle on nothing, which
/// holds the window's buttons, its title and its content view. Main thread.
class ColorWindowFrameView final : public QWidget
{
    Q_OBJECT

public:
    explicit ColorWindowFrameView(QWidget *parent = nullptr);

    void setCorners(FrameCorners corners);

    /// Where the desktop does not blend windows, the white is fully opaque.
    void setIsBlended(bool isBlended);

    /// The white shape, in the view's coordinates.
    QPainterPath shape() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    FrameCorners m_corners = FrameCorners::Round;
    bool m_isBlended = true;
};
