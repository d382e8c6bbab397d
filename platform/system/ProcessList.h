#pragma once

#include <QByteArrayList>
#include <cstdint>
#include <sys/types.h>
#include <tl/expected.hpp>

/// Whether there is a process of this number, whoever's it is. Any thread.
bool isProcessRunning(std::int64_t process);

/// The names of the programs that the user runs: as the process list shows them, their first
/// fifteen bytes, which a program may change, and those of the files that hold them, whole. An
/// errno when the list cannot be read. Any thread, but looks at every process: not for the main
/// one.
tl::expected<QByteArrayList, int> programNamesOf(uid_t user);
