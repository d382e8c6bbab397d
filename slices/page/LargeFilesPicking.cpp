#include "slices/page/LargeFilesPicking.h"

#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/sheet/Sheet.h"
#include "slices/page/HomeWatch.h"

LargeFilesPicking::LargeFilesPicking(QWidget &host, Services services, QObject *parent)
    : QObject(parent), m_host(host), m_services(std::move(services))
{
}

LargeFilesPicking::~LargeFilesPicking() = default;

LargeFilesWindowController &LargeFilesPicking::windowController()
{
    if (!m_windowController) {
        m_windowController = std::make_unique<LargeFilesWindowController>(
            m_services.loader, LargeFilesWindowController::Services{
                                   m_services.defaults, m_services.calls, m_services.access,
                                   m_services.workspace, m_services.home.layout()});
        connect(&m_windowController->array(), &LargeFileList::sizeStringChanged, this,
                &LargeFilesPicking::followSize);
    }
    return *m_windowController;
}

bool LargeFilesPicking::mayPick() const
{
    return m_services.mayPick() && m_services.home.isKnown() && !isPicking();
}

void LargeFilesPicking::pick()
{
    if (mayPick())
        m_services.whenGrantIsUsable([this] { showSheet(); }, [] {});
}

void LargeFilesPicking::showSheet()
{
    if (!mayPick())
        return; // the page was left meanwhile
    m_access.emplace(m_services.access);
    LargeFilesWindowController &picker = windowController();
    picker.refreshData();
    presentSheet(
        m_host, *picker.window(), [this](int) { takePickedFiles(); },
        [&picker] { picker.cancel(); });
}

/// The sheet has measured what was picked in it, off the main thread, so the slice gets its files
/// and their size in one step: a cleaning never finds one without the other.
void LargeFilesPicking::takePickedFiles()
{
    m_access.reset();
    if (!m_services.mayChange())
        return;
    const LargeFilesWindowController &picker = windowController();
    const FileUrls files = picker.selectedURLs();
    Info &record = m_services.selection.record(SliceKind::LargeFiles);
    record.setIsOn(!files.isEmpty());
    record.setFileSizeString(files.isEmpty() ? QString::fromUtf16(kClickToSelect)
                                             : picker.sizeString());
    record.setFileURLs(files, picker.deletableSize());
    record.setChoice(windowController().array().picked());
    Q_EMIT picked();
    m_services.selection.updateSelectedSlicesUserDefaults();
}

/// A size may be read only after the sheet has gone.
void LargeFilesPicking::followSize()
{
    LargeFilesWindowController &picker = windowController();
    Info &record = m_services.selection.record(SliceKind::LargeFiles);
    if (isPicking() || !m_services.mayChange() || !record.isOn() ||
        record.fileURLs() != picker.selectedURLs())
        return;
    record.setFileSizeString(picker.sizeString());
    record.setFileSize(picker.deletableSize());
    record.setChoice(picker.array().picked());
    Q_EMIT sizeChanged();
}

void LargeFilesPicking::drop()
{
    if (!m_windowController)
        return;
    m_windowController->deleteData();
    if (isPicking())
        m_windowController->refreshData();
}
