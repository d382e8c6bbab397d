#include "platform/desktop/Workspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>

namespace {

constexpr int kAnswerLimit = 3000; ///< milliseconds

QUrl urlOf(const FileUrl &url)
{
    return QUrl::fromEncoded(url.absoluteString());
}

QUrl folderOf(const FileUrl &url)
{
    const QByteArray path = url.path();
    return urlOf(FileUrl::fromPath(path.left(qMax<qsizetype>(path.lastIndexOf('/'), 1)),
                                   FileUrlKind::Folder));
}

QDBusMessage showItemsMessage(const FileUrls &urls)
{
    QStringList items;
    for (const FileUrl &url : urls)
        items.append(QString::fromLatin1(url.absoluteString()));
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    message.setArguments({items, QString()});
    return message;
}

} // namespace

bool Workspace::openUrl(const QUrl &url)
{
    return QDesktopServices::openUrl(url);
}

bool Workspace::openUrl(const FileUrl &url)
{
    return openUrl(urlOf(url));
}

void Workspace::activateFileViewerSelectingUrls(const FileUrls &urls)
{
    if (urls.isEmpty())
        return;
    const QDBusPendingCall call =
        QDBusConnection::sessionBus().asyncCall(showItemsMessage(urls), kAnswerLimit);
    auto *watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, folder = folderOf(urls.constFirst())] {
                if (watcher->isError()) // no file manager that selects; the folder alone is better
                                        // than nothing
                    openUrl(folder);
                watcher->deleteLater();
            });
}
