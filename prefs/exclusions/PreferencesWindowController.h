#pragma once

#include "app/navigation/WindowController.h"
#include "prefs/exclusions/ExcludedFilesModel.h"

class ExcludedFilesChangedNotification;
class ExcludedFilesView;
class QAbstractButton;
class SystemCalls;
class UserDefaults;

/// The preferences: one list, the files and folders that cleaning must never touch. Every change is
/// written to the settings at once and announced. Made once and shown again. Main thread only.
class PreferencesWindowController final : public WindowController
{
    Q_OBJECT

public:
    /// What it works with; all must outlive it.
    struct Services
    {
        UserDefaults &defaults;
        const SystemCalls &calls;
        /// The granted folder's access; null while nothing usable is granted. Asked off the main
        /// thread.
        FileToView::AccessSource access;
        ExcludedFilesChangedNotification &notification;
    };

    PreferencesWindowController(const InterfaceLoader &loader, Services services,
                                QObject *parent = nullptr);

    /// The entries, in the order added.
    QList<std::shared_ptr<File>> array() const;
    ExcludedFilesView *tableView() const { return m_tableView; }

    /// The folder inside which entries may be chosen. While there is none, all entries may be
    /// chosen: an exclusion can do no harm.
    FileUrl homeFolder() const { return m_homeFolder; }
    void setHomeFolder(const FileUrl &folder) { m_homeFolder = folder; }

    /// The entries as the settings keep them, in order, duplicates kept.
    QStringList excludedPaths() const { return m_model.storedStrings(); }

    /// Writes the entries to the settings and tells the observers, who have run on return.
    void saveURLs();

    /// Whether an item may be chosen: its path contains the home folder's path, anywhere.
    bool shouldEnable(const QByteArray &path) const;

public Q_SLOTS:
    /// Lets the user choose one file or folder. A panel that is cancelled saves too.
    void add();
    /// Removes the selected entries.
    void remove();
    /// Adds those of the paths that may be chosen, and says which may not.
    void addPaths(const QList<QByteArray> &paths);

protected:
    void windowDidLoad() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectOutlets();
    void addKeys();
    void showDamage();
    void tellRefused(const QList<QByteArray> &paths);

    Services m_services;
    FileToView m_toView;
    ExcludedFilesModel m_model;
    FileUrl m_homeFolder;
    ExcludedFilesView *m_tableView = nullptr;
    QAbstractButton *m_removeButton = nullptr;
};
