#include "bench/Commands.h"
#include "bench/FolderAccess.h"
#include "bench/ProcessMemory.h"
#include "largefiles/search/LargeFileSearch.h"
#include "platform/base/ByteCount.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "slices/home/HomeSurvey.h"

#include <QByteArrayList>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <ctime>

namespace {

struct Order
{
    QStringList homes;
    QStringList excluded;
    unsigned threads = 0;
    unsigned exclusions = 0;
    bool wantsList = false;
    bool isUnderstood = true;
};

Order readOrder(const QStringList &arguments)
{
    Order order;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--list"))
            order.wantsList = true;
        else if (arguments[i] == QStringLiteral("--threads") && i + 1 < arguments.size())
            order.threads = arguments[++i].toUInt(&order.isUnderstood);
        else if (arguments[i] == QStringLiteral("--exclusions") && i + 1 < arguments.size())
            order.exclusions = arguments[++i].toUInt(&order.isUnderstood);
        else if (arguments[i] == QStringLiteral("--exclude") && i + 1 < arguments.size())
            order.excluded.append(arguments[++i]);
        else
            order.homes.append(arguments[i]);
        if (!order.isUnderstood)
            return order;
    }
    order.isUnderstood =
        order.homes.size() == 1 && !order.homes.first().startsWith(QStringLiteral("--"));
    return order;
}

class Tally final : public LargeFileListener
{
public:
    qint64 found() const { return m_paths.size(); }
    qint64 bytes() const { return m_bytes; }
    const QByteArrayList &paths() const { return m_paths; }

    void searching(const FileUrl &) override {}
    void found(const File &file) override
    {
        m_paths.append(file.fileURL().path());
        m_bytes = sumOfByteCounts(m_bytes, file.size());
    }
    void unreadable(const UnreadablePlace &) override {}

private:
    QByteArrayList m_paths;
    qint64 m_bytes = 0;
};

/// Texts of folders that are spread over the searched ones, but are not there.
QStringList excludedTexts(const FileUrls &searched, unsigned count)
{
    QStringList texts;
    for (unsigned i = 0; i < count && !searched.isEmpty(); ++i) {
        const FileUrl &around = searched.at(i % searched.size());
        const QByteArray name = "excluded" + QByteArray::number(i);
        texts.append(
            QString::fromLatin1(around.appending(name, FileUrlKind::Folder).absoluteString()));
    }
    return texts;
}

int search(const Order &order)
{
    const QString &path = order.homes.first();
    const QByteArray found = QFile::encodeName(QFileInfo(path).canonicalFilePath());
    const FileUrl home = FileUrl::fromPath(found, FileUrlKind::Folder);
    FolderAccess access(home);
    if (!access.isOpen()) {
        std::fprintf(stderr, "vantor-bench: cannot open %s\n", qPrintable(path));
        return kFailed;
    }
    const HomeLayout layout =
        surveyHome(hostSystemCalls(), access, home, HomeEnvironment::ofThisProcess());
    Tally tally;
    const FileUrls folders = searchURLs(layout);
    const LargeFileQuery query{
        folders, order.excluded + excludedTexts(folders, order.exclusions), {}};
    QElapsedTimer timer;
    timer.start();
    const std::clock_t started = std::clock();
    const SearchOutcome outcome =
        searchLargeFiles(hostSystemCalls(), access, query, tally, {}, order.threads);
    const double processor = static_cast<double>(std::clock() - started) / CLOCKS_PER_SEC;
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;

    const QJsonObject line{{QStringLiteral("found"), tally.found()},
                           {QStringLiteral("bytes"), tally.bytes()},
                           {QStringLiteral("items"), outcome.items},
                           {QStringLiteral("complete"), outcome.isComplete},
                           {QStringLiteral("seconds"), seconds},
                           {QStringLiteral("processor_seconds"), processor},
                           {QStringLiteral("peak_rss_bytes"), peakResidentBytes()}};
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    if (order.wantsList) {
        for (const QByteArray &large : tally.paths())
            std::puts(large.constData());
    }
    return kDone;
}

} // namespace

int runSearchCommand(const QStringList &arguments)
{
    const Order order = readOrder(arguments);
    if (!order.isUnderstood) {
        std::fputs("vantor-bench: search [--threads N] [--exclude URL]... [--exclusions N] "
                   "[--list] HOME\n",
                   stderr);
        return kUsageError;
    }
    return search(order);
}
