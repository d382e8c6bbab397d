#include "app/pages/FolderSelectViewController.h"

#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/base/Log.h"
#include "platform/base/LogText.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/files/FileUrl.h"
#include "platform/files/FolderGrant.h"
#include "platform/look/Pace.h"
#include "platform/openpanel/OpenPanel.h"
#include "platform/sheet/Alert.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageView.h"

#include <QDir>
#include <cerrno>
#include <system_error>

namespace {

QByteArray lastComponent(const QByteArray &path)
{
    return FileUrl::fromPath(path, FileUrlKind::Folder).lastPathComponent();
}

QString textOf(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

} // namespace

FolderSelectViewController::FolderSelectViewController(const InterfaceLoader &loader,
                                                       Services services, QObject *parent)
    : VNTViewController(loader, parent), m_services(std::move(services))
{
    m_forwardTimer.setSingleShot(true);
    m_forwardTimer.setTimerType(Qt::PreciseTimer); // a coarse one may fire before its time
    m_forwardTimer.setInterval(paced(kPauseBeforeNextPage));
    connect(&m_forwardTimer, &QTimer::timeout, this,
            &FolderSelectViewController::goForwardIfGranted);
}

void FolderSelectViewController::viewDidLoad()
{
    m_homeButton = outlet<ImageButton>(*view(), "homeButton");
    m_homeCheck = outlet<ImageView>(*view(), "homeCheck");
    m_homeButton->setImageName(QStringLiteral("welcomeHome"));
    m_homeCheck->setImageName(QStringLiteral("welcomeCheck"));
    connect(m_homeButton, &ImageButton::clicked, this,
            &FolderSelectViewController::selectHomeFolder);
    updateUI();
}

void FolderSelectViewController::viewWillAppear(bool)
{
    m_granting.stop();
}

void FolderSelectViewController::viewDidAppear(bool)
{
    updateUI(); // a page shown again with a grant moves on again
    m_homeButton->setFocus(Qt::OtherFocusReason);
}

void FolderSelectViewController::selectHomeFolder()
{
    runSelectionPanelForFolderString(VNTHomeFolderString);
}

void FolderSelectViewController::runSelectionPanelForFolderString(const QString &key)
{
    qCInfo(logVantor, "%s", logText(lastComponent(m_services.realHomeDirectory())).constData());
    m_forwardTimer.stop(); // the page must not move on beneath the panel
    OpenPanel panel;
    panel.choice = OpenPanelChoice::Folders;
    panel.startFolder = URLForFolderString(key).value_or(QByteArray());
    panel.prompt = tr("Choose your home folder.");
    panel.title = tr("Choose");
    presentOpenPanel(*view(), panel, [this, key](const std::optional<QByteArray> &path) {
        finishSelection(key, path);
    });
}

std::optional<QByteArray> FolderSelectViewController::URLForFolderString(const QString &key)
{
    if (key == VNTApplicationFolderString)
        return QByteArrayLiteral("/Applications");
    if (key == VNTHomeFolderString)
        return QFile::encodeName(QDir::homePath());
    return std::nullopt;
}

void FolderSelectViewController::finishSelection(const QString &key,
                                                 const std::optional<QByteArray> &path)
{
    if (path && key == VNTHomeFolderString && isNamedLikeTheRealHome(*path))
        grant(key, *path);
    else
        updateUI(); // with an earlier grant it moves on
}

bool FolderSelectViewController::isNamedLikeTheRealHome(const QByteArray &path) const
{
    const QByteArray name = lastComponent(m_services.realHomeDirectory());
    return !name.isEmpty() && lastComponent(path).contains(name);
}

void FolderSelectViewController::grant(const QString &key, const QByteArray &path)
{
    m_granting.run([this, &calls = m_services.calls, key, path](const std::stop_token &) {
        return [this, key, path, grant = makeGrant(calls, path)] {
            if (grant)
                storeGrant(key, *grant);
            else
                showGrantError(path, grant.error());
        };
    });
}

void FolderSelectViewController::storeGrant(const QString &key, const QByteArray &grant)
{
    m_services.defaults.setData(key, grant);
    updateUI();
}

void FolderSelectViewController::showGrantError(const QByteArray &path, int error)
{
    const QString text = error == EPERM ? tr("Vantor may not work in this folder.") : textOf(error);
    qCInfo(logVantor).noquote() << QStringLiteral("Error: %1").arg(text);
    presentAlert(
        *view(),
        {.style = AlertStyle::Warning,
         .messageText =
             tr("The folder “%1” could not be used.").arg(QString::fromUtf8(lastComponent(path))),
         .informativeText = text},
        [this](int) { updateUI(); });
}

void FolderSelectViewController::updateUI()
{
    if (m_services.defaults.isStored(VNTHomeFolderString)) {
        m_homeButton->setImageName(QStringLiteral("welcomeHomeGreen"));
        m_homeCheck->setImageName(QStringLiteral("welcomeCheckGreen"));
    }
    if (m_services.defaults.hasInitializedFolders() && delegate())
        m_forwardTimer.start();
}

void FolderSelectViewController::goForwardIfGranted()
{
    // The grant may have been taken back within the pause.
    if (m_services.defaults.hasInitializedFolders())
        goForward();
}

void FolderSelectViewController::viewWillDisappear(bool)
{
    m_forwardTimer.stop();
    m_granting.stop();
}
