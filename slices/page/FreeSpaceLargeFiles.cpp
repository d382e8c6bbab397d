// The slice whose files the user picks in a sheet.

#include "chart/PieChart.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/sheet/Sheet.h"
#include "slices/page/FreeSpaceViewController.h"

LargeFilesWindowController &FreeSpaceViewController::largeFilesWindowController()
{
    if (!m_largeFilesWindowController) {
        m_largeFilesWindowController = std::make_unique<LargeFilesWindowController>(
            m_loader, LargeFilesWindowController::Services{m_services.defaults, m_services.calls,
                                                           m_services.access, m_services.workspace,
                                                           m_home.layout()});
        connect(&m_largeFilesWindowController->array(), &LargeFileList::sizeStringChanged, this,
                &FreeSpaceViewController::followPickedSize);
    }
    return *m_largeFilesWindowController;
}

bool FreeSpaceViewController::mayPickLargeFiles() const
{
    return isShown() && !m_isAsking && !m_isCleaning && m_home.isKnown() && !isPickingLargeFiles();
}

void FreeSpaceViewController::pickLargeFiles()
{
    if (mayPickLargeFiles())
        m_services.whenGrantIsUsable([this] { showLargeFiles(); }, [] {});
}

void FreeSpaceViewController::showLargeFiles()
{
    if (!mayPickLargeFiles())
        return; // the page was left meanwhile
    m_pickingAccess.emplace(m_services.access);
    LargeFilesWindowController &picker = largeFilesWindowController();
    picker.refreshData();
    presentSheet(
        *view(), *picker.window(), [this](int) { takePickedFiles(); },
        [&picker] { picker.cancel(); });
}

/// The sheet has measured what was picked in it, off the main thread, so that the slice has its
/// files and their size in one step: a cleaning never finds the one without the other.
void FreeSpaceViewController::takePickedFiles()
{
    m_pickingAccess.reset();
    if (m_isCleaning)
        return; // what was confirmed stands
    const LargeFilesWindowController &picker = largeFilesWindowController();
    const FileUrls picked = picker.selectedURLs();
    Info &record = m_selection.record(SliceKind::LargeFiles);
    record.setIsOn(!picked.isEmpty());
    record.setFileSizeString(picked.isEmpty() ? QString::fromUtf16(kClickToSelect)
                                              : picker.sizeString());
    record.setFileURLs(picked, picker.selectedSize());
    m_pieChart->reloadData();
    updateButtonText();
    m_selection.updateSelectedSlicesUserDefaults();
}

/// A size may be read only after the sheet has gone.
void FreeSpaceViewController::followPickedSize()
{
    const LargeFilesWindowController &picker = largeFilesWindowController();
    Info &record = m_selection.record(SliceKind::LargeFiles);
    if (isPickingLargeFiles() || m_isCleaning || !record.isOn() ||
        record.fileURLs() != picker.selectedURLs())
        return;
    record.setFileSizeString(picker.sizeString());
    record.setFileSize(picker.selectedSize());
    m_pieChart->reloadData();
}

/// What was found is out of date. With the sheet up, the search begins again before the user's
/// eyes.
void FreeSpaceViewController::dropLargeFiles()
{
    if (!m_largeFilesWindowController)
        return;
    m_largeFilesWindowController->deleteData();
    if (isPickingLargeFiles())
        m_largeFilesWindowController->refreshData();
}
