#pragma once

#include "largefiles/preview/DecodedPicture.h"

#include <QString>
#include <chrono>
#include <stop_token>

/// Decodes pictures and documents in a process of its own, so that a file made to crash or to hang
/// a decoder ends that process and nothing else. One made to take it over finds nothing there but
/// itself: see Confinement::Decoder. A value; made on the main thread.
struct PictureDecoder
{
    /// vantor-thumbnail, in the folder of this program.
    static QString besideTheProgram();

    QString program = besideTheProgram();
    std::chrono::milliseconds patience = std::chrono::seconds(8);

    /// A picture of what the open file holds, fitted into `pixels`. For a document it shows the
    /// page of this number, from 0. Nothing when there is no picture, when the decoder takes longer
    /// than its patience or more memory than it is given, when it is stopped, when it is not
    /// installed, and where the system cannot confine it, which is logged once. The file's position
    /// is undefined after this. Any thread but the main one.
    DecodedPicture picture(int file, int page, QSize pixels, const std::stop_token &stop) const;
};
