#include "bench/Commands.h"
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

namespace {

/// Grants a home, and nothing else.
class HomeAccess final : public FileAccess
{
public:
    explicit HomeAccess(const FileUrl &home) : m_home(home)
    {
        if (auto opened = hostSystemCalls().openRoot(home.path().constData()))
            m_anchor = std::make_shared<const FileDescriptor>(std::move(*opened));
    }

    bool isOpen() const { return m_anchor != nullptr; }

    void startAccessing() override {}
    void stopAccessing() override {}
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        const QByteArray home = m_home.path();
        const QByteArray inside = home == "/" ? home : home + '/';
        if (m_anchor && url == m_home)
            return AnchoredPath{m_anchor, {}};
        if (!m_anchor || !url.path().startsWith(inside))
            return std::nullopt;
        return AnchoredPath{m_anchor, url.path().sliced(inside.size())};
    }

private:
    const FileUrl m_home;
    std::shared_ptr<const FileDescriptor> m_anchor;
};

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

int search(const QString &path, unsigned threads)
{
    const QByteArray found = QFile::encodeName(QFileInfo(path).canonicalFilePath());
    const FileUrl home = FileUrl::fromPath(found, FileUrlKind::Folder);
    HomeAccess access(home);
    if (!access.isOpen()) {
        std::fprintf(stderr, "vantor-bench: cannot open %s\n", qPrintable(path));
        return kFailed;
    }
    const HomeLayout layout =
        surveyHome(hostSystemCalls(), access, home, HomeEnvironment::ofThisProcess());
    Tally tally;
    QElapsedTimer timer;
    timer.start();
    const SearchOutcome outcome = searchLargeFiles(
        hostSystemCalls(), access, {searchURLs(layout), {}, {}}, tally, {}, threads);
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;

    const QJsonObject line{{QStringLiteral("found"), tally.found()},
                           {QStringLiteral("bytes"), tally.bytes()},
                           {QStringLiteral("items"), outcome.items},
                           {QStringLiteral("complete"), outcome.isComplete},
                           {QStringLiteral("seconds"), seconds},
                           {QStringLiteral("peak_rss_bytes"), peakResidentBytes()}};
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    return kDone;
}

} // namespace

int runSearchCommand(const QStringList &arguments)
{
    QStringList homes = arguments;
    unsigned threads = 0;
    if (homes.value(0) == QStringLiteral("--threads")) {
        bool isNumber = false;
        threads = homes.value(1).toUInt(&isNumber);
        if (!isNumber) {
            std::fprintf(stderr, "vantor-bench: --threads takes a number\n");
            return kUsageError;
        }
        homes = homes.mid(2);
    }
    if (homes.size() != 1) {
        std::fprintf(stderr, "vantor-bench: search takes one home folder\n");
        return kUsageError;
    }
    return search(homes.first(), threads);
}
