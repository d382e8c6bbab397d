#pragma once

#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/OpenedFolder.h"
#include "tests/support/run/Must.h"

#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>

/// A folder of settings, looked at and spoilt from outside.
class SettingsFolder final
{
public:
    QString path(const QString &name = {}) const { return m_folder.filePath(name); }
    QString file() const { return path(QStringLiteral("settings.json")); }
    QString previousFile() const { return file() + QStringLiteral(".1"); }

    SettingsFile settings(const SystemCalls &calls = hostSystemCalls()) const
    {
        return SettingsFile(m_folder.path(), calls);
    }

    /// The settings with one excluded path.
    static SettingsContent excluding(const QString &path)
    {
        return {{{VNTExcludedPathsString, QJsonArray{path}}}, {}};
    }

    /// Saves two generations.
    void fill() const
    {
        SettingsFile file = settings();
        file.load();
        for (const SettingsContent &content : {first(), second()}) {
            const bool isSaved =
                file.save(settingsText(content), Replace::OnlyWhatIsKnown).isWell();
            must(isSaved, "saving settings");
        }
    }

    static SettingsContent first() { return excluding(QStringLiteral("file:///one")); }
    static SettingsContent second() { return excluding(QStringLiteral("file:///two")); }

    /// Writes a text with a right checksum, whatever it says.
    void setText(const QByteArray &text) const
    {
        DurableFile durable(hostSystemCalls(), openedFolder(QFile::encodeName(m_folder.path())),
                            "settings.json");
        const bool isWritten = durable.write(text, Replace::Anything).has_value();
        must(isWritten, "writing a file");
    }

    static QByteArray raw(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void setRaw(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                               file.write(bytes) == bytes.size();
        must(isWritten, "writing a file");
    }

    QStringList badFiles() const
    {
        return QDir(m_folder.path()).entryList({QStringLiteral("*.bad-*")});
    }

private:
    QTemporaryDir m_folder;
};
