#pragma once

#include "widgets/AttributedText.h"

/// The size text of the start button: number large, unit smaller and lighter, " B" for bytes.
AttributedText startButtonSizeText(const QString &sizeText);

/// The start button's words while no slice is on.
AttributedText selectSlicesText();
