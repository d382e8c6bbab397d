#pragma once

#include <chrono>

/// How long fades, movements and the pauses between pages take, times what they are meant to: 1
/// unless told otherwise. With 0 each is over at the next turn of the event loop. For tests that
/// need not watch; the whole process has one pace. Main thread only.
void setPace(int factor);

/// A duration that is meant for the eye, at this process' pace.
std::chrono::milliseconds paced(std::chrono::milliseconds duration);
