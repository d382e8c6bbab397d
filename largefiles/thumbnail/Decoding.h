#pragma once

#include "largefiles/preview/DecodedPicture.h"

/// What the device holds, decoded and fitted into `pixels`. A small picture stays small. A document
/// gives the page of this number (from 0). There is no image when the device holds no picture, or
/// one that is too large. May take for ever, or crash: call it only in a process that does nothing
/// else.
DecodedPicture decoded(QIODevice &device, int page, QSize pixels);
