#include "bench/Commands.h"
#include "bench/ProcessMemory.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "slices/cleaning/Cleaning.h"
#include "slices/removal/AsideNames.h"
#include "slices/sizing/FolderSizing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <cstdio>

namespace {

struct Order
{
    QStringList paths;
    QStringList excluded;
    bool isConfirmed = false;
    bool isUnderstood = true;
};

Order readOrder(const QStringList &arguments)
{
    Order order;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--yes"))
            order.isConfirmed = true;
        else if (arguments[i] == QStringLiteral("--exclude") && i + 1 < arguments.size())
            order.excluded.append(arguments[++i]);
        else if (arguments[i].startsWith(QStringLiteral("--")))
            order.isUnderstood = false;
        else
            order.paths.append(arguments[i]);
    }
    order.isUnderstood = order.isUnderstood && !order.paths.isEmpty();
    return order;
}

/// Grants the folder around the location to be cleaned, and nothing else.
class SurroundingFolder final : public FileAccess
{
public:
    explicit SurroundingFolder(const QByteArray &path) : m_path(path)
    {
        if (auto opened = hostSystemCalls().openRoot(path.constData()))
            m_anchor = std::make_shared<const FileDescriptor>(std::move(*opened));
    }

    void startAccessing() override {}
    void stopAccessing() override {}
    std::optional<AnchoredPath> anchoredPath(const FileUrl &url) const override
    {
        const QByteArray inside = m_path == "/" ? m_path : m_path + '/';
        if (!m_anchor || !url.path().startsWith(inside))
            return std::nullopt;
        return AnchoredPath{m_anchor, url.path().sliced(inside.size())};
    }

private:
    QByteArray m_path;
    std::shared_ptr<const FileDescriptor> m_anchor;
};

void complain(const CleaningReport &report)
{
    for (const CleaningFailure &failure : report.failures)
        std::fprintf(stderr, "left %s: errno %d\n", failure.path.constData(), failure.error);
    for (const CleaningRefusal &refusal : report.refusals)
        std::fprintf(stderr, "refused %s: reason %d, errno %d\n", refusal.path.constData(),
                     int(refusal.reason), refusal.error);
}

bool cleanOne(const QString &path, const ExcludedPaths &excluded)
{
    const QFileInfo found(path);
    const QByteArray real = QFile::encodeName(found.absoluteFilePath());
    const auto content =
        found.isDir() && !found.isSymLink() ? SliceContent::Folders : SliceContent::Files;
    const auto kind = content == SliceContent::Files ? FileUrlKind::File : FileUrlKind::Folder;
    const FileUrl url = FileUrl::fromPath(real, kind);
    const SurroundingFolder access(url.path().first(qMax(1, url.path().lastIndexOf('/'))));
    const auto place = access.anchoredPath(url);
    const qint64 bytes = place ? measureFolder(hostSystemCalls(), *place, {}).bytes : 0;

    const QTemporaryDir notes;
    AsideNames names(hostSystemCalls(), notes.path());
    QElapsedTimer timer;
    timer.start();
    const CleaningReport report = performCleaning(
        hostSystemCalls(),
        makeCleaningPlan(hostSystemCalls(), access,
                         {{path, {url}, hostSystemCalls().now(), content}}, excluded),
        {}, {}, &names);
    const double seconds = double(timer.nsecsElapsed()) / 1e9;

    complain(report);
    const QJsonObject line{{QStringLiteral("path"), path},
                           {QStringLiteral("bytes"), bytes},
                           {QStringLiteral("items"), qint64(report.removedItems)},
                           {QStringLiteral("seconds"), seconds},
                           {QStringLiteral("peak_rss_bytes"), peakResidentBytes()}};
    std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    return report.failureCount == 0 && report.refusalCount == 0;
}

} // namespace

int runCleanCommand(const QStringList &arguments)
{
    const Order order = readOrder(arguments);
    if (!order.isUnderstood || !order.isConfirmed) {
        std::fputs("vantor-bench: clean PATH... [--exclude URL]... --yes\n"
                   "Removes for good all that the folders hold. Nothing was removed.\n",
                   stderr);
        return kUsageError;
    }
    const auto excluded = ExcludedPaths::fromStoredStrings(order.excluded);
    bool isAllGone = true;
    for (const QString &path : order.paths)
        isAllGone = cleanOne(path, excluded) && isAllGone;
    return isAllGone ? kDone : kFailed;
}
