#pragma once

#include "platform/threads/BackgroundThreads.h"

#include <QtGlobal>

/// In the program nobody waits for background threads, but for its very end. What a test lends to
/// them goes earlier: whatever it is waits for them before it does.
inline void awaitBackgroundThreads()
{
    if (!waitForBackgroundThreads(std::chrono::seconds(60)))
        qFatal("a background thread hangs on when what it uses is to go");
}
