#pragma once

#include <QString>

/// The interface for sending usage pings. A page that has something to report is given one.
class StatsUpdater
{
public:
    virtual ~StatsUpdater() = default;

    /// Sends one ping to the page at this address. Returns at once and reports nothing.
    virtual void updateStatsForURLString(const QString &urlString) = 0;
};
