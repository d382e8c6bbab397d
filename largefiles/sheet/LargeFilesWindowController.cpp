#include "largefiles/sheet/LargeFilesWindowController.h"

#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "largefiles/search/LargeFileSearch.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/base/PlainToolTip.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "platform/look/Fonts.h"
#include "platform/sheet/Sheet.h"
#include "platform/system/SystemCalls.h"

#include <QLabel>
#include <QMenu>
#include <algorithm>

namespace {

constexpr QColor kBlue(0, 122, 255);
constexpr QColor kGreen(65, 204, 89);
constexpr int kRowTitleSize = 15;
constexpr int kButtonTitleSize = 18;

TextRun titleStyle(int size, const QColor &color)
{
    return {{}, interfaceFont(Typeface::Light, size), color, Qt::AlignHCenter};
}

TextRun withText(TextRun style, const QString &text)
{
    style.text = text;
    return style;
}

/// The selected row. Of several it is the one that the user came to last; -1 for none.
int selectedRow(const QuickLookTableView &table)
{
    const QList<int> rows = table.selectedRows();
    const int current = table.currentIndex().row();
    if (rows.isEmpty() || rows.contains(current))
        return rows.isEmpty() ? -1 : current;
    return rows.constLast();
}

} // namespace

LargeFilesWindowController::LargeFilesWindowController(const InterfaceLoader &loader,
                                                       Services services, QObject *parent)
    : WindowController(loader, parent),
      m_services(std::move(services)),
      m_searchURLs(::searchURLs(m_services.home)),
      m_currentSizes(m_services.calls, m_services.access),
      m_array(
          [this](const FileUrls &files, LargeFileList::Answer answer) {
              m_currentSizes.read(files, std::move(answer));
          },
          [this] { return m_services.calls.now(); }),
      m_search(m_services.calls, m_services.access, m_array),
      m_picture({m_services.calls, m_services.access}, m_icons, m_services.home.home()),
      m_preview({m_services.calls, m_services.access}, m_array)
{
    connect(&m_picture, &SelectionPicture::shown, this,
            &LargeFilesWindowController::thumbnailShown);
    connectSearch();
}

LargeFilesWindowController::~LargeFilesWindowController() = default;

void LargeFilesWindowController::windowDidLoad()
{
    QWidget &interface = *window();
    m_picture.setLabels(*outlet<QLabel>(interface, "imageView"),
                        *outlet<QLabel>(interface, "placeLabel"));
    m_statusLabel = outlet<QLabel>(interface, "statusLabel");
    connectTable();
    connectButtons();
    reloadLabels();
    showStatus();
    tableViewSelectionDidChange();
    m_tableView->setFocus();
}

void LargeFilesWindowController::connectTable()
{
    m_tableView = outlet<QuickLookTableView>(*window(), "tableView");
    m_cellView = new FileTableCellView(m_icons, m_tableView);
    m_tableView->setItemDelegate(m_cellView);
    m_tableView->setModel(&m_array);
    m_preview.setTable(*m_tableView, *window());
    makeMenu();
    connect(m_cellView, &FileTableCellView::addButtonPressed, this,
            &LargeFilesWindowController::addButtonPressed);
    connect(m_tableView, &QuickLookTableView::togglePressed, this,
            &LargeFilesWindowController::toggleSelectedRows);
    connect(m_tableView, &QuickLookTableView::selectionDidChange, this,
            &LargeFilesWindowController::tableViewSelectionDidChange);
    for (const auto change : {&LargeFileList::rowsInserted, &LargeFileList::rowsRemoved})
        connect(&m_array, change, this, [this] {
            if (!m_tableView->selectionModel()->hasSelection())
                m_picture.setHint(hint());
        });
}

void LargeFilesWindowController::makeMenu()
{
    m_menu = new QMenu(m_tableView);
    connect(m_menu->addAction(tr("Show in the file manager")), &QAction::triggered, this,
            &LargeFilesWindowController::showInFinder);
    m_tableView->setMenu(m_menu);
}

void LargeFilesWindowController::connectButtons()
{
    m_addButton = outlet<TextButton>(*window(), "addButton");
    m_cancelButton = outlet<TextButton>(*window(), "cancelButton");
    for (TextButton *const button : {m_addButton, m_cancelButton})
        connect(button, &QAbstractButton::clicked, this, [this, button] { dismissPanel(button); });
    connect(&m_array, &LargeFileList::sizeStringChanged, this,
            &LargeFilesWindowController::showTotal);
}

