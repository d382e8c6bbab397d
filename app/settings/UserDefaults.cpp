#include "app/settings/UserDefaults.h"

#include "app/settings/SettingValues.h"
#include "app/settings/SettingsKeys.h"

#include <QStandardPaths>

namespace {

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
    : QObject(parent)
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

UserDefaults::~UserDefaults() = default;

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

QString UserDefaults::string(const QString &key) const
{
    return valueOf(m_stored.value(key), m_registered.value(key), stringFrom);
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

void UserDefaults::setBoolean(const QString &key, bool value)
{
    store(key, value);
}

void UserDefaults::setInteger(const QString &key, qint64 value)
{
    store(key, value);
}

void UserDefaults::setString(const QString &key, const QString &value)
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

tl::expected<void, QString> UserDefaults::synchronize()
{
    const SaveOutcome outcome = m_writer->flush();
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
    save(Replace::Anything);
    Q_EMIT exclusionsKnownChanged(true);
}

void UserDefaults::store(const QString &key, const QJsonValue &value)
{
    m_stored.insert(key, value);
    save(Replace::OnlyWhatIsKnown);
}

void UserDefaults::save(Replace replace)
{
    m_writer->post(settingsText({m_stored, m_damage}), replace);
}

void UserDefaults::takeOutcome(const SaveOutcome &outcome)
{
    if (outcome.isWell())
        return;
    Q_EMIT saveFailed(outcome.message);
    if (!outcome.isConflict || !exclusionsAreKnown())
        return;
    // The program that changed the file may have excluded paths that this run does not know.
    m_damage = outcome.message + QStringLiteral(" Quit and start Vantor again to use them.");
    Q_EMIT exclusionsKnownChanged(false);
}

QString defaultSettingsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
}
