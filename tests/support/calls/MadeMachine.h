#pragma once

#include "platform/system/SystemResult.h"
#include "tests/support/calls/HookedSystem.h"

#include <QByteArrayList>
#include <memory>
#include <set>

/// A machine called "desk" on which just these run; its files are the host's. What it says is set
/// before the calls, or by a hook on the thread of the call.
class MadeMachine final
{
public:
    MadeMachine();
    /// Waits for background threads that may be calling.
    ~MadeMachine();

    std::set<std::int64_t> processes;
    SystemResult<QByteArrayList> programs;
    SystemResult<bool> locked = false;
    bool isSeenWhole = true;
    std::set<QByteArray> servedSockets;
    SystemResult<QByteArrayList> usedFiles; ///< relative to the home
    bool hasFilesOfTheHost = false;         ///< in use, whatever `usedFiles` says
    mutable int looksAtFiles = 0;

    /// See HookedSystem.
    void setHook(HookedSystem::Hook hook);

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

private:
    class Calls;

    const std::unique_ptr<Calls> m_calls;
};
