#pragma once

#include "platform/files/FileUrl.h"

#include <QDateTime>
#include <QImage>

// The thumbnail cache that the programs of the desktop share ($XDG_CACHE_HOME/thumbnails). Any
// thread but the main one.

/// The longest side, in pixels, of the pictures in the cache's size for `side`: that is the
/// smallest size that is not smaller than `side`, or the largest size when all are smaller.
int cachedSide(int side);

/// The picture of a file that some program has put into the cache, in the size for `side` or else
/// in the next larger size that there is. Null when no picture was made of this file as last
/// modified at that time.
QImage cachedThumbnail(const FileUrl &file, const QDateTime &modified, int side);

/// The largest of the smaller pictures, for when there is nothing better.
QImage smallerCachedThumbnail(const FileUrl &file, const QDateTime &modified, int side);

/// Keeps a picture of the file for all programs, among those of cachedSide(side), which it fits
/// into. Not of a file that was modified just now: the cache knows times by whole seconds, and
/// would not see the next change. A failure to write does not matter.
void cacheThumbnail(const FileUrl &file, const QDateTime &modified, QImage picture, int side);