void LargeFilesWindowController::connectSearch()
{
    connect(&m_search, &SearchJob::searching, this, [this](const FileUrl &folder) {
        m_status.searching(folder);
        showStatus();
    });
    connect(&m_search, &SearchJob::unreadable, this, [this](const UnreadablePlace &place) {
        if (place.isOnAnotherDisk())
            m_status.onAnotherDisk(place.url);
        else
            m_status.unreadable(place.url);
        showStatus();
    });
    const auto end = [this](bool ranToItsEnd) {
        m_status.end(ranToItsEnd);
        showStatus();
    };
    connect(&m_search, &SearchJob::finished, this, [end](const SearchReport &) { end(true); });
    connect(&m_search, &SearchJob::stopped, this, [end] { end(false); });
}

void LargeFilesWindowController::refreshData()
{
    window();
    reloadLabels();
    m_status.begin();
    showStatus();
    m_array.refreshSizes();
    m_search.beginSearch(m_searchURLs, m_services.defaults.strings(VNTExcludedPathsString));
}

void LargeFilesWindowController::deleteData()
{
    m_array.deleteData();
    m_status = {};
    showStatus();
    if (isWindowLoaded())
        reloadLabels();
}

void LargeFilesWindowController::reloadLabels()
{
    m_cellView->setUnaddedAttributes(titleStyle(kRowTitleSize, kBlue));
    m_cellView->setAddedAttributes(titleStyle(kRowTitleSize, Qt::white));
    m_cancelButton->setAttributedTitle(
        {withText(titleStyle(kButtonTitleSize, kBlue), tr("Cancel"))});
    m_addButton->setAttributedTitle(
        {withText(titleStyle(kButtonTitleSize, kGreen), tr("Add %1").arg(sizeString()))});
}

/// Keeps the style that the title has.
void LargeFilesWindowController::showTotal()
{
    const TextRun *const style = m_addButton->attributedTitle().firstRun();
    m_addButton->setAttributedTitle(
        {withText(style ? *style : TextRun(), tr("Add %1").arg(sizeString()))});
}

void LargeFilesWindowController::showStatus()
{
    if (!isWindowLoaded())
        return;
    m_statusLabel->setText(m_status.text(m_array.rowCount()));
    m_statusLabel->setToolTip(plainToolTip(m_status.details()));
    m_statusLabel->setAccessibleDescription(m_status.details()); // or it would be the markup
    m_tableView->setEmptyText(m_status.emptyText());
}

void LargeFilesWindowController::tableViewSelectionDidChange()
{
    const int row = selectedRow(*m_tableView);
    if (row < 0)
        m_picture.showNothing(hint());
    else
        m_picture.showFile(m_array.fileAt(row));
    m_preview.selectionDidChange();
}

/// What the user can do while no file is selected.
QString LargeFilesWindowController::hint() const
{
    return m_array.rowCount() > 0 ? tr("Click a size to pick the file.\n\n"
                                       "Select a file and press the space bar to look inside.")
                                  : QString();
}

void LargeFilesWindowController::addButtonPressed(int row)
{
    m_array.toggle(row);
}

/// Treats all of them the same way: picks them, or drops them when all are picked.
void LargeFilesWindowController::toggleSelectedRows()
{
    const QList<int> rows = m_tableView->selectedRows();
    const bool allAreAdded = std::all_of(rows.begin(), rows.end(),
                                         [this](int row) { return m_array.fileAt(row).isAdded(); });
    m_array.setAdded(rows, !allAreAdded);
}

void LargeFilesWindowController::dismissPanel(QAbstractButton *sender)
{
    if (sender == m_cancelButton)
        m_array.dropPicks();
    m_search.stop(); // the next opening searches anew
    m_preview.close();
    reloadLabels();
    endSheet(*window(), sender == m_cancelButton ? kSheetCancelled : kSheetAccepted);
}

void LargeFilesWindowController::cancel()
{
    dismissPanel(m_cancelButton);
}

void LargeFilesWindowController::showInFinder()
{
    const auto index = m_menu->actions().constFirst()->data().value<QPersistentModelIndex>();
    if (index.isValid())
        m_services.workspace.activateFileViewerSelectingUrls(
            {m_array.fileAt(index.row()).fileURL()});
}
