#pragma once

#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "slices/home/HomeLayout.h"
#include "tests/support/disk/ScratchFolder.h"
#include "widgets/LabelController.h"

#include <memory>

class SystemCalls;

/// A workspace that opens nothing and remembers what it was asked for.
class RecordingWorkspace final : public Workspace
{
    Q_OBJECT

public:
    using Workspace::openUrl;
    bool openUrl(const QUrl &url) override;
    void activateFileViewerSelectingUrls(const FileUrls &urls) override;

    QList<QUrl> opened;
    QList<FileUrls> revealed;
    bool works = true; ///< what openUrl() answers
};

/// A made home folder, empty settings and the interface descriptions: what a page stands on. Begins
/// another run of the program as far as the home-folder grant goes.
class PageFixture final
{
public:
    explicit PageFixture(HomeKind kind = HomeKind::Library);
    ~PageFixture();

    QByteArray home() const { return m_folder.path("anna"); }
    FileUrl homeUrl() const { return FileUrl::fromPath(home(), FileUrlKind::Folder); }
    ScratchFolder &folder() { return m_folder; }

    /// Below the home. Folders on the way are made.
    QByteArray makeFile(const QByteArray &relativePath, qint64 size);
    QByteArray makeFolder(const QByteArray &relativePath);
    bool exists(const QByteArray &relativePath) const;

    /// Begins yet another run, in which the granted folder is found by these calls.
    void beginRun(const SystemCalls &calls);

    /// Stores the grant of the made home, as the first page does.
    void grantHome();

    UserDefaults &defaults() { return *m_defaults; }
    const InterfaceLoader &loader() const { return m_loader; }
    RecordingWorkspace &workspace() { return m_workspace; }

    /// 1000 bytes of which 250 are free.
    static LabelController::Reader madeVolume();

private:
    ScratchFolder m_folder;
    InterfaceLoader m_loader;
    std::unique_ptr<UserDefaults> m_defaults;
    RecordingWorkspace m_workspace;
};
