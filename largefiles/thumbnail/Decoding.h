#pragma once

#include "largefiles/preview/DecodedPicture.h"

/// What the device holds, decoded and fitted into `pixels`; a small picture stays small, and of a
/// document it is the page of this number (from 0). No image for what is no picture, or one too
/// large. May take for ever, or crash: to be called in a process that is there for nothing else.
DecodedPicture decoded(QIODevice &device, int page, QSize pixels);
