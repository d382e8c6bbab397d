#pragma once

#include <QString>
#include <functional>

constexpr int kNoDisk = 126; ///< the answer where no disk could be made

/// Runs `work` in a process of its own (see ChildProcess.h) that has a disk of `bytes` mounted at
/// the folder; nobody else sees it. Answers what the work returned, -1 when it did not end.
int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &work);
