#include "bench/Commands.h"
#include "bench/ProcessMemory.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "slices/sizing/FolderSizing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <ctime>

namespace {

/// The location at a path, after its links are followed. A folder is its own anchor, because it may
/// be a mount; anything else is anchored at the folder that holds it.
std::optional<AnchoredPath> placeAt(const QString &path)
{
    const QFileInfo found(QFileInfo(path).canonicalFilePath());
    const QString held = found.isDir() ? found.filePath() : found.path();
    auto anchor = hostSystemCalls().openRoot(QFile::encodeName(held).constData());
    if (found.filePath().isEmpty() || !anchor)
        return std::nullopt;
    return AnchoredPath{std::make_shared<const FileDescriptor>(std::move(*anchor)),
                        found.isDir() ? QByteArray() : QFile::encodeName(found.fileName())};
}

bool measure(const QString &path, unsigned threads)
{
    const auto place = placeAt(path);
    if (!place) {
        std::fprintf(stderr, "vantor-bench: cannot open %s\n", qPrintable(path));
        return false;
    }
    QElapsedTimer timer;
    timer.start();
    const std::clock_t started = std::clock();
    const FolderSize size = measureFolder(hostSystemCalls(), *place, {}, threads);
    const double processor = static_cast<double>(std::clock() - started) / CLOCKS_PER_SEC;
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;

    const QJsonObject line{{QStringLiteral("path"), path},
                           {QStringLiteral("bytes"), size.bytes},
                           {QStringLiteral("items"), size.items},
                           {QStringLiteral("complete"), size.isComplete},
                           {QStringLiteral("seconds"), seconds},
                           {QStringLiteral("processor_seconds"), processor},
                           {QStringLiteral("peak_rss_bytes"), peakResidentBytes()}};
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    return true;
}

} // namespace

int runSizeCommand(const QStringList &arguments)
{
    QStringList paths = arguments;
    unsigned threads = 0;
    if (paths.value(0) == QStringLiteral("--threads")) {
        bool isNumber = false;
        threads = paths.value(1).toUInt(&isNumber);
        if (!isNumber) {
            std::fprintf(stderr, "vantor-bench: --threads takes a number\n");
            return kUsageError;
        }
        paths = paths.mid(2);
    }
    if (paths.isEmpty()) {
        std::fprintf(stderr, "vantor-bench: size takes at least one path\n");
        return kUsageError;
    }
    bool isDone = true;
    for (const QString &path : paths)
        isDone = measure(path, threads) && isDone;
    return isDone ? kDone : kFailed;
}
