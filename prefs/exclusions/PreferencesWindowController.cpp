#include "prefs/exclusions/PreferencesWindowController.h"

#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/openpanel/OpenPanel.h"
#include "platform/sheet/Alert.h"
#include "prefs/exclusions/ExcludedFilesView.h"
#include "prefs/window/ColorWindow.h"

#include <QAbstractButton>
#include <QEvent>
#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <algorithm>

PreferencesWindowController::PreferencesWindowController(const InterfaceLoader &loader,
                                                         Services services, QObject *parent)
    : WindowController(loader, parent),
      m_services(std::move(services)),
      m_toView(m_services.calls, m_services.access),
      m_model(m_toView)
{
}

void PreferencesWindowController::windowDidLoad()
{
    connectOutlets();
    addKeys();
    showDamage();
    // Otherwise the program would go on without its main window.
    window()->setAttribute(Qt::WA_QuitOnClose, false);
    window()->installEventFilter(this);
    if (m_services.defaults.contains(VNTExcludedPathsString))
        m_model.setStoredStrings(m_services.defaults.strings(VNTExcludedPathsString));
    // The list is written as a whole: it must hold what another program has added.
    connect(&m_services.defaults, &UserDefaults::exclusionsFound, this, [this] {
        m_model.setStoredStrings(m_services.defaults.strings(VNTExcludedPathsString));
    });
}

void PreferencesWindowController::connectOutlets()
{
    QWidget &interface = *window();
    outlet<ColorWindow>(interface, "PreferencesWindowController")
        ->titleField()
        ->setText(interface.windowTitle());
    m_tableView = outlet<ExcludedFilesView>(interface, "tableView");
    connect(&m_model, &ExcludedFilesModel::storedStringsChanged, this,
            &PreferencesWindowController::saveURLs);
    m_removeButton = outlet<QAbstractButton>(interface, "removeButton");
    m_tableView->setModel(&m_model);
    m_tableView->setRule([this](const QByteArray &path) { return shouldEnable(path); });
    connect(m_tableView, &ExcludedFilesView::pathsDropped, this,
            &PreferencesWindowController::addPaths);
    connect(m_tableView, &ExcludedFilesView::removalRequested, this,
            &PreferencesWindowController::remove);
    connect(outlet<QAbstractButton>(interface, "addButton"), &QAbstractButton::clicked, this,
            &PreferencesWindowController::add);
    connect(m_removeButton, &QAbstractButton::clicked, this, &PreferencesWindowController::remove);
    const auto updateButton = [this] {
        m_removeButton->setEnabled(m_tableView->selectionModel()->hasSelection());
    };
    connect(m_tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            updateButton);
    connect(&m_model, &QAbstractItemModel::modelReset, this, updateButton);
    updateButton();
}

void PreferencesWindowController::addKeys()
{
    for (const QKeySequence &key :
         {QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)})
        connect(new QShortcut(key, window()), &QShortcut::activated, window(), &QWidget::close);
}

/// While it is unknown what the user wants excluded, the list asks the user to look at it.
void PreferencesWindowController::showDamage()
{
    QWidget &interface = *window();
    auto *banner = outlet<QWidget>(interface, "damageBanner");
    outlet<QLabel>(interface, "damageLabel")->setText(m_services.defaults.damageMessage());
    banner->setVisible(!m_services.defaults.exclusionsAreKnown());
    connect(outlet<QAbstractButton>(interface, "confirmButton"), &QAbstractButton::clicked, this,
            [this] { m_services.defaults.confirmExclusions(); });
    connect(&m_services.defaults, &UserDefaults::exclusionsKnownChanged, banner,
            [banner](bool isKnown) { banner->setVisible(!isKnown); });
}

bool PreferencesWindowController::eventFilter(QObject *watched, QEvent *event)
{
    // Files come and go while the window is away.
    if (event->type() == QEvent::Show)
        m_model.lookAgain();
    return WindowController::eventFilter(watched, event);
}

QList<std::shared_ptr<File>> PreferencesWindowController::array() const
{
    QList<std::shared_ptr<File>> files;
    for (int row = 0; row < m_model.rowCount(); ++row)
        files.append(m_model.fileAt(row));
    return files;
}

void PreferencesWindowController::add()
{
    OpenPanel panel;
    // The panel outlives the window it is up over by a moment.
    panel.shouldEnable = [this, host = QPointer<QWidget>(window())](const QByteArray &path) {
        return !host.isNull() && shouldEnable(path);
    };
    panel.prompt = tr("Choose a file or folder that Vantor must never touch.");
    panel.title = tr("Add");
    presentOpenPanel(*window(), panel, [this](const std::optional<QByteArray> &path) {
        if (path)
            addPaths({*path});
        else
            saveURLs();
    });
}

void PreferencesWindowController::addPaths(const QList<QByteArray> &paths)
{
    QList<QByteArray> wanted = paths;
    const auto refused =
        std::stable_partition(wanted.begin(), wanted.end(),
                              [this](const QByteArray &path) { return shouldEnable(path); });
    tellRefused(QList<QByteArray>(refused, wanted.end()));
    wanted.erase(refused, wanted.end());
    m_model.appendPaths(wanted);
    saveURLs();
}

void PreferencesWindowController::tellRefused(const QList<QByteArray> &paths)
{
    if (paths.isEmpty())
        return;
    QStringList names;
    for (const QByteArray &path : paths)
        names.append(QString::fromUtf8(path));
    presentAlert(*window(),
                 {.style = AlertStyle::Informational,
                  .messageText = tr("Only what lies in your home folder can be excluded."),
                  .informativeText = tr("Not added:\n%1").arg(names.join(QLatin1Char('\n')))});
}

void PreferencesWindowController::remove()
{
    const QList<int> rows = m_tableView->selectedRows();
    if (rows.isEmpty())
        return;
    const int first = *std::min_element(rows.begin(), rows.end());
    m_model.remove(rows);
    m_tableView->clearSelection();
    m_tableView->selectRow(first); // none, if that was the last row
    saveURLs();
}

void PreferencesWindowController::saveURLs()
{
    m_services.defaults.setStrings(VNTExcludedPathsString, excludedPaths());
    m_services.notification.post();
}

bool PreferencesWindowController::shouldEnable(const QByteArray &path) const
{
    return path.contains(m_homeFolder.path());
}
