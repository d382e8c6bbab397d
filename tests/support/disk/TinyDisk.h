#pragma once

#include <QString>
#include <functional>

constexpr int kNoDisk = 126; ///< the answer where no disk could be made

/// Runs `work` in a process of its own (see ChildProcess.h) with a disk of `bytes` mounted at the
/// folder; no other process sees the disk. Returns what the work returned, or -1 when it did not
/// end.
int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &work);
