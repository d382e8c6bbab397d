#pragma once

#include <QFont>

/// The weights of the interface's typeface, with the names that its designers use in their tables.
enum class Typeface { UltraLight, Thin, Light, Regular, Medium };

/// The interface's font (Inter, from the program's own resources; its display cuts at large sizes)
/// at a size in points of the screen. Loads the fonts on first use. Main thread only.
QFont interfaceFont(Typeface face, int size);
