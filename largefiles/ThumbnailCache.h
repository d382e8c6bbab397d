#pragma once

#include "platform/FileUrl.h"

#include <QDateTime>
#include <QImage>

/// The picture of a file that some program of the desktop has put into the shared thumbnail cache
/// ($XDG_CACHE_HOME/thumbnails), in the smallest kept size that is not smaller than `side` pixels,
/// or else the largest; null where there is none that was made of this file as last modified at
/// that time. Reads only. Any thread but the main one.
QImage cachedThumbnail(const FileUrl &file, const QDateTime &modified, int side);
