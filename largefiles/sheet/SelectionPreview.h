#pragma once

#include "largefiles/preview/GuardedFile.h"
#include "largefiles/preview/PreviewPanelProtocols.h"
#include "largefiles/sheet/QuickLookTableViewDelegate.h"

#include <QObject>

class LargeFileList;
class PreviewPanel;

/// Shows the selected files of a table in a preview panel: the table's space bar opens and closes
/// it, and the keys that the panel has no use for go to the table.
///
/// Owned by the sheet. Main thread only.
class SelectionPreview final : public QObject,
                               public QuickLookTableViewDelegate,
                               public PreviewPanelDataSource,
                               public PreviewPanelDelegate
{
    Q_OBJECT

public:
    /// The table's files, row by row; must outlive it.
    SelectionPreview(FileReading reading, const LargeFileList &files);

    /// Sets the table, whose delegate this becomes, and the widget that the panel covers. Call it
    /// once.
    void setTable(QuickLookTableView &table, QWidget &covered);

    /// Null until it was first asked for.
    PreviewPanel *panel() const { return m_panel; }

    /// True: fills every panel.
    bool acceptsPreviewPanelControl(PreviewPanel &) const { return true; }
    /// From now until the end the panel shows the selected files and hands its keys on.
    void beginPreviewPanelControl(PreviewPanel &panel);
    void endPreviewPanelControl(PreviewPanel &panel);

    /// Other files are selected.
    void selectionDidChange();
    void close();

    bool didPressSpacebarForTableView(QuickLookTableView &table) override;
    int numberOfPreviewItemsInPreviewPanel(PreviewPanel &panel) override;
    std::optional<File> previewItemAtIndex(PreviewPanel &panel, int index) override;
    bool handleEvent(PreviewPanel &panel, QEvent &event) override;

private:
    void makePanel();

    FileReading m_reading;
    const LargeFileList &m_files;
    QuickLookTableView *m_table = nullptr;
    QWidget *m_covered = nullptr;
    PreviewPanel *m_panel = nullptr; ///< owned by the covered widget
};
