#pragma once

#include "platform/system/SystemResult.h"
#include "tests/support/calls/ForwardingSystemCalls.h"

#include <set>

/// A machine called "desk" on which just these run.
class MadeMachine final : public ForwardingSystemCalls
{
public:
    using ForwardingSystemCalls::ForwardingSystemCalls;

    std::set<std::int64_t> processes;
    SystemResult<QByteArrayList> programs;
    SystemResult<bool> locked = false;
    bool isSeenWhole = true;
    std::set<QByteArray> servedSockets;
    SystemResult<QByteArrayList> usedFiles; ///< relative to the home
    mutable int looksAtFiles = 0;

    bool isRunning(std::int64_t process) const override { return processes.contains(process); }
    SystemResult<QByteArrayList> programNames() const override { return programs; }
    QByteArray hostName() const override { return "desk"; }
    bool seesAllProcesses() const override { return isSeenWhole; }
    SystemResult<QByteArrayList> filesInUse(int) const override
    {
        ++looksAtFiles;
        return usedFiles;
    }
    bool isListening(const char *socket) const override { return servedSockets.contains(socket); }
    SystemResult<bool> isLocked(int) const override { return locked; }
};
