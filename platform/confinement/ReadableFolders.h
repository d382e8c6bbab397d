#pragma once

#include <span>

/// From now on the calling thread and those that it starts open no file, unless it lies in one of
/// these folders, and then only to read. Folders that are missing do not matter. What is open
/// already stays open. False when the system cannot do this; then nothing has changed.
bool readOnlyIn(std::span<const char *const> folders);
