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
    /// Why the excluded paths may not be complete, as a text for people; empty when they are
    /// complete. It is kept in the file, so that a restart does not make the paths count as known.
    QString damage;

    friend bool operator==(const SettingsContent &, const SettingsContent &) = default;
};

/// The content as JSON text.
QByteArray settingsText(const SettingsContent &content);
/// Reads it back. Nothing when it is not exactly such a text, or when the excluded paths are
/// anything but a list of strings.
std::optional<SettingsContent> settingsFromText(const QByteArray &text);

/// What another program has written into the settings' file.
struct ForeignSettings
{
    SettingsContent content;
    QByteArray text; ///< the very bytes, which tell it from a later one
};

/// What the file holds now, beside what this run knows of it.
struct SettingsLook
{
    /// Nothing when the file is what this run has read or written last.
    std::optional<ForeignSettings> foreign;
    /// Why nobody can tell what it holds, as a text for people; empty when somebody can.
    QString damage;
};

/// How a save ended. The message is for people; when it is empty, the save went well.
struct SaveOutcome
{
    QString message;
    bool isConflict = false; ///< another program had changed the file
    /// What that program has written, if it can be read.
    std::optional<ForeignSettings> foreign = {};

    bool isWell() const { return message.isEmpty(); }
};

/// The settings' durable file ("settings.json") in one folder. It knows where to find a good
/// content when the current one is not good, and what to say to people about it.
///
/// The exclusions count as known only after a good current content without a note of damage, or
/// when there was never any content. One thread at a time.
class SettingsFile final
{
public:
    SettingsFile(QString folder, const SystemCalls &calls);

    /// The current content; when that is bad, it is set aside and the previous one is taken. With
    /// no file at all, an empty one.
    SettingsContent load();

    /// The current content as it is, for facts that must be known before anything else; an empty
    /// one when it is bad. Changes nothing.
    SettingsContent peek();

    /// Reads the file afresh, by its path. Changes nothing.
    SettingsLook look() const;

    /// Makes this text the file's content. Makes the folder first when there is none. Settings of
    /// another program are never replaced, unless their text is `takenOver`: then what they exclude
    /// is in this text, too.
    SaveOutcome save(const QByteArray &text, Replace replace, const QByteArray &takenOver = {});

private:
    SaveOutcome conflict(const std::optional<ForeignSettings> &foreign) const;
    SaveOutcome failure(int error, Replace replace);
    DurableContent present() const;
    DurableContent expected() const;
    QString stateText(const DurableContent &found) const;
    SystemResult<void> open();
    SystemResult<void> reopen();
    QString damageText(const DurableContent &current);
    QString pathOf(const QByteArray &name) const;

    QString m_folder;
    const SystemCalls *m_calls;
    std::optional<DurableFile> m_file;
    /// What stood in the way of a save that might replace anything. The user knows of it.
    std::optional<DurableContent> m_inTheWay;
};
