#include "bench/Commands.h"
#include "bench/FolderAccess.h"
#include "bench/ProcessMemory.h"
#include "largefiles/search/LargeFileSearch.h"
#include "platform/base/ByteCount.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "slices/home/HomeSurvey.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <ctime>

namespace {

class Tally final : public LargeFileListener
{
public:
    qint64 found() const { return m_found; }
    qint64 bytes() const { return m_bytes; }

    void searching(const FileUrl &) override {}
    void found(const File &file) override
    {
        ++m_found;
        m_bytes = sumOfByteCounts(m_bytes, file.size());
    }
    void unreadable(const UnreadablePlace &) override {}

private:
    qint64 m_found = 0;
    qint64 m_bytes = 0;
};

struct Order
{
    unsigned threads = 0;
    unsigned exclusions = 0;
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

int search(const QString &path, const Order &order)
{
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
    const LargeFileQuery query{folders, excludedTexts(folders, order.exclusions), {}};
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
    return kDone;
}

} // namespace

int runSearchCommand(const QStringList &arguments)
{
    QStringList homes = arguments;
    Order order;
    while (homes.size() > 1) {
        bool isNumber = false;
        const unsigned number = homes.value(1).toUInt(&isNumber);
        if (isNumber && homes.first() == QStringLiteral("--threads"))
            order.threads = number;
        else if (isNumber && homes.first() == QStringLiteral("--exclusions"))
            order.exclusions = number;
        else
            break;
        homes = homes.mid(2);
    }
    if (homes.size() != 1) {
        std::fprintf(stderr, "vantor-bench: search takes one home folder\n");
        return kUsageError;
    }
    return search(homes.first(), order);
}
