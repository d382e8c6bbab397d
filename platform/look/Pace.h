#pragma once

#include <chrono>

/// Sets the factor for the length of fades, movements and the pauses between pages; 1 unless set.
/// With 0 each is over at the next turn of the event loop. For tests that need not show them; the
/// whole process has one pace. Main thread only.
void setPace(int factor);

/// A duration that is only for the eye, at the pace of this process.
std::chrono::milliseconds paced(std::chrono::milliseconds duration);
