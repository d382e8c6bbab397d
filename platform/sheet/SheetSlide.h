#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>
#include <chrono>

class SheetOverlay;

/// Lies over a sheet while it moves and shows the movement in pictures taken at its start: neither
/// the window nor the panel is painted again for every frame. Swallows the mouse. Main thread only.
class SheetSlide final : public QWidget
{
    Q_OBJECT

public:
    /// Covers the overlay at once and moves the sheet from one share of it being out to another (0
    /// to 1).
    SheetSlide(SheetOverlay &overlay, double from, double to, std::chrono::milliseconds duration);

    double shown() const { return m_animation.currentValue().toDouble(); }

Q_SIGNALS:
    /// The movement is over; whoever hears this deletes the slide.
    void finished();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void start();
    void takeSheetPicture();

    SheetOverlay &m_overlay;
    QPixmap m_behind; ///< the window without the sheet
    QPixmap m_sheet;
    QVariantAnimation m_animation{this};
};
