#include "app/pings/LaunchPings.h"

#include "app/pings/Addresses.h"
#include "app/pings/StatsUpdater.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/base/Log.h"

void sendLaunchPings(UserDefaults &defaults, StatsUpdater &updater, const Addresses &addresses)
{
    if (!defaults.boolean(VNTHasLaunchedBeforeString)) {
        updater.updateStatsForURLString(addresses.firstLaunchPing);
        qCInfo(logVantor, "Here");
        defaults.setBoolean(VNTHasLaunchedBeforeString, true);
    }
    updater.updateStatsForURLString(addresses.launchPing);
}
