#pragma once

#include "app/settings/SettingsFile.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/app/settings/SettingsUnderway.h"
#include "tests/support/calls/FailingCalls.h"

#include <QDir>
#include <QTemporaryDir>

struct SettingsFaultOutcome
{
    QByteArray wrong; ///< what must not be, for people; empty where all is well
    std::vector<const char *> calls;
    std::size_t faults = 0; ///< that happened
};

/// Reads settings and saves them twice while calls of the system fail, and looks at what is there
/// afterwards. The folder is made inside `ground`.
inline SettingsFaultOutcome saveWithFaults(const QString &ground, const std::vector<Fault> &faults)
{
    const QTemporaryDir folder(ground + QStringLiteral("/XXXXXX"));
    const SettingsUnderway settings(folder.path());
    settings.save(hostSystemCalls(), 1, 2);
    const FailingCalls calls(faults);
    settings.save(calls, 3, 4);
    SettingsFaultOutcome outcome{settings.wrong(hostSystemCalls()), calls.made(), calls.happened()};
    if (!QDir(folder.path()).entryList({QStringLiteral("*.bad-*")}).isEmpty())
        outcome.wrong = "good settings were set aside";
    if (!outcome.wrong.isEmpty())
        outcome.wrong += ", after " + calls.text();
    return outcome;
}
