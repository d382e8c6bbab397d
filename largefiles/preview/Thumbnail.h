#pragma once

#include "largefiles/preview/GuardedFile.h"

#include <QImage>

/// How a thumbnail is drawn.
enum class ThumbnailMode {
    Plain, ///< the picture alone
    Icon,  ///< as a print: round corners and a thin edge
};

/// How large a picture is wanted.
struct PictureSize
{
    QSize points;
    qreal scale = 1; ///< pixels a point, of the screen it is for

    QSize pixels() const { return points * scale; }
};

/// A picture of what is in the file, fitted into the size. It is the picture that the desktop keeps
/// in its thumbnail cache, or one of a photograph or a document, or one that a thumbnail program of
/// the desktop makes and that is kept in the cache for the next time. Without any of these it is
/// the icon of the file's kind, in a square whose side is the smaller of width and height. Null for
/// no URL, for no size, and after a stop. Bears the scale. Damaged, huge and odd files cost a few
/// seconds at worst. Any thread but the main one.
QImage imageWithPreviewOfFileAtPath(const FileReading &reading, const FileUrl &file,
                                    PictureSize size, ThumbnailMode mode,
                                    const std::stop_token &stop = {});

/// The same without the icon: null for a file without a picture.
QImage pictureOfFile(const FileReading &reading, const FileUrl &file, QSize pixels,
                     const std::stop_token &stop);

/// The icon of the file's kind, which the file's name alone tells; its side is the size's smaller
/// side.
QImage iconOfFile(const FileUrl &file, PictureSize size);
