#include "bench/BareWalk.h"
#include "bench/Commands.h"
#include "bench/ProcessMemory.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <ctime>

namespace {

int walk(const QString &path, unsigned threads)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(path).canonicalFilePath());
    if (folder.isEmpty()) {
        std::fprintf(stderr, "vantor-bench: cannot open %s\n", qPrintable(path));
        return kFailed;
    }
    QElapsedTimer timer;
    timer.start();
    const std::clock_t started = std::clock();
    const BareWalkResult found = walkBarely(folder.constData(), threads);
    const double processor = static_cast<double>(std::clock() - started) / CLOCKS_PER_SEC;
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;

    const QJsonObject line{{QStringLiteral("path"), path},
                           {QStringLiteral("bytes"), static_cast<qint64>(found.bytes)},
                           {QStringLiteral("items"), static_cast<qint64>(found.items)},
                           {QStringLiteral("complete"), found.isComplete},
                           {QStringLiteral("seconds"), seconds},
                           {QStringLiteral("processor_seconds"), processor},
                           {QStringLiteral("peak_rss_bytes"), peakResidentBytes()}};
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    return kDone;
}

} // namespace

int runWalkCommand(const QStringList &arguments)
{
    constexpr unsigned kMostThreads = 64;
    QStringList folders = arguments;
    unsigned threads = 1;
    if (folders.value(0) == QStringLiteral("--threads")) {
        threads = folders.value(1).toUInt();
        folders = folders.mid(2);
    }
    if (folders.size() != 1 || threads < 1 || threads > kMostThreads) {
        std::fprintf(stderr, "vantor-bench: walk takes one folder, and 1 to 64 threads\n");
        return kUsageError;
    }
    return walk(folders.first(), threads);
}
