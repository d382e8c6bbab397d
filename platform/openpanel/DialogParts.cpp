#include "platform/openpanel/DialogParts.h"

#include "platform/base/Log.h"
#include "platform/look/FileIcons.h"
#include "platform/openpanel/ChooserItems.h"

#include <QCompleter>
#include <QFileDialog>
#include <QGridLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSplitter>
#include <QToolButton>
#include <QTreeView>

namespace {

constexpr QSize kIconSize(18, 18);
constexpr QSize kNavigationIcon(18, 18);
constexpr QSize kNavigationButton(30, 30);
constexpr int kPlacesWidth = 148;
constexpr int kSizeWidth = 90;
constexpr int kDateWidth = 168;

// Fusion's look, a little calmer and roomier.
constexpr char kStyle[] = R"(
    QTreeView, QListView {
        border: 1px solid rgba(0, 0, 0, 46); border-radius: 7px; background: palette(base);
        padding: 0 4px; outline: 0; selection-background-color: palette(highlight);
        selection-color: palette(highlighted-text); }
    QTreeView:focus, QListView:focus { border: 1px solid palette(highlight); }
    QTreeView::item, QListView::item { min-height: 26px; }
    QTreeView::item:selected, QListView::item:selected {
        background: palette(highlight); color: palette(highlighted-text); }
    QTreeView::item:selected:!active, QListView::item:selected:!active {
        background: rgba(21, 106, 202, 60); color: palette(text); }
    QListView { padding: 4px 2px; background: palette(alternate-base); }
    QHeaderView { background: transparent; }
    QHeaderView::section {
        background: transparent; border: 0; border-bottom: 1px solid rgba(0, 0, 0, 30);
        padding: 6px 4px; color: rgba(60, 66, 74, 200); }
    QLineEdit {
        border: 1px solid rgba(0, 0, 0, 60); border-radius: 6px; padding: 5px 8px;
        background: palette(base); selection-background-color: palette(highlight); }
    QLineEdit:focus { border: 2px solid palette(highlight); padding: 4px 7px; }
    QToolButton { border: 2px solid transparent; border-radius: 6px; padding: 4px; }
    QToolButton:hover { background: rgba(0, 0, 0, 18); }
    QToolButton:pressed { background: rgba(0, 0, 0, 36); }
    QToolButton:focus { border: 2px solid palette(highlight); }
)";

/// Looks for the parts of a dialog and remembers the first one that is missing.
class PartSearch final
{
public:
    explicit PartSearch(const QFileDialog &dialog) : m_dialog(dialog) {}

    template <class Part> Part *part(const QString &name)
    {
        return noted(m_dialog.findChild<Part *>(name), name);
    }
    template <class Layout> Layout *layout(QLayout *layout, const QString &what)
    {
        return noted(qobject_cast<Layout *>(layout), what);
    }

    const QString &missing() const { return m_missing; }

private:
    template <class Found> Found *noted(Found *found, const QString &name)
    {
        if (!found && m_missing.isEmpty())
            m_missing = name;
        return found;
    }

    const QFileDialog &m_dialog;
    QString m_missing;
};

/// The layout in which the dialog has the path and the buttons beside it.
QLayout *barOf(const QGridLayout *grid)
{
    QLayoutItem *const item = grid ? grid->itemAtPosition(0, 1) : nullptr;
    return item ? item->layout() : nullptr;
}

void hideSpareParts(const QFileDialog &dialog)
{
    for (const char *name : {"lookInLabel", "newFolderButton", "listModeButton", "detailModeButton",
                             "fileTypeLabel", "fileTypeCombo", "buttonBox"}) {
        if (auto *const part = dialog.findChild<QWidget *>(QLatin1String(name)))
            part->hide();
    }
}

} // namespace

