#pragma once

#include "largefiles/preview/PictureDecoder.h"
#include "platform/confinement/Sandbox.h"
#include "platform/files/FileUrl.h"

#include <QImage>
#include <QStringList>
#include <chrono>
#include <optional>
#include <stop_token>

/// A program of the desktop that makes thumbnails, as its ".thumbnailer" entry describes it. A
/// value.
struct Thumbnailer
{
    QStringList command; ///< with the entry's field codes: %u %i %o %s
    QStringList mimeTypes;
};

/// Reads the entry. Nothing when it is not a valid entry, or when its program is not installed. Any
/// thread but the main one.
std::optional<Thumbnailer> readThumbnailer(const QString &entry);

/// The installed program for files of this MIME type, by one of its names; the user's own entries
/// come before the system's. Any thread but the main one.
std::optional<Thumbnailer> thumbnailerFor(const QString &mimeType);

/// The file that is shown.
struct ThumbnailSource
{
    FileUrl file;
    int descriptor = -1; ///< that same file, open
};

/// What stands between such a program and the user's files.
struct ThumbnailerLimits
{
    std::chrono::milliseconds patience = std::chrono::seconds(8);
    Sandbox sandbox = {};
    PictureDecoder decoder = {}; ///< of what it leaves
};

/// Lets the program make a picture of the file, of at most `side` pixels, in a sandbox where it
/// finds nothing but this file. Null when it fails, takes longer than its limit, or is stopped. It
/// has been ended then, with all that it started. Its use of the machine is limited too. Where
/// there is no sandbox the program is not run. Any thread but the main one.
QImage pictureMadeBy(const Thumbnailer &thumbnailer, const ThumbnailSource &source, int side,
                     const std::stop_token &stop, const ThumbnailerLimits &limits = {});
