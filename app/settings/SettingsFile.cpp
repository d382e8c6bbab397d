#include "app/settings/SettingsFile.h"

#include "app/settings/SettingValues.h"
#include "app/settings/SettingsKeys.h"
#include "platform/system/SystemCalls.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <cerrno>
#include <system_error>

namespace {

constexpr char kFileName[] = "settings.json";
constexpr QLatin1StringView kValues("settings");
constexpr QLatin1StringView kDamage("damage");

QString textOfError(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

QString unreadableText(const QString &path, int error)
{
    return QStringLiteral("The settings in “%1” cannot be read (%2).")
        .arg(path, textOfError(error));
}

QString conflictText(const QString &path)
{
    return QStringLiteral("The settings in “%1” were changed by another program, perhaps a second "
                          "Vantor, and were not overwritten.")
        .arg(path);
}

QString adviceText(bool hasPrevious)
{
    return (hasPrevious ? QStringLiteral(" The settings as they were before are in use.")
                        : QStringLiteral(" Vantor starts without any settings.")) +
           QStringLiteral(" Look through the excluded paths before you clean.");
}

std::optional<SettingsContent> contentIn(const DurableContent &found)
{
    if (found.state != DurableState::Good)
        return std::nullopt;
    return settingsFromText(found.bytes);
}

/// Whether a file that gave no content was read whole. Such a file stays of no use.
bool isBad(const DurableContent &found)
{
    return found.state == DurableState::Good || found.state == DurableState::Damaged;
}

} // namespace

QByteArray settingsText(const SettingsContent &content)
{
    QJsonObject root{{kValues, content.values}};
    if (!content.damage.isEmpty())
        root.insert(kDamage, content.damage);
    return QJsonDocument(root).toJson(QJsonDocument::Indented).trimmed();
}

std::optional<SettingsContent> settingsFromText(const QByteArray &text)
{
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    const QJsonValue values = root.value(kValues);
    const QJsonValue damage = root.value(kDamage);
    if (!values.isObject() || !(damage.isUndefined() || damage.isString()))
        return std::nullopt;
    const QJsonValue exclusions = values.toObject().value(VNTExcludedPathsString);
    if (!exclusions.isUndefined() && !stringsFrom(exclusions))
        return std::nullopt;
    return SettingsContent{values.toObject(), damage.toString()};
}

SettingsFile::SettingsFile(QString folder, const SystemCalls &calls)
    : m_folder(std::move(folder)), m_calls(&calls)
{
}

SettingsContent SettingsFile::load()
{
    if (const auto opened = open(); !opened) {
        if (opened.error() == ENOENT)
            return {};
        return {{}, unreadableText(m_folder, opened.error()) + adviceText(false)};
    }
    const DurableContent current = m_file->read(Generation::Current);
    if (const auto content = contentIn(current))
        return *content;
    const DurableContent previous = m_file->read(Generation::Previous);
    const bool hasTraces = current.state != DurableState::Missing ||
                           previous.state != DurableState::Missing ||
                           m_file->hasFilesSetAside().value_or(true);
    if (!hasTraces)
        return {};
    const auto content = contentIn(previous);
    if (!content && isBad(previous))
        (void)m_file->setAside(Generation::Previous);
    return {content.value_or(SettingsContent{}).values,
            damageText(current) + adviceText(content.has_value())};
}

SettingsContent SettingsFile::peek()
{
    if (!open())
        return {};
    return contentIn(m_file->read(Generation::Current)).value_or(SettingsContent{});
}

SettingsLook SettingsFile::look() const
{
    const DurableContent found = present();
    if (found == expected())
        return {};
    if (const auto content = contentIn(found))
        return {ForeignSettings{*content, found.bytes}, {}};
    if (found == m_inTheWay)
        return {};
    return {{},
            stateText(found) +
                QStringLiteral(" Look through the excluded paths before you clean.")};
}

SaveOutcome SettingsFile::save(const QByteArray &text, Replace replace, const QByteArray &takenOver)
{
    QDir().mkpath(m_folder);
    if (const auto opened = reopen(); !opened)
        return failure(opened.error(), replace);
    if (const auto foreign = look().foreign) {
        if (foreign->text != takenOver)
            return conflict(foreign);
        m_file->learn(takenOver);
    }
    const auto saved = m_file->write(text, replace);
    if (saved)
        return {};
    return saved.error().isConflict ? conflict(look().foreign)
                                    : failure(saved.error().error, replace);
}

SaveOutcome SettingsFile::conflict(const std::optional<ForeignSettings> &foreign) const
{
    return {conflictText(pathOf(kFileName)), true, foreign};
}

SaveOutcome SettingsFile::failure(int error, Replace replace)
{
    if (replace == Replace::Anything)
        m_inTheWay = present();
    return {QStringLiteral("The settings in “%1” could not be saved (%2).")
                .arg(m_folder, textOfError(error)),
            false};
}

/// The current content as the next start would find it.
DurableContent SettingsFile::present() const
{
    SettingsFile there(m_folder, *m_calls);
    if (const auto opened = there.open(); !opened)
        return opened.error() == ENOENT
                   ? DurableContent{}
                   : DurableContent{DurableState::Unreadable, {}, opened.error()};
    return there.m_file->read(Generation::Current);
}

/// What this run has read or written last.
DurableContent SettingsFile::expected() const
{
    if (!m_file || !m_file->known())
        return {};
    return {DurableState::Good, *m_file->known(), 0};
}

SystemResult<void> SettingsFile::open()
{
    if (m_file)
        return {};
    auto file = DurableFile::in(*m_calls, m_folder, kFileName);
    if (!file)
        return tl::unexpected(file.error());
    m_file.emplace(std::move(*file));
    return {};
}

/// The folder may have been replaced, and what counts is what the next start will find in its path.
SystemResult<void> SettingsFile::reopen()
{
    SettingsFile there(m_folder, *m_calls);
    if (const auto opened = there.open(); !opened)
        return opened;
    if (m_file && m_file->known())
        there.m_file->learn(*m_file->known());
    m_file.emplace(std::move(*there.m_file));
    return {};
}

/// What happened to the current content, for people. A bad one is set aside here.
QString SettingsFile::damageText(const DurableContent &current)
{
    if (!isBad(current))
        return stateText(current);
    const auto badName = m_file->setAside(Generation::Current);
    if (!badName)
        return stateText(current);
    return QStringLiteral("The settings were damaged. The damaged file was kept as “%1”.")
        .arg(pathOf(*badName));
}

/// Why a content is of no use, for people.
QString SettingsFile::stateText(const DurableContent &found) const
{
    if (found.state == DurableState::Missing)
        return QStringLiteral("The settings in “%1” are gone.").arg(pathOf(kFileName));
    if (found.state == DurableState::Unreadable)
        return unreadableText(pathOf(kFileName), found.error);
    return QStringLiteral("The settings in “%1” are damaged.").arg(pathOf(kFileName));
}

QString SettingsFile::pathOf(const QByteArray &name) const
{
    return m_folder + u'/' + QFile::decodeName(name);
}
