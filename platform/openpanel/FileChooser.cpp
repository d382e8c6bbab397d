#include "platform/openpanel/FileChooser.h"

#include "platform/look/FileIcons.h"
#include "platform/look/Fonts.h"
#include "platform/openpanel/ChooserItems.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QSignalBlocker>
#include <QSplitter>
#include <QToolButton>
#include <QTreeView>

namespace {

constexpr int kFontSize = 13;
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

/// What a person may type: from the home folder, from the root, or from the folder shown.
QString typedPath(const QString &typed, const QDir &folder)
{
    if (typed == QLatin1String("~"))
        return QDir::homePath();
    if (typed.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + typed.mid(1));
    return QDir::cleanPath(folder.absoluteFilePath(typed));
}

/// The letter may need any key to be held that makes letters, but with one that makes commands it
/// is none.
bool beginsAPath(const QKeyEvent &key)
{
    constexpr auto kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString text = key.text();
    return (key.modifiers() & kCommands) == 0 &&
           (text == QLatin1String("/") || text == QLatin1String("~"));
}

} // namespace

/// Told the folder at once, because it would else begin with the program's own, list and watch it.
FileChooser::FileChooser(const OpenPanel &panel, const QString &start, FileIcons &icons,
                         QWidget *parent)
    : QFileDialog(parent, QString(), start), m_items(new ChooserItems(panel.shouldEnable, this))
{
    setOption(DontUseNativeDialog);
    setOption(ReadOnly);
    setOption(DontUseCustomDirectoryIcons);
    setOption(ShowDirsOnly, panel.choice == OpenPanelChoice::Folders);
    setFileMode(Directory); // files are shown too, unless folders alone are wanted
    setViewMode(Detail);
    setWindowFlags(Qt::Widget);
    setFont(interfaceFont(Typeface::Regular, kFontSize));
    setIconProvider(&icons);
    setDirectory(start);
    setProxyModel(m_items);
    findParts();
    hideSpareParts();
    setUpBar();
    setUpPlaces();
    setUpList();
    setUpButtons();
    followChoice();
    followReading();
    clearChoice();
    setStyleSheet(QLatin1String(kStyle));
}

void FileChooser::findParts()
{
    m_list = findChild<QTreeView *>(QStringLiteral("treeView"));
    m_places = findChild<QListView *>(QStringLiteral("sidebar"));
    m_name = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    m_toParent = findChild<QToolButton *>(QStringLiteral("toParentButton"));
    if (!m_list || !m_places || !m_name || !m_toParent)
        qFatal("the toolkit's file dialog is not made as it was");
}

void FileChooser::hideSpareParts()
{
    for (const char *name : {"lookInLabel", "newFolderButton", "listModeButton", "detailModeButton",
                             "fileTypeLabel", "fileTypeCombo", "buttonBox"}) {
        if (auto *const part = findChild<QWidget *>(QLatin1String(name)))
            part->hide();
    }
    setSizeGripEnabled(false);
    setLabelText(FileName, QStringLiteral("Name:"));
}

/// The way back, forth and up stands at the left of the path, and both above all the rest.
void FileChooser::setUpBar()
{
    auto *const grid = qobject_cast<QGridLayout *>(layout());
    QLayoutItem *const bar = grid->itemAtPosition(0, 1);
    auto *const row = qobject_cast<QHBoxLayout *>(bar->layout());
    grid->removeItem(bar);
    grid->addLayout(row, 0, 0, 1, -1);
    grid->setContentsMargins({});
    int line = 0;
    int at = 0;
    int rows = 0;
    int columns = 0;
    grid->getItemPosition(grid->indexOf(m_name), &line, &at, &rows, &columns);
    grid->removeWidget(m_name);
    grid->addWidget(m_name, line, at, 1, -1); // over where the buttons were
    grid->setColumnStretch(at, 1);
    int place = 0;
    for (const char *name : {"backButton", "forwardButton", "toParentButton"}) {
        auto *const button = findChild<QToolButton *>(QLatin1String(name));
        row->removeWidget(button);
        row->insertWidget(place++, button);
    }
}

void FileChooser::setUpPlaces()
{
    offerPlaces({});
    m_places->setContextMenuPolicy(Qt::NoContextMenu);
    m_places->setAcceptDrops(false);
    m_places->setDragEnabled(false);
    m_places->setIconSize(kIconSize);
    m_places->setAccessibleName(QStringLiteral("Places"));
    findChild<QSplitter *>(QStringLiteral("splitter"))->setSizes({kPlacesWidth, width()});
}

void FileChooser::offerPlaces(const QList<QUrl> &places)
{
    setSidebarUrls(places + QList<QUrl>{QUrl(QStringLiteral("file:"))});
}

void FileChooser::setUpList()
{
    QHeaderView &header = *m_list->header();
    header.setStretchLastSection(false);
    header.setSectionResizeMode(QHeaderView::Fixed);
    header.setSectionResizeMode(ChooserItems::Name, QHeaderView::Stretch);
    header.resizeSection(ChooserItems::Size, kSizeWidth);
    header.resizeSection(ChooserItems::Date, kDateWidth);
    header.hideSection(ChooserItems::Type);
    header.setContextMenuPolicy(Qt::NoContextMenu);
    m_list->setContextMenuPolicy(Qt::NoContextMenu);
    m_list->setDragEnabled(false);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setAccessibleName(QStringLiteral("Files and folders"));
    m_list->setIconSize(kIconSize);
    m_list->installEventFilter(this);
}

