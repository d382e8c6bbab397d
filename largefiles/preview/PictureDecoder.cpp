#include "largefiles/preview/PictureDecoder.h"

#include "platform/base/Log.h"
#include "platform/confinement/ConfinedProcess.h"
#include "platform/confinement/ProcessConfinement.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <mutex>

namespace {

constexpr quint64 kMostMemory = 1ULL << 30;

/// Once is enough: it is so for each file.
void logMissingConfinement()
{
    static std::once_flag isLogged;
    std::call_once(isLogged, [] {
        qCWarning(logVantor, "No pictures: this system cannot keep the program that decodes them "
                             "away from your files.");
    });
}

} // namespace

QString PictureDecoder::besideTheProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-thumbnail");
}

DecodedPicture PictureDecoder::picture(int file, int page, QSize pixels,
                                       const std::stop_token &stop) const
{
    const QTemporaryDir place;
    if (!place.isValid() || stop.stop_requested())
        return {};
    ConfinedProcess process;
    process.program = program;
    process.arguments = {QString::number(pixels.width()), QString::number(pixels.height()),
                         QString::number(page)};
    process.workingFolder = place.path();
    process.patience = patience;
    process.input = file;
    process.outputFile = place.filePath(QStringLiteral("picture"));
    process.limits.memory = kMostMemory;
    process.limits.processorTime =
        std::chrono::ceil<std::chrono::seconds>(patience); // holds when the clock stands still, too
    QFile output(process.outputFile);
    const std::optional<int> end = runConfined(process, stop);
    if (end == kExitUnconfined)
        logMissingConfinement();
    if (end != 0 || !output.open(QIODevice::ReadOnly))
        return {};
    return readPicture(output, pixels);
}
