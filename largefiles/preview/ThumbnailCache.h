#pragma once

#include "platform/files/FileUrl.h"

#include <QDateTime>
#include <QImage>

// The thumbnail cache that the programs of the desktop share ($XDG_CACHE_HOME/thumbnails). Any
// thread but the main one.

/// The largest picture, in pixels a side, of the smallest kept size that is not smaller than
/// `side`; of the largest when all are.
int cachedSide(int side);

/// The picture of a file that some program has put into the cache, in the size for `side` or else
/// the next larger one that there is; null where there is none that was made of this file as last
/// modified at that time.
QImage cachedThumbnail(const FileUrl &file, const QDateTime &modified, int side);

/// The largest of the smaller ones, for where nothing better can be had.
QImage smallerCachedThumbnail(const FileUrl &file, const QDateTime &modified, int side);

/// Keeps a picture of the file for all programs, among those of cachedSide(side), which it fits
/// into. Not of a file that was modified just now: the cache knows times by whole seconds, and
/// would not see the next change. Failing to write is no matter.
void cacheThumbnail(const FileUrl &file, const QDateTime &modified, QImage picture, int side);
