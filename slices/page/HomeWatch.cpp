#include "slices/page/HomeWatch.h"

#include "platform/base/ByteCount.h"
#include "platform/threads/BackgroundThreads.h"
#include "slices/cleaning/RecordLocations.h"
#include "slices/home/HomeSurvey.h"
#include "slices/sizing/FolderSizing.h"

#include <QCoreApplication>
#include <algorithm>

HomeWatch::HomeWatch(Services services, SliceSelection &selection, QObject *parent)
    : QObject(parent),
      m_services(std::move(services)),
      m_selection(selection),
      m_sizeChanged(std::make_shared<FileSizeChangedNotification>())
{
    connect(m_sizeChanged.get(), &FileSizeChangedNotification::posted, this,
            &HomeWatch::sizeChanged);
}

HomeWatch::~HomeWatch()
{
    stopMeasuring();
}

QStringList HomeWatch::programsInUse(SliceKind kind) const
{
    return m_findings.inUse.programs(layout().locations(kind).value_or(FileUrls()));
}

/// Places of one kind make one line.
QList<KeptContent> HomeWatch::keptContents(SliceKind kind) const
{
    QList<KeptContent> contents;
    const FileUrls locations = layout().locations(kind).value_or(FileUrls());
    for (const FoundKeptPlace &place : m_findings.inUse.keptPlaces(locations)) {
        const auto size = m_keptSizes.constFind(place.location.path());
        const auto bytes = size == m_keptSizes.constEnd() ? std::nullopt : std::optional(*size);
        const QString what = QCoreApplication::translate("KeptPlaces", place.what);
        const auto same = std::ranges::find(contents, what, &KeptContent::what);
        if (same == contents.end())
            contents.append({what, bytes});
        else
            same->bytes = same->bytes && bytes
                              ? std::optional(sumOfByteCounts(*same->bytes, *bytes))
                              : std::nullopt;
    }
    return contents;
}

/// One look recognises a plain Library. Any other home is surveyed beside the main thread, and the
/// slices have no locations until that is done. If the home does not answer, they have none until
/// the next survey.
void HomeWatch::look()
{
    const FileUrl home = m_services.homeFolder();
    m_looking.stop();
    const bool isPlain = hasPlainLibrary(home);
    place(isPlain ? Findings{HomeLayout::withLibrary(home), {}} : Findings{});
    if (isPlain)
        return;
    m_looking.run([this, &calls = m_services.calls, &access = m_services.access, home,
                   environment = HomeEnvironment::ofThisProcess()](const std::stop_token &stop) {
        const AccessScope scope(access);
        const HomeLayout layout = surveyHome(calls, access, home, environment, stop);
        const Findings findings{layout, ProgramsInUse::find(calls, access, layout)};
        return [this, findings] { takeFindings(findings); };
    });
}

bool HomeWatch::hasPlainLibrary(const FileUrl &home) const
{
    const AccessScope scope(m_services.access);
    return ::hasPlainLibrary(m_services.calls, m_services.access, home);
}

void HomeWatch::place(const Findings &findings)
{
    m_findings = findings;
    stopMeasuring();
    m_measuring = std::stop_source();
    m_selection.rebuild(layout(), {measureFunction(), m_sizeChanged}, m_findings.inUse);
}

Info::Measure HomeWatch::measureFunction() const
{
    return [&calls = m_services.calls, &access = m_services.access, stop = m_measuring.get_token(),
            layout = layout()](const FileUrl &url, const FileUrls &kept) {
        const auto readOnlyFolders =
            layout.isInTrash(url) ? ReadOnlyFolders::Emptied : ReadOnlyFolders::Stay;
        const SizingRules rules{readOnlyFolders, pathsInside(url, kept)};
        std::stop_source either; // where the program ends from outside, nobody destroys the watch
        const auto end = [&either] { either.request_stop(); };
        const std::stop_callback withTheWatch(stop, end);
        const std::stop_callback withTheProgram(endOfBackgroundThreads(), end);
        const qint64 bytes = sizeForFolderAtPath(calls, access, url, either.get_token(), rules);
        return either.stop_requested() ? std::nullopt : std::optional(bytes);
    };
}

void HomeWatch::takeFindings(const Findings &findings)
{
    place(findings);
    measureKept();
    // Exclusions that were added meanwhile met slices without locations.
    m_selection.applyExclusions();
    m_selection.updateSelectedSlicesUserDefaults();
    Q_EMIT found();
}

void HomeWatch::lookForPrograms(std::function<void()> then)
{
    m_looking.run(programLook(std::move(then)));
}

/// Looks each time anew: programs start and end.
BackgroundTask<OwnersEnd::Abandon> HomeWatch::programLook(std::function<void()> then)
{
    return [this, &calls = m_services.calls, &access = m_services.access, layout = layout(),
            then = std::move(then)](const std::stop_token &) {
        const AccessScope scope(access);
        const auto inUse = ProgramsInUse::find(calls, access, layout);
        return [this, inUse, then] {
            takePrograms(inUse);
            then();
        };
    };
}

void HomeWatch::takePrograms(const ProgramsInUse &inUse)
{
    if (!m_services.mayChange() || inUse == m_findings.inUse)
        return;
    m_findings.inUse = inUse;
    setRecordLocations(m_selection.records(), layout(), inUse);
    measureKept();
    Q_EMIT programsChanged();
}

void HomeWatch::stopMeasuring()
{
    m_measuring.request_stop();
    m_keptMeasures.stop();
}

/// Only the descriptions of the slices tell these sizes, and wait for none of them.
void HomeWatch::measureKept()
{
    m_keptMeasures.run([this, &calls = m_services.calls, &access = m_services.access,
                        places = m_findings.inUse.keptPlaces(
                            layout().locations(SliceKind::Cache).value_or(FileUrls()))](
                           const std::stop_token &stop) {
        const AccessScope scope(access);
        QHash<QByteArray, qint64> sizes;
        for (const FoundKeptPlace &place : places) {
            const auto path = access.anchoredPath(place.location);
            if (path && !stop.stop_requested())
                sizes.insert(place.location.path(), measureFolder(calls, *path, stop).bytes);
        }
        return [this, sizes] { m_keptSizes = sizes; };
    });
}

void HomeWatch::measure(SliceSelection::Records records, std::function<void()> then)
{
    // The records go back with the reply: their last references must not end on the other thread.
    m_looking.run([records = std::move(records),
                   then = std::move(then)](const std::stop_token &stop) mutable {
        for (const auto &record : records) {
            if (!stop.stop_requested())
                record->fileSizeString();
        }
        return [records = std::move(records), then = std::move(then)] { then(); };
    });
}

void HomeWatch::identify(FileUrls locations, std::function<void(const LocationIdentities &)> then)
{
    m_looking.run([&calls = m_services.calls, &access = m_services.access,
                   locations = std::move(locations),
                   then = std::move(then)](const std::stop_token &stop) {
        const AccessScope scope(access);
        const LocationIdentities found = lookAtLocations(calls, access, locations, stop);
        return [found, then] { then(found); };
    });
}
