#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>
#include <chrono>
#include <functional>

/// What a slide shows.
struct SlidingSheet
{
    QWidget &overlay; ///< covers the window
    QWidget &frame;   ///< moves in the overlay, with the panel
    /// Dims the window behind. `shown` tells how far the sheet is out, 0 to 1: the further, the
    /// darker.
    std::function<void(QPainter &, double shown)> paintBackdrop;
};

/// How far the sheet is out at the start and at the end of the movement, 0 to 1.
struct SheetMovement
{
    double from;
    double to;
    std::chrono::milliseconds duration;
};

/// Lies over a sheet while it moves and shows the movement in pictures taken at its start: neither
/// the window nor the panel is painted again for every frame. Swallows the mouse. Main thread only.
class SheetSlide final : public QWidget
{
    Q_OBJECT

public:
    /// Covers the overlay, which owns it, at once.
    SheetSlide(SlidingSheet sheet, const SheetMovement &movement);

    double shown() const { return m_animation.currentValue().toDouble(); }

Q_SIGNALS:
    /// The movement is over; the receiver of this signal deletes the slide.
    void finished();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void start();
    void takeSheetPicture();

    SlidingSheet m_sheet;
    QPixmap m_behind;  ///< the window without the sheet
    QPixmap m_picture; ///< of the sheet
    QVariantAnimation m_animation{this};
};
