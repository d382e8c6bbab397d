#pragma once

#include <QByteArray>

/// What the environment says about where programs keep things. It may add a trash and a cache, if
/// they are below the home and look like one; it can change nothing else.
struct HomeEnvironment
{
    QByteArray dataHome;  ///< XDG_DATA_HOME
    QByteArray cacheHome; ///< XDG_CACHE_HOME
    /// HOME: another path of the granted home, where it leads there; otherwise nothing.
    QByteArray home = {};

    static HomeEnvironment ofThisProcess();
};
