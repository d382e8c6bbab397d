#pragma once

#include "platform/threads/LooseThreads.h"

#include <QtGlobal>

/// In the program nobody waits for loose threads, but for its very end. What a test lends to them
/// goes earlier: whatever it is waits for them before it does.
inline void awaitLooseThreads()
{
    if (!waitForLooseThreads(std::chrono::seconds(60)))
        qFatal("a loose thread hangs on when what it uses is to go");
}
