#pragma once

#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "tests/support/run/SharedMemory.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QString>
#include <atomic>

/// Where settings are saved thousands of times: in memory, if that can be had.
inline QString settingsGround()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFile::exists(memory) ? memory : QDir::tempPath()) + QStringLiteral("/vantor-XXXXXX");
}

/// Settings that a process saves one after the other, numbered from 1 on, until it is killed or the
/// power is cut, and the judgement of what is found then.
class SettingsUnderway final
{
public:
    /// The folder may be missing.
    explicit SettingsUnderway(QString folder) : m_folder(std::move(folder)) {}

    /// Saves these numbers, and notes each that is acknowledged. Reads what is there first.
    void save(const SystemCalls &calls, int first, int last) const
    {
        SettingsFile file(m_folder, calls);
        file.load();
        for (int number = first; number <= last; ++number) {
            m_begun->store(number);
            if (file.save(textOf(number), Replace::OnlyWhatIsKnown).isWell())
                m_acknowledged->store(number);
        }
    }

    /// The last number whose save was acknowledged; 0 for none.
    int acknowledged() const { return m_acknowledged->load(); }
    /// The last number whose save has begun.
    int begun() const { return m_begun->load(); }

    static QByteArray textOf(int number)
    {
        const QString path = QStringLiteral("file:///%1").arg(number);
        return settingsText({{{VNTExcludedPathsString, QJsonArray{path}}}, {}});
    }

    /// What must not be when the process is gone; empty where all is well. Saves once more.
    QByteArray wrong(const SystemCalls &calls) const { return wrong(calls, acknowledged()); }
    /// The same when only these acknowledgements count.
    QByteArray wrong(const SystemCalls &calls, int acknowledged) const
    {
        SettingsFile file(m_folder, calls);
        const SettingsContent found = file.load();
        if (!found.damage.isEmpty())
            return "damaged: " + found.damage.toUtf8();
        const int number = numberIn(found);
        if (number < acknowledged || number > begun())
            return "found " + QByteArray::number(number) + " where " +
                   QByteArray::number(acknowledged) + " was acknowledged and " +
                   QByteArray::number(begun()) + " begun";
        const int next = begun() + 1;
        if (!file.save(textOf(next), Replace::OnlyWhatIsKnown).isWell())
            return "cannot be saved any more";
        SettingsFile again(m_folder, calls);
        return numberIn(again.load()) == next ? QByteArray() : "the next save is lost";
    }

private:
    static int numberIn(const SettingsContent &content)
    {
        const QString path =
            content.values.value(VNTExcludedPathsString).toArray().first().toString();
        return path.section(u'/', -1).toInt();
    }

    const QString m_folder;
    SharedMemory<std::atomic<int>> m_acknowledged;
    SharedMemory<std::atomic<int>> m_begun;
};
