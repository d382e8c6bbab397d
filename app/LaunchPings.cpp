#include "app/LaunchPings.h"

#include "app/Addresses.h"
#include "app/SettingsKeys.h"
#include "app/StatsUpdater.h"
#include "app/UserDefaults.h"
#include "platform/Log.h"

void sendLaunchPings(UserDefaults &defaults, StatsUpdater &updater, const Addresses &addresses)
{
    if (!defaults.boolean(VNTHasLaunchedBeforeString)) {
        updater.updateStatsForURLString(addresses.firstLaunchPing);
        qCInfo(logVantor, "Here");
        defaults.setBoolean(VNTHasLaunchedBeforeString, true);
    }
    updater.updateStatsForURLString(addresses.launchPing);
}
