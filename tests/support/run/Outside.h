#pragma once

#include <functional>

/// Does something as another process would, on a thread that may do everything: hooks of tests run
/// on the threads that remove, and those are confined. Waits for the end. Call openOutside() on the
/// test's own thread before the first confined thread calls doOutside(), once in each process.
void openOutside();
void doOutside(const std::function<void()> &action);