void FileChooser::setUpButtons()
{
    const struct
    {
        const char *name;
        const char *image;
    } buttons[] = {
        {"backButton", "goBack"}, {"forwardButton", "goForward"}, {"toParentButton", "goUp"}};
    for (const auto &button : buttons) {
        auto *const made = findChild<QToolButton *>(QLatin1String(button.name));
        made->setIcon(iconNamed(QLatin1String(button.image)));
        made->setFocusPolicy(Qt::TabFocus);
        made->setIconSize(kNavigationIcon);
        made->setFixedSize(kNavigationButton);
    }
    auto *const hidden = new QAction(QStringLiteral("Show hidden items"), this);
    hidden->setShortcut(QKeySequence(QStringLiteral("Ctrl+H")));
    hidden->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(hidden, &QAction::triggered, this, &FileChooser::toggleHidden);
    addAction(hidden);
}

void FileChooser::followChoice()
{
    connect(m_name, &QLineEdit::textEdited, this, [this] {
        m_isTyped = true;
        Q_EMIT chosenPathChanged();
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        // While a name is being typed the dialog selects what might be meant.
        m_isTyped = m_isTyped && m_name->hasFocus();
        Q_EMIT chosenPathChanged();
    });
    connect(this, &QFileDialog::directoryEntered, this, &FileChooser::clearChoice);
}

void FileChooser::followReading()
{
    m_unread.insert(directory().absolutePath());
    connect(this, &QFileDialog::directoryEntered, this, [this](const QString &path) {
        if (const QString folder = QDir::cleanPath(path); !m_read.contains(folder))
            m_unread.insert(folder);
    });
    const auto *const files = qobject_cast<QFileSystemModel *>(m_items->sourceModel());
    connect(files, &QFileSystemModel::directoryLoaded, this, [this](const QString &path) {
        m_read.insert(QDir::cleanPath(path));
        if (m_unread.remove(QDir::cleanPath(path)) && m_unread.isEmpty())
            Q_EMIT hasRead();
    });
}

void FileChooser::retire()
{
    hide();
    setParent(nullptr);
    m_items->dropRule();
}

/// Then the folder that is shown is the choice, and the empty field says so.
void FileChooser::clearChoice()
{
    m_isTyped = false;
    const QSignalBlocker quiet(
        m_name); // else the dialog takes the folder's own name for a typed one
    m_name->clear();
    m_name->setPlaceholderText(directory().dirName());
    m_list->clearSelection();
    Q_EMIT chosenPathChanged();
}

void FileChooser::focusList()
{
    m_list->setFocus(Qt::OtherFocusReason);
}

void FileChooser::enter(const QString &folder)
{
    setDirectory(folder);
    clearChoice();
}

QString FileChooser::chosenPath() const
{
    if (m_isTyped && !m_name->text().trimmed().isEmpty())
        return typedPath(m_name->text(), directory());
    // Not by the text of the name: a line of text shows a line break, for one, as a blank.
    const QModelIndexList rows = m_list->selectionModel()->selectedRows();
    const QString selected =
        rows.isEmpty() ? QString()
                       : rows.constFirst().data(QFileSystemModel::FilePathRole).toString();
    return selected.isEmpty() ? directory().absolutePath() : selected;
}

void FileChooser::keyPressEvent(QKeyEvent *event)
{
    event->ignore(); // Enter and Escape are the sheet's
}

bool FileChooser::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        auto *const key = static_cast<QKeyEvent *>(event);
        if ((key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && pressListKey(key->key()))
            return true;
        if (beginsAPath(*key))
            return typeIntoName(*key);
    }
    return QFileDialog::eventFilter(watched, event);
}

/// Nothing in a list is called so: whoever types it means to write a path.
bool FileChooser::typeIntoName(QKeyEvent &key)
{
    m_name->clear();
    m_name->setFocus(Qt::ShortcutFocusReason);
    QKeyEvent forwarded(key.type(), key.key(), key.modifiers(), key.text());
    return QCoreApplication::sendEvent(m_name, &forwarded);
}

bool FileChooser::pressListKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT chosen();
        return true;
    case Qt::Key_Right:
        if (const QModelIndex current = m_list->currentIndex();
            current.isValid() && current.model()->hasChildren(current))
            Q_EMIT m_list->activated(current);
        return true;
    case Qt::Key_Down:
        return selectFirst();
    case Qt::Key_Left:
    case Qt::Key_Backspace:
        m_toParent->click();
        return true;
    default:
        return false;
    }
}

/// The list has a current item before anything is selected, and would go on from there.
bool FileChooser::selectFirst()
{
    if (m_list->selectionModel()->hasSelection())
        return false;
    m_list->setCurrentIndex(m_list->model()->index(0, 0, m_list->rootIndex()));
    return true;
}

void FileChooser::toggleHidden()
{
    setFilter(filter() ^ QDir::Hidden);
}
