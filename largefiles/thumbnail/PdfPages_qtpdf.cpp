#include "largefiles/thumbnail/PdfPages.h"

#include <QPainter>
#include <QPdfDocument>

namespace {

/// Where readers look for the format's mark, in bytes.
constexpr qint64 kHeaderWithin = 1024;

} // namespace

PdfPage pdfPage(QIODevice &document, int page, QSize size)
{
    if (!document.peek(kHeaderWithin).contains("%PDF-"))
        return {};
    QPdfDocument pdf;
    pdf.load(&document);
    if (pdf.status() != QPdfDocument::Status::Ready || page < 0 || page >= pdf.pageCount())
        return {{}, pdf.pageCount()};
    const QSize fitted =
        pdf.pagePointSize(page).scaled(size, Qt::KeepAspectRatio).toSize().expandedTo({1, 1});
    const QImage rendered = pdf.render(page, fitted);
    if (rendered.isNull())
        return {{}, pdf.pageCount()};
    // The page itself is transparent.
    QImage paper(rendered.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, rendered);
    return {paper, pdf.pageCount()};
}
