#include "platform/openpanel/FileChooser.h"

#include "platform/look/FileIcons.h"
#include "platform/look/Fonts.h"
#include "platform/openpanel/ChooserItems.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>
#include <QTreeView>

namespace {

constexpr int kFontSize = 13;
/// The path that a user typed: it may start at the home folder, at the root or at the folder shown.
QString typedPath(const QString &typed, const QDir &folder)
{
    if (typed == QLatin1String("~"))
        return QDir::homePath();
    if (typed.startsWith(QLatin1String("~/")))
        return QDir::cleanPath(QDir::homePath() + typed.mid(1));
    return QDir::cleanPath(folder.absoluteFilePath(typed));
}

/// The user may hold any key that letters need, such as Shift. With a key that makes commands, the
/// key is not a letter.
bool beginsAPath(const QKeyEvent &key)
{
    constexpr auto kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString text = key.text();
    return (key.modifiers() & kCommands) == 0 &&
           (text == QLatin1String("/") || text == QLatin1String("~"));
}

} // namespace

/// The dialog gets the folder in its constructor: otherwise it would list and watch the program's
/// working folder first.
FileChooser::FileChooser(const OpenPanel &panel, const QString &start, FileIcons &icons,
                         const DialogPartNames &partNames, QWidget *parent)
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
    m_parts = DialogParts::find(*this, partNames);
    offerPlaces({});
    addHiddenItemsKey();
    if (m_parts) {
        m_parts->arrange(*this);
        m_parts->list->installEventFilter(this);
        followParts();
    } else {
        followWholeDialog();
    }
    followReading();
    clearChoice();
}

void FileChooser::addHiddenItemsKey()
{
    auto *const hidden = new QAction(QStringLiteral("Show hidden items"), this);
    hidden->setShortcut(QKeySequence(QStringLiteral("Ctrl+H")));
    hidden->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(hidden, &QAction::triggered, this, &FileChooser::toggleHidden);
    addAction(hidden);
}

void FileChooser::offerPlaces(const QList<QUrl> &places)
{
    setSidebarUrls(places + QList<QUrl>{QUrl(QStringLiteral("file:"))});
}

void FileChooser::followParts()
{
    connect(m_parts->name, &QLineEdit::textEdited, this, [this] {
        m_isTyped = true;
        Q_EMIT chosenPathChanged();
    });
    connect(m_parts->list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        // While a name is being typed the dialog selects what might be meant.
        m_isTyped = m_isTyped && m_parts->name->hasFocus();
        Q_EMIT chosenPathChanged();
    });
    connect(this, &QFileDialog::directoryEntered, this, &FileChooser::clearChoice);
}

/// Finds the parts by their types, not by their names. Hides the dialog's own buttons, if there are
/// any, because the panel has its own.
void FileChooser::followWholeDialog()
{
    for (QDialogButtonBox *const buttons : findChildren<QDialogButtonBox *>())
        buttons->hide();
    setSizeGripEnabled(false);
    for (const QAbstractItemView *const view : findChildren<QAbstractItemView *>()) {
        if (view->model() == m_items)
            connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                    &FileChooser::chosenPathChanged);
    }
    for (const QLineEdit *const line : findChildren<QLineEdit *>())
        connect(line, &QLineEdit::textEdited, this, &FileChooser::chosenPathChanged);
    connect(this, &QFileDialog::directoryEntered, this, &FileChooser::chosenPathChanged);
}

void FileChooser::followReading()
{
    const auto *const files = qobject_cast<QFileSystemModel *>(m_items->sourceModel());
    if (!files)
        return; // nothing would tell when it ends
    m_unread.insert(directory().absolutePath());
    // It has no path: it is entered by its name or without any, and nothing tells that it was read.
    const QString computer = files->myComputer().toString();
    connect(this, &QFileDialog::directoryEntered, this, [this, computer](const QString &path) {
        const QString folder = QDir::cleanPath(path);
        if (!path.isEmpty() && path != computer && !m_read.contains(folder))
            m_unread.insert(folder);
    });
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

/// Without a choice the folder that is shown is the choice, and the empty name field shows its
/// name.
void FileChooser::clearChoice()
{
    m_isTyped = false;
    if (m_parts) {
        // Without signals: otherwise the dialog would take the folder's own name for a typed one.
        const QSignalBlocker quiet(m_parts->name);
        m_parts->name->clear();
        m_parts->name->setPlaceholderText(directory().dirName());
        m_parts->list->clearSelection();
    }
    Q_EMIT chosenPathChanged();
}

void FileChooser::focusList()
{
    if (m_parts)
        m_parts->list->setFocus(Qt::OtherFocusReason);
}

void FileChooser::enter(const QString &folder)
{
    setDirectory(folder);
    clearChoice();
}

QString FileChooser::chosenPath() const
{
    if (!m_parts)
        return selectedFiles().value(0, directory().absolutePath());
    if (m_isTyped && !m_parts->name->text().trimmed().isEmpty())
        return typedPath(m_parts->name->text(), directory());
    // The text of the name field is no help: it shows a line break, for example, as a blank.
    const QModelIndexList rows = m_parts->list->selectionModel()->selectedRows();
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
    if (m_parts && watched == m_parts->list && event->type() == QEvent::KeyPress) {
        auto *const key = static_cast<QKeyEvent *>(event);
        if ((key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && pressListKey(key->key()))
            return true;
        if (beginsAPath(*key))
            return typeIntoName(*key);
    }
    return QFileDialog::eventFilter(watched, event);
}

/// No name in a list begins like this, so the user wants to type a path.
bool FileChooser::typeIntoName(QKeyEvent &key)
{
    m_parts->name->clear();
    m_parts->name->setFocus(Qt::ShortcutFocusReason);
    QKeyEvent forwarded(key.type(), key.key(), key.modifiers(), key.text());
    return QCoreApplication::sendEvent(m_parts->name, &forwarded);
}

bool FileChooser::pressListKey(int key)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT chosen();
        return true;
    case Qt::Key_Right:
        if (const QModelIndex current = m_parts->list->currentIndex();
            current.isValid() && current.model()->hasChildren(current))
            Q_EMIT m_parts->list->activated(current);
        return true;
    case Qt::Key_Down:
        return selectFirst();
    case Qt::Key_Left:
    case Qt::Key_Backspace:
        m_parts->toParent->click();
        return true;
    default:
        return false;
    }
}

/// The list has a current item before anything is selected, and an arrow key would move on from
/// that item.
bool FileChooser::selectFirst()
{
    QTreeView &list = *m_parts->list;
    if (list.selectionModel()->hasSelection())
        return false;
    list.setCurrentIndex(list.model()->index(0, 0, list.rootIndex()));
    return true;
}

void FileChooser::toggleHidden()
{
    setFilter(filter() ^ QDir::Hidden);
}
