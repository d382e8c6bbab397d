#pragma once

#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/desktop/Workspace.h"
#include "slices/home/HomeLayout.h"
#include "tests/support/disk/ScratchFolder.h"
#include "widgets/LabelController.h"

#include <memory>

class SystemCalls;

/// A workspace that opens nothing and records what it was asked to open.
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

/// What a page needs: a made home folder, empty settings and the interface descriptions. For the
/// grant of the home folder it begins another run of the program.
class PageFixture final
{
public:
    explicit PageFixture(HomeKind kind = HomeKind::Library);
    ~PageFixture();

    QByteArray home() const { return m_folder.path("anna"); }
    FileUrl homeUrl() const { return FileUrl::fromPath(home(), FileUrlKind::Folder); }
    ScratchFolder &folder() { return m_folder; }

    /// Makes a file below the home, and the folders on the way.
    QByteArray makeFile(const QByteArray &relativePath, qint64 size);
    QByteArray makeFolder(const QByteArray &relativePath);
    bool exists(const QByteArray &relativePath) const;

    /// Begins one more run, in which these calls find the granted folder.
    void beginRun(const SystemCalls &calls);

    /// Stores the grant of the made home, as the first page does.
    void grantHome();

    UserDefaults &defaults() { return *m_defaults; }
    const InterfaceLoader &loader() const { return m_loader; }
    RecordingWorkspace &workspace() { return m_workspace; }

    /// A volume of 1000 bytes, of which 250 are free.
    static LabelController::Reader madeVolume();

private:
    ScratchFolder m_folder;
    InterfaceLoader m_loader;
    std::unique_ptr<UserDefaults> m_defaults;
    RecordingWorkspace m_workspace;
};
