#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "bench/Commands.h"
#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>

int runSettingsCommand(const QStringList &arguments)
{
    const bool isDeclined = arguments.value(0) == QStringLiteral("--tutorial-declined");
    const QStringList folders = arguments.mid(isDeclined ? 1 : 0);
    if (folders.size() != 2) {
        std::fputs("vantor-bench: settings [--tutorial-declined] HOME FOLDER\n", stderr);
        return kUsageError;
    }
    const QString home = QFileInfo(folders[0]).canonicalFilePath();
    const auto grant = makeGrant(hostSystemCalls(), QFile::encodeName(home));
    if (!grant) {
        std::fprintf(stderr, "vantor-bench: %s cannot be granted\n", qPrintable(folders[0]));
        return kFailed;
    }
    UserDefaults defaults(folders[1], hostSystemCalls());
    defaults.setData(VNTHomeFolderString, *grant);
    defaults.setBoolean(VNTHideDemoWindowString, isDeclined);
    return defaults.synchronize() ? kDone : kFailed;
}
