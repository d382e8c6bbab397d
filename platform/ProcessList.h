#pragma once

#include <cstdint>
#include <sys/types.h>

/// Whether there is a process of this number, whoever's it is. Any thread.
bool isProcessRunning(std::int64_t process);

/// Whether the user runs a program of this name, as the process list shows it (its first fifteen
/// bytes). Yes when the list cannot be read: who asks wants to be sure that it does not. Any
/// thread, but looks at every process: not for the main one.
bool isProgramRunningFor(uid_t user, const char *name);
