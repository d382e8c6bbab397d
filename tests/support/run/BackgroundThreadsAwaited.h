#pragma once

#include "platform/threads/BackgroundThreads.h"

#include <QtGlobal>

/// In the program nothing waits for background threads before the program itself ends. What a test
/// lends to them ends earlier, so it must wait for them first.
inline void awaitBackgroundThreads()
{
    if (!waitForBackgroundThreads(std::chrono::seconds(60)))
        qFatal("a background thread hangs on when what it uses is to go");
}
