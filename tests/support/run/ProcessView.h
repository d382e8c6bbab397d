#pragma once

#include "tests/support/run/ChildProcess.h"

/// What a process can see of all others.
enum class ProcessView {
    InsideOnly, ///< as in a container: a process namespace of its own, and the list of that one
    OldList,    ///< a process namespace of its own, with the list of the processes outside
    HiddenList, ///< the list leaves out what belongs to other users; needs the administrator
    NoList,     ///< no list at all
};

/// Runs `work` in a child process that sees just this much; otherwise like runInChild(). With a
/// hidden list the child is an ordinary user. A view that cannot be made gives the exit code
/// kNoSuchView.
ChildOutcome runInChildSeeing(ProcessView view, const std::function<int()> &work);

constexpr int kNoSuchView = 125;
