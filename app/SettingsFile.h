#pragma once

#include "platform/DurableFile.h"

#include <QJsonObject>
#include <QString>

/// What the settings' file holds.
struct SettingsContent
{
    QJsonObject values;
    /// Why the excluded paths may not be all, for people; empty when they are. Kept in the file, so
    /// that a restart does not make them known.
    QString damage;
};

/// The settings as JSON text in a durable file ("settings.json") of one folder: knows what a good
/// content is, and where to find a good one when the file is not. One thread at a time.
class SettingsFile final
{
public:
    SettingsFile(QString folder, const SystemCalls &calls);

    /// The current content; when that is bad, it is set aside and the previous one is taken. With
    /// no file at all, an empty one. The damage says what happened.
    SettingsContent load();

    /// Makes this the file's content, and the folder first where there is none.
    tl::expected<void, DurableError> save(const SettingsContent &content, Replace replace);

private:
    tl::expected<void, int> open();

    QString m_folder;
    const SystemCalls *m_calls;
    std::optional<DurableFile> m_file;
};
