// What the sheet shows of the selected files: a picture beside the list, and the preview.

#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/look/Images.h"

#include <QKeyEvent>
#include <QLabel>

namespace {

/// The folder that a file lies in, for people: from the home folder on.
QString placeOf(const FileUrl &file, const FileUrl &home)
{
    QByteArray path = file.path();
    path.truncate(path.lastIndexOf('/'));
    if (path.startsWith(home.path() + '/'))
        path.remove(0, home.path().size() + 1);
    return QString::fromUtf8(path);
}

} // namespace

/// Of several, the one that the user came to last.
int LargeFilesWindowController::selectedRow() const
{
    const QList<int> rows = m_tableView->selectedRows();
    const int current = m_tableView->currentIndex().row();
    if (rows.isEmpty() || rows.contains(current))
        return rows.isEmpty() ? -1 : current;
    return rows.constLast();
}

void LargeFilesWindowController::tableViewSelectionDidChange()
{
    showThumbnailOfRow(selectedRow());
    if (m_previewPanel && m_previewPanel->isVisible())
        m_previewPanel->reloadData();
}

/// Instead of a picture, what there is to do.
void LargeFilesWindowController::showHint()
{
    if (m_tableView->selectionModel()->hasSelection())
        return;
    m_imageView->setAlignment(Qt::AlignCenter);
    m_imageView->setAccessibleName({}); // its text speaks for itself
    m_imageView->setText(m_array.rowCount() > 0
                             ? tr("Click a size to pick the file.\n\n"
                                  "Select a file and press the space bar to look inside.")
                             : QString());
}

/// The icon at once, and then what the file's content gives.
void LargeFilesWindowController::showThumbnailOfRow(int row)
{
    m_thumbnails.stop();
    if (row < 0) {
        m_imageView->clear(); // an empty text would leave the picture
        m_placeLabel->clear();
        showHint();
        Q_EMIT thumbnailShown();
        return;
    }
    const FileUrl file = m_array.fileAt(row).fileURL();
    const PictureSize size{m_imageView->size(), m_imageView->devicePixelRatioF()};
    m_imageView->setAccessibleName(tr("Picture of %1").arg(m_array.fileAt(row).name()));
    m_imageView->setAlignment(Qt::AlignHCenter | Qt::AlignBottom); // on the name of its folder
    m_imageView->setPixmap(
        imageNamed(m_icons.imageName(file.lastPathComponent()), size.scale, size.points));
    m_placeLabel->setText(m_placeLabel->fontMetrics().elidedText(
        tr("In %1").arg(placeOf(file, m_services.home.home())), Qt::ElideMiddle,
        size.points.width()));
    const FileReading reading{m_services.calls, m_services.access};
    m_thumbnails.run([this, reading, file, size](const std::stop_token &stop) {
        const QImage image =
            imageWithPreviewOfFileAtPath(reading, file, size, ThumbnailMode::Icon, stop);
        return [this, image] {
            m_imageView->setPixmap(QPixmap::fromImage(image));
            Q_EMIT thumbnailShown();
        };
    });
}

void LargeFilesWindowController::beginPreviewPanelControl(PreviewPanel &panel)
{
    panel.setDataSource(this);
    panel.setDelegate(this);
}

void LargeFilesWindowController::endPreviewPanelControl(PreviewPanel &panel)
{
    panel.setDataSource(nullptr);
    panel.setDelegate(nullptr);
}

bool LargeFilesWindowController::didPressSpacebarForTableView(QuickLookTableView &)
{
    if (m_previewPanel && m_previewPanel->isVisible()) {
        m_previewPanel->orderOut();
        return true;
    }
    if (!m_previewPanel) {
        m_previewPanel = new PreviewPanel({m_services.calls, m_services.access}, window());
        connect(m_previewPanel, &PreviewPanel::orderedOut, this,
                [this] { endPreviewPanelControl(*m_previewPanel); });
    }
    if (acceptsPreviewPanelControl(*m_previewPanel))
        beginPreviewPanelControl(*m_previewPanel);
    m_previewPanel->makeKeyAndOrderFront();
    m_previewPanel->reloadData();
    return true;
}

int LargeFilesWindowController::numberOfPreviewItemsInPreviewPanel(PreviewPanel &)
{
    return static_cast<int>(m_tableView->selectedRows().size());
}

std::optional<File> LargeFilesWindowController::previewItemAtIndex(PreviewPanel &, int index)
{
    const QList<int> rows = m_tableView->selectedRows();
    if (index < 0 || index >= rows.size())
        return std::nullopt;
    return m_array.fileAt(rows.at(index));
}

bool LargeFilesWindowController::handleEvent(PreviewPanel &, QEvent &event)
{
    if (event.type() != QEvent::KeyPress)
        return false;
    m_tableView->keyDown(static_cast<QKeyEvent *>(&event));
    return true;
}
