#pragma once

#include <QPalette>

/// The colours of every window, for QApplication::setPalette(). Light on a dark desktop as well:
/// the greys of the texts and the colours of the slices are made for a light ground. Highlight is
/// the program's accent; views ask their palette for it.
QPalette interfacePalette();
