#pragma once

#include "largefiles/preview/Thumbnail.h"

#include <QDateTime>
#include <QString>

/// What is wanted of a file.
struct PreviewRequest
{
    FileUrl file;
    PictureSize size; ///< room for a picture
    int page = 0;     ///< of a document, from 0
};

/// What a preview shows of one file. A value.
struct PreviewContent
{
    enum class Kind {
        Picture, ///< `image` is what is in the file
        Text,    ///< `text` is how the file begins
        Facts,   ///< `image` is an icon
        Missing, ///< the file cannot be read; `image` is an icon
    };

    Kind kind = Kind::Missing;
    QImage image;
    QString text;
    bool isCut = false; ///< the file has more text
    int pageCount = 0;  ///< of a document
    QString typeName;   ///< "Matroska video"
    qint64 size = 0;    ///< bytes
    QDateTime modified;
};

/// How much of a text is shown, in bytes.
inline constexpr qint64 kPreviewedText = 64LL * 1024;

/// Looks into the file, within limits (see imageWithPreviewOfFileAtPath()). Any thread but the main
/// one.
PreviewContent readPreview(const FileReading &reading, const PreviewRequest &request,
                           const std::stop_token &stop);
