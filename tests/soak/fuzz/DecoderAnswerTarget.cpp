#include "largefiles/preview/DecodedPicture.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"

#include <QBuffer>

namespace {

constexpr QSize kLargest{64, 48};
constexpr int kModes = 2;

enum class Mode { Bytes, Damaged };

QByteArray written(const DecodedPicture &picture)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writePicture(buffer, picture);
    return buffer.data();
}

DecodedPicture read(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return readPicture(buffer, kLargest);
}

const QByteArray &goodAnswer()
{
    static const QByteArray good = [] {
        QImage image(8, 6, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::darkCyan);
        return written({image, 3});
    }();
    return good;
}

} // namespace

/// The decoder may have been taken over: what it answers is a picture of no more than the size that
/// was asked for, all of which came from it, or none.
QByteArray findingInDecoderAnswer(const QByteArray &input)
{
    const ModedInput moded(input, kModes);
    const QByteArray answer =
        Mode(moded.mode) == Mode::Bytes ? moded.rest : edited(goodAnswer(), moded.rest);
    const DecodedPicture picture = read(answer);
    if (picture.pageCount < 0)
        return "fewer than no pages";
    if (picture.image.isNull())
        return answer == goodAnswer() ? "the picture is not read" : "";
    if (picture.image.width() > kLargest.width() || picture.image.height() > kLargest.height())
        return "a larger picture than asked for";
    if (!answer.startsWith(written(picture)))
        return "another picture than was sent";
    return {};
}
