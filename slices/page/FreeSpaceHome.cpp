// What the page of the slices knows of the home: where everything is, and which programs run.

#include "chart/PieChart.h"
#include "slices/cleaning/RecordLocations.h"
#include "slices/home/HomeSurvey.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/sizing/FolderSizing.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <utility>

/// One status call tells a home with a Library. Any other is looked at beside the main thread, and
/// until that is done the slices have no places. Nor have those of a home that does not answer,
/// until the next visit.
void FreeSpaceViewController::rebuildRecords()
{
    const FileUrl home = m_services.homeFolder();
    m_looking.stop();
    const HomeKind kind = kindOfHome(home);
    place(kind == HomeKind::Library ? HomeFindings{HomeLayout::withLibrary(home), {}}
                                    : HomeFindings{});
    if (kind != HomeKind::Freedesktop)
        return;
    m_looking.run([this, &calls = m_services.calls, &access = m_services.access, home,
                   environment = HomeEnvironment::ofThisProcess()](const std::stop_token &stop) {
        const AccessScope scope(access);
        const HomeLayout layout = surveyHome(calls, access, home, environment, stop);
        const HomeFindings findings{layout, ProgramsInUse::find(calls, access, layout)};
        return [this, findings] { homeWasFound(findings); };
    });
}

HomeKind FreeSpaceViewController::kindOfHome(const FileUrl &home) const
{
    const AccessScope scope(m_services.access);
    return homeKind(m_services.calls, m_services.access, home);
}

void FreeSpaceViewController::place(const HomeFindings &findings)
{
    m_home = findings;
    m_measuring.request_stop();
    m_measuring = std::stop_source();
    const auto measure = [&calls = m_services.calls, &access = m_services.access,
                          stop = m_measuring.get_token(),
                          layout = m_home.layout](const FileUrl &url, const FileUrls &kept) {
        const auto readOnlyFolders =
            layout.isInTrash(url) ? ReadOnlyFolders::Emptied : ReadOnlyFolders::Stay;
        const SizingRules rules{readOnlyFolders, pathsInside(url, kept)};
        const qint64 bytes = sizeForFolderAtPath(calls, access, url, stop, rules);
        return stop.stop_requested() ? std::nullopt : std::optional(bytes);
    };
    m_selection.rebuild(m_home.layout, {measure, m_sizeChanged}, m_home.inUse);
}

void FreeSpaceViewController::homeWasFound(const HomeFindings &findings)
{
    place(findings);
    // What was excluded meanwhile was heard by slices without places.
    m_selection.applyExclusions();
    m_selection.updateSelectedSlicesUserDefaults();
    if (!isShown())
        return; // shown when it appears
    m_pieChart->reloadData();
    enableStartButton();
    updateButtonText();
}

/// A disabled button takes no focus: where the home was found later, it does so now, unless the
/// user has put it elsewhere meanwhile.
void FreeSpaceViewController::enableStartButton()
{
    m_startButton->setEnabled(m_home.layout.kind() != HomeKind::Unknown);
    if (!view()->isAncestorOf(view()->window()->focusWidget()))
        m_startButton->setFocus(Qt::OtherFocusReason);
}

/// Work for another thread: programs come and go.
LatestJob::Work FreeSpaceViewController::lookForPrograms(std::function<void()> then)
{
    return [this, &calls = m_services.calls, &access = m_services.access, layout = m_home.layout,
            then = std::move(then)](const std::stop_token &) {
        const AccessScope scope(access);
        const auto inUse = ProgramsInUse::find(calls, access, layout);
        return [this, inUse, then] {
            programsWereFound(inUse);
            then();
        };
    };
}

void FreeSpaceViewController::programsWereFound(const ProgramsInUse &inUse)
{
    if (m_isCleaning || inUse == m_home.inUse)
        return; // what was confirmed stands
    m_home.inUse = inUse;
    placeRecords(m_selection.records(), m_home.layout, inUse);
    m_pieChart->reloadData();
    updateButtonText();
}

/// The confirmation names what stays because of the programs that run now, and the size without it.
void FreeSpaceViewController::lookAgainAndConfirm()
{
    if (m_home.layout.programs().empty())
        askForConfirmation();
    else
        m_looking.run(lookForPrograms([this] { measureAndConfirm(); }));
}

/// Again until all that it names are measured: their places may have changed meanwhile.
void FreeSpaceViewController::measureAndConfirm()
{
    SliceSelection::Records named;
    for (const auto &record : m_selection.chosen()) {
        if (!programsInUse(*sliceKindNamed(record->name())).isEmpty() && !record->isMeasured())
            named.push_back(record);
    }
    if (!isReadyToClean())
        endAsking();
    else if (named.empty())
        askForConfirmation();
    else
        m_looking.run([this, named](const std::stop_token &) {
            for (const auto &record : named)
                record->fileSizeString();
            return [this] { measureAndConfirm(); };
        });
}

/// Until the end of it nothing else is asked.
void FreeSpaceViewController::beginAsking()
{
    m_isAsking = true;
    m_startButton->detailText().setText(tr("Looking…"));
}

void FreeSpaceViewController::endAsking()
{
    if (!std::exchange(m_isAsking, false))
        return;
    m_startButton->detailText().setText(tr("Click to free"));
    if (std::exchange(m_owesTutorial, false))
        showTutorialUnlessDeclined();
}

QStringList FreeSpaceViewController::programsInUse(SliceKind kind) const
{
    return m_home.inUse.programs(m_home.layout.locations(kind).value_or(FileUrls()));
}