std::optional<DialogParts> DialogParts::find(const QFileDialog &dialog,
                                             const DialogPartNames &names)
{
    PartSearch search(dialog);
    DialogParts parts;
    parts.list = search.part<QTreeView>(names.list);
    parts.places = search.part<QListView>(names.places);
    parts.name = search.part<QLineEdit>(names.name);
    parts.back = search.part<QToolButton>(names.back);
    parts.forward = search.part<QToolButton>(names.forward);
    parts.toParent = search.part<QToolButton>(names.toParent);
    parts.splitter = search.part<QSplitter>(names.splitter);
    parts.grid = search.layout<QGridLayout>(dialog.layout(), QStringLiteral("grid"));
    parts.bar = search.layout<QHBoxLayout>(barOf(parts.grid), QStringLiteral("bar"));
    if (search.missing().isEmpty())
        return parts;
    qCWarning(logVantor, "The file dialog has no part \"%s\" and is left as it is",
              qPrintable(search.missing()));
    return std::nullopt;
}

/// The menu of a scroll bar runs an event loop of its own, and the panel may end meanwhile.
void DialogParts::preventMenus(QAbstractItemView &view)
{
    view.setContextMenuPolicy(Qt::NoContextMenu);
    for (QScrollBar *const bar : {view.horizontalScrollBar(), view.verticalScrollBar()})
        bar->setContextMenuPolicy(Qt::PreventContextMenu);
}

void DialogParts::arrange(QFileDialog &dialog) const
{
    hideSpareParts(dialog);
    dialog.setSizeGripEnabled(false);
    dialog.setLabelText(QFileDialog::FileName, QStringLiteral("Name:"));
    arrangeBar();
    arrangePlaces(dialog.width());
    arrangeList();
    arrangeButtons();
    dialog.setStyleSheet(QLatin1String(kStyle));
}

/// The bar stands above all the rest, and the name reaches to the right edge.
void DialogParts::arrangeBar() const
{
    grid->removeItem(bar);
    grid->addLayout(bar, 0, 0, 1, -1);
    grid->setContentsMargins({});
    int line = 0;
    int at = 0;
    int rows = 0;
    int columns = 0;
    grid->getItemPosition(grid->indexOf(name), &line, &at, &rows, &columns);
    grid->removeWidget(name);
    grid->addWidget(name, line, at, 1, -1); // also where the buttons were
    grid->setColumnStretch(at, 1);
    if (QCompleter *const completer = name->completer())
        preventMenus(*completer->popup());
    int place = 0;
    for (QToolButton *const button : {back, forward, toParent}) {
        bar->removeWidget(button);
        bar->insertWidget(place++, button);
    }
}

void DialogParts::arrangePlaces(int width) const
{
    preventMenus(*places);
    places->setAcceptDrops(false);
    places->setDragEnabled(false);
    places->setIconSize(kIconSize);
    places->setAccessibleName(QStringLiteral("Places"));
    splitter->setSizes({kPlacesWidth, width});
}

void DialogParts::arrangeList() const
{
    QHeaderView &header = *list->header();
    header.setStretchLastSection(false);
    header.setSectionResizeMode(QHeaderView::Fixed);
    header.setSectionResizeMode(ChooserItems::Name, QHeaderView::Stretch);
    header.resizeSection(ChooserItems::Size, kSizeWidth);
    header.resizeSection(ChooserItems::Date, kDateWidth);
    header.hideSection(ChooserItems::Type);
    header.setContextMenuPolicy(Qt::NoContextMenu);
    preventMenus(*list);
    list->setDragEnabled(false);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setAccessibleName(QStringLiteral("Files and folders"));
    list->setIconSize(kIconSize);
}

void DialogParts::arrangeButtons() const
{
    const std::pair<QToolButton *, const char *> buttons[] = {
        {back, "goBack"}, {forward, "goForward"}, {toParent, "goUp"}};
    for (const auto &[button, image] : buttons) {
        button->setIcon(iconNamed(QLatin1String(image)));
        button->setFocusPolicy(Qt::TabFocus);
        button->setIconSize(kNavigationIcon);
        button->setFixedSize(kNavigationButton);
    }
}
