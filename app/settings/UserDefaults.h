#pragma once

#include "app/settings/SettingsWriter.h"

#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <functional>
#include <tl/expected.hpp>

class SystemCalls;

/// The settings: typed values under text keys, kept in one small file of a folder.
///
/// Owned by the start-up, used by the pages; main thread only. It reads the file once, when it is
/// made. A setter changes the value at once and never waits: the whole content goes to a thread of
/// its own, where the newest content wins. Whatever happens to the machine meanwhile, the file
/// holds an old content or a new one, never a mixture.
///
/// A lookup returns the stored value; without one, the registered value; without either, none. A
/// typed getter returns the registered value (without one, zero) when the stored value is of
/// another type.
///
/// Another program may write the file meanwhile, too. What it excludes is excluded here as well,
/// and no save overwrites it: the exclusions of both hold. A save finds out by itself; for what
/// must not be missed there is lookAtFile(). Of all other values those of this run hold.
///
/// It fails closed: when the file cannot be read completely, the program does not know which paths
/// the user has excluded. exclusionsAreKnown() says so, also after a restart, until the user has
/// looked and confirmExclusions() was called. Nothing may be cleaned before that.
class UserDefaults final : public QObject
{
    Q_OBJECT

public:
    /// The folder need not exist yet; the first save makes it. `calls` must outlive this.
    explicit UserDefaults(const QString &folder, const SystemCalls &calls,
                          QObject *parent = nullptr);
    /// Saves what is not saved yet.
    ~UserDefaults() override;

    /// Where the settings are kept, and small files beside them.
    const QString &folder() const { return m_folder; }

    /// Sets the values that getters return for keys that are not stored. Writes nothing.
    void registerDefaults(const QJsonObject &defaults);

    /// The stored value, else the registered one, else undefined.
    QJsonValue object(const QString &key) const;
    bool contains(const QString &key) const { return !object(key).isUndefined(); }
    bool isStored(const QString &key) const { return m_stored.contains(key); }

    bool boolean(const QString &key) const;
    qint64 integer(const QString &key) const;
    QStringList strings(const QString &key) const;
    QList<bool> booleans(const QString &key) const;
    QByteArray data(const QString &key) const;

    void setBoolean(const QString &key, bool value);
    void setInteger(const QString &key, qint64 value);
    void setStrings(const QString &key, const QStringList &value);
    void setBooleans(const QString &key, const QList<bool> &value);
    void setData(const QString &key, const QByteArray &value);
    // A literal is neither a Boolean nor data, but would silently become one.
    void setBoolean(const QString &key, const void *value) = delete;
    void setData(const QString &key, const char *value) = delete;

    /// Forgets the stored value; the registered one shows again.
    void remove(const QString &key);

    /// Looks beside the main thread whether another program has written the file, and takes over
    /// what it excludes. Then calls `then`, unless `context` has ended; exclusionsAreKnown() and
    /// the excluded paths are up to date at that moment. Returns at once.
    void lookAtFile(QObject *context, std::function<void()> then);

    /// Waits until everything is on the disk; the error is a text for people.
    tl::expected<void, QString> synchronize();

    /// Whether anything is stored as the home-folder grant, valid or not.
    bool hasInitializedFolders() const;
    /// Forgets both folder grants. Does not synchronise.
    void removeFolderEntries();

    /// Whether the excluded paths are all that the user wants excluded.
    bool exclusionsAreKnown() const { return m_damage.isEmpty() && m_doubt.isEmpty(); }
    /// What happened to the settings and where the damaged file was kept, for people; empty while
    /// the exclusions are known.
    QString damageMessage() const { return m_damage.isEmpty() ? m_doubt : m_damage; }
    /// For this reason the excluded paths do not count as known any more; it is not saved. Nothing
    /// happens without a reason.
    void doubtExclusions(const QString &reason);
    /// The user has looked at the excluded paths and says that they are right as they are now.
    /// Saves them over whatever is no settings; when the save fails they count as known for this
    /// run only.
    void confirmExclusions();

Q_SIGNALS:
    /// The settings could not be saved. The next change or synchronize() tries again.
    void saveFailed(const QString &message);
    /// exclusionsAreKnown() changed: by confirmExclusions() or doubtExclusions(), or because
    /// another program changed the file, and nobody can tell any more what is excluded.
    void exclusionsKnownChanged(bool known);
    /// Another program has excluded these, and they are excluded here, too, from now on.
    void exclusionsFound(const QStringList &stored);

private:
    void store(const QString &key, const QJsonValue &value);
    void save(Replace replace, const QByteArray &takenOver = {});
    void takeOutcome(const SaveOutcome &outcome);
    void takeOver(const ForeignSettings &foreign);

    QString m_folder;
    QJsonObject m_stored;
    QJsonObject m_registered;
    QString m_damage;
    QString m_doubt; ///< is not saved
    std::optional<SettingsWriter> m_writer;
};

/// Where the settings of this user are kept: the platform's configuration folder of Vantor.
QString defaultSettingsFolder();
