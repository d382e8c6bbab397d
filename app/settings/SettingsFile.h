#pragma once

#include "platform/files/DurableFile.h"
#include "platform/system/SystemResult.h"

#include <QJsonObject>
#include <QString>

class SystemCalls;

/// What the settings' file holds.
struct SettingsContent
{
    QJsonObject values;
    /// Why the excluded paths may not be all, for people; empty when they are. Kept in the file, so
    /// that a restart does not make them known.
    QString damage;

    friend bool operator==(const SettingsContent &, const SettingsContent &) = default;
};

/// The content as JSON text.
QByteArray settingsText(const SettingsContent &content);
/// Reads it back; nothing where it is not exactly such a text, or where the excluded paths are
/// anything but a list of strings.
std::optional<SettingsContent> settingsFromText(const QByteArray &text);

/// How a save ended; an empty message, for people, means well.
struct SaveOutcome
{
    QString message;
    bool isConflict = false; ///< another program had changed the file

    bool isWell() const { return message.isEmpty(); }
};

/// The settings' durable file ("settings.json") in one folder: where to find a good content when
/// the current one is not, and what to say to people about it.
///
/// The exclusions count as known only after a good current content without a note of damage, or
/// where there was never anything. One thread at a time.
class SettingsFile final
{
public:
    SettingsFile(const QString &folder, const SystemCalls &calls);

    /// The current content; when that is bad, it is set aside and the previous one is taken. With
    /// no file at all, an empty one.
    SettingsContent load();

    /// The current content as it stands, for what must be known before anything else; an empty one
    /// when it is bad. Changes nothing.
    SettingsContent peek();

    /// Makes this text the file's content, and first the folder where there is none.
    SaveOutcome save(const QByteArray &text, Replace replace);

private:
    SystemResult<void> open();
    QString damageText(const DurableContent &current);
    QString pathOf(const QByteArray &name) const;

    QString m_folder;
    const SystemCalls *m_calls;
    std::optional<DurableFile> m_file;
};
