#include "tests/support/page/PageFixture.h"

#include "app/InterfaceClasses.h"
#include "app/settings/SettingsKeys.h"
#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemResult.h"
#include "tests/support/page/ResourceManagerReset.h"

#include <QFile>
#include <QFileInfo>

bool RecordingWorkspace::openUrl(const QUrl &url)
{
    opened.append(url);
    return works;
}

void RecordingWorkspace::activateFileViewerSelectingUrls(const FileUrls &urls)
{
    revealed.append(urls);
}

PageFixture::PageFixture(HomeKind kind)
{
    m_folder.makeFolder(kind == HomeKind::Library ? "anna/Library/Caches" : "anna");
    registerInterfaceClasses(m_loader);
    m_defaults = std::make_unique<UserDefaults>(QFile::decodeName(m_folder.path("settings")),
                                                hostSystemCalls());
    m_defaults->registerDefaults(registeredDefaults());
    beginRun(hostSystemCalls());
}

PageFixture::~PageFixture()
{
    ResourceManagerReset::beginRun();
}

void PageFixture::beginRun(const SystemCalls &calls)
{
    const auto stored = [this]() -> std::optional<QByteArray> {
        if (!m_defaults->isStored(VNTHomeFolderString))
            return std::nullopt;
        return m_defaults->data(VNTHomeFolderString);
    };
    ResourceManagerReset::beginRun(stored, calls);
}

QByteArray PageFixture::makeFile(const QByteArray &relativePath, qint64 size)
{
    makeFolder(relativePath.left(qMax<qsizetype>(relativePath.lastIndexOf('/'), 0)));
    return m_folder.makeFile("anna/" + relativePath, size);
}

QByteArray PageFixture::makeFolder(const QByteArray &relativePath)
{
    return m_folder.makeFolder("anna/" + relativePath);
}

bool PageFixture::exists(const QByteArray &relativePath) const
{
    const QFileInfo info(QFile::decodeName(home() + '/' + relativePath));
    return info.exists() || info.isSymLink();
}

void PageFixture::grantHome()
{
    const SystemResult<QByteArray> grant = makeGrant(hostSystemCalls(), home());
    if (!grant)
        qFatal("the made home could not be granted: %d", grant.error());
    m_defaults->setData(VNTHomeFolderString, *grant);
}

LabelController::Reader PageFixture::madeVolume()
{
    return [] { return VolumeSizes{1000, 250}; };
}
