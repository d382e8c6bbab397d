#pragma once

#include <QWidget>
#include <chrono>

/// How long a fade takes unless the caller gives a duration.
inline constexpr std::chrono::milliseconds kDefaultFade{250};

/// The opacity of a widget with all that it holds, 0 to 1; 1 where it was never set. A widget at 0
/// is invisible but still takes input. Main thread only.
double alphaValue(const QWidget &widget);

/// How a widget's opacity is drawn.
enum class AlphaDrawing {
    /// The widget is painted into a picture and the picture is drawn faintly. This is right over
    /// any background. It is made for controls: at twice the scale a whole page would take longer
    /// than a frame.
    Picture,
    /// The parent's plain background colour lies over the widget, as strong as the widget is faint.
    /// This costs little more than the widget's own painting, which stays visible below. It is
    /// exact where the parent's background is one colour. Made for pages.
    Veil,
};

/// Sets how the opacity is drawn; Picture unless set. The opacity stays as it is.
void setAlphaDrawing(QWidget &widget, AlphaDrawing drawing);

/// Sets the opacity at once; a running fade of the widget ends.
void setAlphaValue(QWidget &widget, double alpha);

/// Fades from what is on screen to the given opacity. A newer fade or setAlphaValue() replaces it.
void animateAlphaValue(QWidget &widget, double alpha,
                       std::chrono::milliseconds duration = kDefaultFade);

/// The duration as the desktop wants it: zero where the user switched animations off (the style
/// tells it), otherwise as given.
std::chrono::milliseconds animationDuration(const QWidget &widget,
                                            std::chrono::milliseconds duration);
