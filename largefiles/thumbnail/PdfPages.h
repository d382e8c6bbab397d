#pragma once

#include <QIODevice>
#include <QImage>

/// A page of a document, on white paper.
struct PdfPage
{
    QImage image;      ///< null when there is no such page, or it cannot be shown
    int pageCount = 0; ///< of the document; 0 when it is none
};

/// The page of this number (from 0), fitted into `size` pixels. Nothing where the program was built
/// without the means to show documents. Any thread.
PdfPage pdfPage(QIODevice &document, int page, QSize size);
