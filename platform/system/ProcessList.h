#pragma once

#include <QByteArrayList>
#include <cstdint>
#include <sys/types.h>
#include <tl/expected.hpp>

/// Whether there is a process of this number, of any user. Any thread.
bool isProcessRunning(std::int64_t process);

/// Whether the calls of this file can tell of every process of the machine. False in a process
/// namespace of its own, where the process list hides processes of others, and where there is none.
/// Any thread.
bool isProcessListWhole();

/// The names of the programs that the user runs. For each there are two: the one in the process
/// list, cut to fifteen bytes, which the program may change; and the whole name of the file that
/// holds the program. An errno when the list cannot be read. Any thread, but looks at every
/// process: not for the main one.
tl::expected<QByteArrayList, int> programNamesOf(uid_t user);
