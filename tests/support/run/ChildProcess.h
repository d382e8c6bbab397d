#pragma once

#include <QByteArray>
#include <functional>

enum class ChildUser {
    Same,
    /// An ordinary user without rights of any kind: nothing is writable or readable just because
    /// the tests run as root.
    Nobody,
};

/// User and group of ChildUser::Nobody. Not 65534: the system also shows that number for owners
/// that have none here.
constexpr unsigned kNobody = 65533;

struct ChildOutcome
{
    int exitCode = -1; ///< what the work returned; -1 when it did not finish
    int signal = 0;    ///< the signal that ended it; 0 for none
    QByteArray errorText;
};

/// Gives up this process's rights for good. False where that fails; an ordinary user keeps its own.
bool becomeNobody();

/// Runs `work` in a separate process, a copy of this one without its other threads, and waits for
/// it. For work that ends the process, and for faults that root's rights would hide. QVERIFY and
/// the like do not reach the parent from there: use the return value, 0 to 127.
ChildOutcome runInChild(ChildUser user, const std::function<int()> &work);
