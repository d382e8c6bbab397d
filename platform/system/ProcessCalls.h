#pragma once

#include "platform/system/SystemResult.h"

#include <QByteArrayList>
#include <cstdint>

/// What the system tells of other processes and of what they use; a part of SystemCalls. Stateless;
/// any thread, but looks that go over every process are not for the main one.
class ProcessCalls
{
public:
    virtual ~ProcessCalls() = default;

    /// Whether there is a process of this number, of any user.
    virtual bool isRunning(std::int64_t process) const = 0;
    /// Whether these calls can tell of every process of the machine. They cannot in a sandbox or a
    /// container, and not where the process list hides something. There a number or a name that is
    /// missing says nothing.
    virtual bool seesAllProcesses() const = 0;
    /// The names of the programs that the acting user runs. For each there are two: the one in the
    /// process list, cut to fifteen bytes, and the name of the file that holds the program. Looks
    /// at every process.
    virtual SystemResult<QByteArrayList> programNames() const = 0;
    /// What other processes are using below an open folder, as relative paths; see FilesInUse.h.
    /// Looks at every process.
    virtual SystemResult<QByteArrayList> filesInUse(int folder) const = 0;
    /// Whether a program takes connections at a local socket, by its absolute path. True when that
    /// cannot be told.
    virtual bool isListening(const char *socket) const = 0;
    /// The name of this machine.
    virtual QByteArray hostName() const = 0;
};
