#pragma once

#include <QWidget>
#include <chrono>

/// How long a fade takes when nobody says otherwise.
inline constexpr std::chrono::milliseconds kDefaultFade{250};

/// The opacity of a widget with all that it holds, 0 to 1; 1 for one that was never told. A widget
/// at 0 is not seen but still takes input. Main thread only.
double alphaValue(const QWidget &widget);

/// By what a widget's opacity is made.
enum class AlphaDrawing {
    /// The widget is painted into a picture and the picture is drawn faintly. Right over any
    /// background; made for controls: at twice the scale a whole page costs more than a frame.
    Picture,
    /// The parent's plain background colour lies over the widget, as strong as the widget is faint.
    /// Costs little more than the widget's own painting, which goes on to be seen; exact where the
    /// parent's background is one colour. Made for pages.
    Veil,
};

/// Chooses the way; Picture unless told. The opacity stays as it is.
void setAlphaDrawing(QWidget &widget, AlphaDrawing drawing);

/// Sets the opacity at once; a running fade of the widget ends.
void setAlphaValue(QWidget &widget, double alpha);

/// Fades from what is on screen to the given opacity. A newer fade or setAlphaValue() replaces it.
void animateAlphaValue(QWidget &widget, double alpha,
                       std::chrono::milliseconds duration = kDefaultFade);

/// The duration as the desktop wants it: zero where the user switched animations off (the style
/// says so), else as given.
std::chrono::milliseconds animationDuration(const QWidget &widget,
                                            std::chrono::milliseconds duration);
