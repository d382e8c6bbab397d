#include "largefiles/thumbnail/Decoding.h"
#include "platform/confinement/ProcessConfinement.h"

#include <QCoreApplication>
#include <QFile>
#include <QImageReader>

// vantor-thumbnail <width> <height> <page>: reads the file that is its standard input, and writes a
// picture of it that fits into so many pixels to its standard output, as writePicture() does. For a
// document it writes the page of this number, from 0. Before it reads the first byte it gives up
// all but its input and output (Confinement::Decoder). The program that starts it limits the time
// and memory it takes. Exits with 0 when there was an answer, also when the answer is that there is
// no picture; with 1 when the answer cannot be written, with 2 for bad arguments, and with
// kExitUnconfined when the system cannot confine it.

namespace {

constexpr int kDone = 0;
constexpr int kNotWritten = 1;
constexpr int kBadArguments = 2;
constexpr int kLargestSide = 16384;
constexpr int kInput = 0;
constexpr int kOutput = 1;

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // finds the decoders
    const QStringList arguments = QCoreApplication::arguments();
    const QSize pixels(arguments.value(1).toInt(), arguments.value(2).toInt());
    QFile input;
    QFile output;
    if (pixels.isEmpty() || pixels.width() > kLargestSide || pixels.height() > kLargestSide ||
        !input.open(kInput, QIODevice::ReadOnly) ||
        !input.seek(0) || // the other process may have read from it
        !output.open(kOutput, QIODevice::WriteOnly))
        return kBadArguments;
    QImageReader::supportedImageFormats(); // loads the decoders, which no one can do later on
    if (!confineThisProcess(Confinement::Decoder))
        return kExitUnconfined;
    const DecodedPicture picture = decoded(input, arguments.value(3).toInt(), pixels);
    return writePicture(output, picture) && output.flush() ? kDone : kNotWritten;
}
