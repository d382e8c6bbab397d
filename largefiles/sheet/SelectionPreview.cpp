#include "largefiles/sheet/SelectionPreview.h"

#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/search/LargeFileList.h"
#include "largefiles/sheet/QuickLookTableView.h"

#include <QKeyEvent>

SelectionPreview::SelectionPreview(FileReading reading, const LargeFileList &files)
    : m_reading(std::move(reading)), m_files(files)
{
}

void SelectionPreview::setTable(QuickLookTableView &table, QWidget &covered)
{
    m_table = &table;
    m_covered = &covered;
    table.setQlDelegate(this);
}

void SelectionPreview::beginPreviewPanelControl(PreviewPanel &panel)
{
    panel.setDataSource(this);
    panel.setDelegate(this);
}

void SelectionPreview::endPreviewPanelControl(PreviewPanel &panel)
{
    panel.setDataSource(nullptr);
    panel.setDelegate(nullptr);
}

void SelectionPreview::makePanel()
{
    m_panel = new PreviewPanel(m_reading, m_covered);
    connect(m_panel, &PreviewPanel::orderedOut, this, [this] { endPreviewPanelControl(*m_panel); });
}

bool SelectionPreview::didPressSpacebarForTableView(QuickLookTableView &)
{
    if (m_panel && m_panel->isVisible()) {
        m_panel->orderOut();
        return true;
    }
    if (!m_panel)
        makePanel();
    if (acceptsPreviewPanelControl(*m_panel))
        beginPreviewPanelControl(*m_panel);
    m_panel->makeKeyAndOrderFront();
    m_panel->reloadData();
    return true;
}

void SelectionPreview::selectionDidChange()
{
    if (m_panel && m_panel->isVisible())
        m_panel->reloadData();
}

void SelectionPreview::close()
{
    if (m_panel)
        m_panel->orderOut();
}

int SelectionPreview::numberOfPreviewItemsInPreviewPanel(PreviewPanel &)
{
    return static_cast<int>(m_table->selectedRows().size());
}

std::optional<File> SelectionPreview::previewItemAtIndex(PreviewPanel &, int index)
{
    const QList<int> rows = m_table->selectedRows();
    if (index < 0 || index >= rows.size())
        return std::nullopt;
    return m_files.fileAt(rows.at(index));
}

bool SelectionPreview::handleEvent(PreviewPanel &, QEvent &event)
{
    if (event.type() != QEvent::KeyPress)
        return false;
    m_table->keyDown(static_cast<QKeyEvent *>(&event));
    return true;
}
