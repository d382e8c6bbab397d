#include "app/settings/UserDefaults.h"

#include "app/settings/SettingValues.h"
#include "app/settings/SettingsKeys.h"

#include <QPointer>
#include <QSet>
#include <QStandardPaths>
#include <utility>

namespace {

/// How often a save tries anew because another program was faster once more.
constexpr int kMostTakeovers = 3;

template <typename Value>
Value valueOf(const QJsonValue &stored, const QJsonValue &registered,
              std::optional<Value> (*read)(const QJsonValue &))
{
    if (const auto value = read(stored))
        return *value;
    return read(registered).value_or(Value{});
}

} // namespace

UserDefaults::UserDefaults(const QString &folder, const SystemCalls &calls, QObject *parent)
    : QObject(parent), m_folder(folder)
{
    SettingsFile file(folder, calls);
    const SettingsContent content = file.load();
    m_stored = content.values;
    m_damage = content.damage;
    m_writer.emplace(std::move(file), [this](const SaveOutcome &outcome) {
        QMetaObject::invokeMethod(
            this, [this, outcome] { takeOutcome(outcome); }, Qt::QueuedConnection);
    });
    // The note of the damage must outlive this run.
    if (!exclusionsAreKnown())
        save(Replace::OnlyWhatIsKnown);
}

UserDefaults::~UserDefaults()
{
    blockSignals(true); // whoever listens may have ended
    (void)synchronize();
}

void UserDefaults::registerDefaults(const QJsonObject &defaults)
{
    for (auto entry = defaults.begin(); entry != defaults.end(); ++entry)
        m_registered.insert(entry.key(), entry.value());
}

QJsonValue UserDefaults::object(const QString &key) const
{
    return isStored(key) ? m_stored.value(key) : m_registered.value(key);
}

bool UserDefaults::boolean(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), booleanFrom);
}

qint64 UserDefaults::integer(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), integerFrom);
}

QStringList UserDefaults::strings(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), stringsFrom);
}

QList<bool> UserDefaults::booleans(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), booleansFrom);
}

QByteArray UserDefaults::data(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), dataFrom);
}

void UserDefaults::setInteger(const QString &key, qint64 value)
{
    store(key, value);
}

void UserDefaults::setBoolean(const QString &key, bool value)
{
    store(key, value);
}

void UserDefaults::setStrings(const QString &key, const QStringList &value)
{
    store(key, jsonFrom(value));
}

void UserDefaults::setBooleans(const QString &key, const QList<bool> &value)
{
    store(key, jsonFrom(value));
}

void UserDefaults::setData(const QString &key, const QByteArray &value)
{
    store(key, jsonFrom(value));
}

void UserDefaults::remove(const QString &key)
{
    m_stored.remove(key);
    save(Replace::OnlyWhatIsKnown);
}

void UserDefaults::lookAtFile(QObject *context, std::function<void()> then)
{
    const QPointer<QObject> asker(context);
    m_writer->look([this, asker, then = std::move(then)](const SettingsLook &look) {
        const auto reply = [this, asker, then, look] {
            if (look.foreign)
                takeOver(*look.foreign);
            doubtExclusions(look.damage);
            if (asker)
                then();
        };
        QMetaObject::invokeMethod(this, reply, Qt::QueuedConnection);
    });
}

tl::expected<void, QString> UserDefaults::synchronize()
{
    SaveOutcome outcome = m_writer->flush();
    for (int attempt = 0; outcome.foreign && attempt < kMostTakeovers; ++attempt) {
        takeOver(*outcome.foreign);
        outcome = m_writer->flush();
    }
    if (!outcome.isWell())
        return tl::unexpected(outcome.message);
    return {};
}

bool UserDefaults::hasInitializedFolders() const
{
    return isStored(VNTHomeFolderString);
}

void UserDefaults::removeFolderEntries()
{
    remove(VNTApplicationFolderString);
    remove(VNTHomeFolderString);
}

void UserDefaults::confirmExclusions()
{
    if (exclusionsAreKnown())
        return;
    m_damage.clear();
    m_doubt.clear();
    save(Replace::Anything);
    Q_EMIT exclusionsKnownChanged(true);
}

void UserDefaults::doubtExclusions(const QString &reason)
{
    if (reason.isEmpty() || !exclusionsAreKnown())
        return;
    m_doubt = reason;
    Q_EMIT exclusionsKnownChanged(false);
}

void UserDefaults::store(const QString &key, const QJsonValue &value)
{
    m_stored.insert(key, value);
    save(Replace::OnlyWhatIsKnown);
}

void UserDefaults::save(Replace replace, const QByteArray &takenOver)
{
    m_writer->post(settingsText({m_stored, m_damage}), replace, takenOver);
}

void UserDefaults::takeOutcome(const SaveOutcome &outcome)
{
    if (outcome.isWell())
        return;
    if (outcome.foreign) {
        takeOver(*outcome.foreign);
        return;
    }
    Q_EMIT saveFailed(outcome.message);
    // The program that changed the file may have excluded paths that this run does not know.
    if (outcome.isConflict)
        doubtExclusions(outcome.message +
                        QStringLiteral(" Quit and start Vantor again to use them."));
}

/// Keeps what either program excludes, and saves that in place of the other's text. If the other
/// does not know what is excluded, neither does this one.
void UserDefaults::takeOver(const ForeignSettings &foreign)
{
    const QJsonValue theirs = foreign.content.values.value(VNTExcludedPathsString);
    const QStringList mine = strings(VNTExcludedPathsString);
    QSet<QString> seen(mine.begin(), mine.end());
    QStringList found;
    for (const QString &path : stringsFrom(theirs).value_or(QStringList())) {
        if (!seen.contains(path))
            found.append(path);
        seen.insert(path);
    }
    if (!found.isEmpty())
        m_stored.insert(VNTExcludedPathsString, jsonFrom(mine + found));
    const bool wereKnown = exclusionsAreKnown();
    if (m_damage.isEmpty())
        m_damage = foreign.content.damage;
    save(Replace::OnlyWhatIsKnown, foreign.text);
    if (!found.isEmpty())
        Q_EMIT exclusionsFound(found);
    if (wereKnown && !exclusionsAreKnown())
        Q_EMIT exclusionsKnownChanged(false);
}

QString defaultSettingsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
}
