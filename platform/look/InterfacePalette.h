#pragma once

#include <QPalette>

/// The colours of every window, for QApplication::setPalette(). It is light on a dark desktop as
/// well, because the greys of the texts and the colours of the slices are made for a light
/// background. Highlight is the program's accent colour; views ask their palette for it.
QPalette interfacePalette();
