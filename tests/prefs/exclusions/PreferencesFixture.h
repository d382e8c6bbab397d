#pragma once

#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/system/HostSystemCalls.h"
#include "prefs/exclusions/ExcludedFilesView.h"
#include "prefs/exclusions/InterfaceClasses.h"
#include "prefs/exclusions/PreferencesWindowController.h"
#include "tests/prefs/exclusions/ScratchAccess.h"
#include "widgets/InterfaceClasses.h"

#include <QAbstractButton>
#include <QSignalSpy>

/// The preferences of a user whose granted home folder is a scratch folder that holds the folders
/// "Movies" (1.2 MB) and "Music" and the file "notes.txt".
class PreferencesFixture final
{
public:
    PreferencesFixture() : m_access(made(folder))
    {
        registerWidgetClasses(m_loader);
        registerPrefsClasses(m_loader);
        reopenSettings();
    }

    /// As the next start of the program finds them.
    void reopenSettings()
    {
        controller.reset();
        defaults.reset();
        defaults =
            std::make_unique<UserDefaults>(QString::fromUtf8(settings.path()), hostSystemCalls());
        controller = std::make_unique<PreferencesWindowController>(
            m_loader, PreferencesWindowController::Services{*defaults, hostSystemCalls(),
                                                            [this] { return &m_access; }, changed});
        controller->setHomeFolder(url(""));
    }

    FileUrl url(const QByteArray &relativePath, FileUrlKind kind = FileUrlKind::Folder) const
    {
        return FileUrl::fromPath(folder.path(relativePath), kind);
    }

    /// What the settings hold for such an entry.
    QString stored(const QByteArray &relativePath, FileUrlKind kind = FileUrlKind::Folder) const
    {
        return QString::fromLatin1(url(relativePath, kind).absoluteString());
    }

    QStringList setting() const { return defaults->strings(VNTExcludedPathsString); }

    QAbstractButton *button(const char *name)
    {
        return outlet<QAbstractButton>(*controller->window(), name);
    }

    QString text(int row, int column) const
    {
        return controller->tableView()->model()->index(row, column).data().toString();
    }

    ScratchAccess &access() { return m_access; }

    ScratchFolder folder;
    ScratchFolder settings;
    ExcludedFilesChangedNotification changed;
    std::unique_ptr<UserDefaults> defaults;

private:
    static const ScratchFolder &made(const ScratchFolder &place)
    {
        place.makeFolder("Movies");
        place.makeFile("Movies/a.mov", 1'200'000);
        place.makeFolder("Music");
        place.makeFile("notes.txt", 300);
        return place;
    }

    ScratchAccess m_access;
    InterfaceLoader m_loader;

public:
    std::unique_ptr<PreferencesWindowController> controller; ///< last: it uses the rest
};
