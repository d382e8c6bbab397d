#pragma once

#include <chrono>
#include <functional>

/// Threads for what may never be answered, such as a question to the disk of a server that is gone:
/// a thread that hangs in such a call cannot be ended. So nobody waits for them but the program
/// itself, for a moment, before it ends for good. Any thread.

/// Does the work on a thread of its own. Whatever it touches must be its own, shared with it, or
/// live as long as the program: who asked for it may be gone long before. Not for work that changes
/// files, which must not be cut off.
void runLoose(std::function<void()> work);

/// Waits until all such work has ended, with what it held on to and its threads. False when some
/// has not in that time: then nothing that it may touch can be destroyed safely any more, and the
/// process is to end at once.
bool waitForLooseThreads(std::chrono::milliseconds atMost);
