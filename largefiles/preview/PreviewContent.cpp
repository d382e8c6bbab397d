#include "largefiles/preview/PreviewContent.h"

#include <QMimeDatabase>
#include <QStringDecoder>
#include <optional>

namespace {

constexpr int kIconSide = 160;

/// The beginning of a file as text; nothing when it does not look like one.
std::optional<QString> textIn(GuardedFile &file)
{
    const QByteArray bytes = file.read(kPreviewedText);
    if (bytes.isEmpty() || bytes.contains('\0'))
        return std::nullopt;
    // Stateful: the last letter may be cut in two.
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

PreviewContent::Kind lookInto(GuardedFile &file, const PreviewRequest &request,
                              PreviewContent &content)
{
    DecodedPicture picture = file.picture(request.page, request.size.pixels());
    content.pageCount = picture.pageCount;
    content.image = std::move(picture.image);
    if (!content.image.isNull() && !file.hasGivenUp()) {
        content.image.setDevicePixelRatio(request.size.scale);
        return PreviewContent::Kind::Picture;
    }
    content.image = {};
    if (const auto text = file.seek(0) ? textIn(file) : std::nullopt) {
        content.text = *text;
        content.isCut = content.size > kPreviewedText;
        return PreviewContent::Kind::Text;
    }
    return PreviewContent::Kind::Facts;
}

/// What stands for a file that cannot be shown itself: a scene of a film, or the icon.
QImage emblemOf(const FileReading &reading, const PreviewRequest &request, bool mayHavePicture,
                const std::stop_token &stop)
{
    QImage image;
    if (mayHavePicture)
        image = pictureOfFile(reading, request.file, request.size.pixels(), stop);
    if (image.isNull())
        return iconOfFile(request.file, {QSize(kIconSide, kIconSide), request.size.scale});
    image.setDevicePixelRatio(request.size.scale);
    return image;
}

} // namespace

PreviewContent readPreview(const FileReading &reading, const PreviewRequest &request,
                           const std::stop_token &stop)
{
    const AccessScope scope(reading.access);
    PreviewContent content;
    const QString name = QString::fromUtf8(request.file.lastPathComponent());
    content.typeName =
        QMimeDatabase().mimeTypeForFile(name, QMimeDatabase::MatchExtension).comment();
    bool isReadable = false;
    if (const auto file = GuardedFile::open(reading, request.file, stop)) {
        content.size = file->size();
        content.modified = file->modified();
        content.kind = lookInto(*file, request, content);
        isReadable = !file->hasGivenUp();
    }
    if (content.image.isNull() && content.kind != PreviewContent::Kind::Text)
        content.image = emblemOf(reading, request, isReadable, stop);
    return content;
}
