#pragma once

#include <QIODevice>
#include <QImage>

/// What a decoder made of a file.
struct DecodedPicture
{
    QImage image;      ///< null when there is none
    int pageCount = 0; ///< of a document; 0 when it is none
};

/// Writes it as plain pixels, so that the other process can read it without decoding anything.
/// Returns false when the device does not take it.
bool writePicture(QIODevice &device, const DecodedPicture &picture);

/// Reads what writePicture() wrote. The writer cannot be trusted, so this gives nothing when the
/// data is damaged, cut or larger than `largest` pixels.
DecodedPicture readPicture(QIODevice &device, QSize largest);
