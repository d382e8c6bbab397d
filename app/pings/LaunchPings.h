#pragma once

class StatsUpdater;
class UserDefaults;
struct Addresses;

/// The pings of a launch: on the first one ever the first-launch ping (with the log line "Here"),
/// then, every time, the launch ping. The first launch counts as reported as soon as its ping was
/// started: one that fails is never sent again. The defaults must have been registered.
void sendLaunchPings(UserDefaults &defaults, StatsUpdater &updater, const Addresses &addresses);
