// What the page of the slices knows of the home: where everything is, and which programs run.

#include "chart/PieChart.h"
#include "slices/page/FreeSpaceViewController.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <utility>

void FreeSpaceViewController::homeWasFound()
{
    if (!isShown())
        return; // shown when it appears
    m_pieChart->reloadData();
    enableStartButton();
    updateButtonText();
}

void FreeSpaceViewController::showChoice()
{
    m_pieChart->reloadData();
    updateButtonText();
}

/// A disabled button takes no focus: where the home was found later, it does so now, unless the
/// user has put it elsewhere meanwhile.
void FreeSpaceViewController::enableStartButton()
{
    m_startButton->setEnabled(m_home.isKnown());
    if (!view()->isAncestorOf(view()->window()->focusWidget()))
        m_startButton->setFocus(Qt::OtherFocusReason);
}

/// The confirmation names what stays because of the programs that run now, and the size without it.
void FreeSpaceViewController::lookAgainAndConfirm()
{
    if (m_home.layout().programs().empty())
        askForConfirmation();
    else
        m_home.lookForPrograms([this] { measureAndConfirm(); });
}

/// Again until all that it names are measured: their places may have changed meanwhile.
void FreeSpaceViewController::measureAndConfirm()
{
    SliceSelection::Records named;
    for (const auto &record : m_selection.chosen()) {
        if (!m_home.programsInUse(*sliceKindNamed(record->name())).isEmpty() &&
            !record->isMeasured())
            named.push_back(record);
    }
    if (!isReadyToClean())
        endAsking();
    else if (named.empty())
        askForConfirmation();
    else
        m_home.measure(named, [this] { measureAndConfirm(); });
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
