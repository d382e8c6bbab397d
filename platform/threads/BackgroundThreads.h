#pragma once

#include <chrono>
#include <functional>

/// The threads on which background work runs. A thread that hangs in a call, such as a question to
/// the disk of a server that is gone, cannot be ended: it is abandoned. Only the program itself
/// waits for all of them, for a moment, before it ends for good. Any thread. The parts of the
/// program use a BackgroundQueue instead.

/// Does the work on a thread of its own. Whatever it touches must be its own, shared with it, or
/// live as long as the program, unless the caller waits for the work itself.
void startBackgroundThread(std::function<void()> work);

/// Waits until all such work has ended, with what it held on to and its threads. False when some
/// has not in that time: then nothing that it may touch can be destroyed safely any more, and the
/// process is to end at once.
bool waitForBackgroundThreads(std::chrono::milliseconds atMost);
