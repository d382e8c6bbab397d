#pragma once

#include <chrono>
#include <functional>
#include <stop_token>

/// The threads on which background work runs. A thread that hangs in a call, such as a question to
/// the disk of a server that is gone, cannot be ended: it is abandoned. Only the program itself
/// waits for all of them, for a short time, before it ends. Any thread. The parts of the program
/// use a BackgroundQueue instead.

/// Does the work on a thread of its own. Everything that the work touches must belong to it, be
/// shared with it, or live as long as the program, unless the caller itself waits for the work.
void startBackgroundThread(std::function<void()> work);

/// Waits until all such work has ended, what it held is destroyed and its threads are gone. False
/// when some work has not ended in that time: then nothing that it may touch can be destroyed
/// safely, and the process must end at once.
bool waitForBackgroundThreads(std::chrono::milliseconds atMost);

/// The program ends: tells all work to stop, and also all that begins from now on. For good.
void stopBackgroundThreads();
/// Says stop from then on.
std::stop_token endOfBackgroundThreads();
