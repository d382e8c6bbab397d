#pragma once

#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"

#include <QByteArray>

class SystemCalls;

/// Removes an entry only if it is the one that was looked at, even if another takes its name in the
/// last instant. It first moves the entry to a private name in the same folder, where no one else
/// looks for it, then compares, and only then removes it. Another entry gets its name back.
///
/// A disk may have no room for the move, and yet for a removal. Then the entry is compared where it
/// is, right before: a cleaning that frees nothing on a full disk is no use.
///
/// A kill in between leaves an entry under its private name, which tells the old one (of the
/// longest names all but the end): putBack(). Stateless; any thread.
class ExactRemoval final
{
public:
    explicit ExactRemoval(const SystemCalls &calls) : m_calls(calls) {}

    struct Failure
    {
        int error = 0; ///< errno; ESTALE if the name stood for something else than expected
        /// The private name of an entry that could not get its own name back.
        QByteArray leftAs;
    };
    tl::expected<void, Failure> remove(int folder, const char *name,
                                       const FileStatus &expected) const;

    /// Whether a look found what an earlier one had found, with nothing written into it since.
    static bool isSame(const FileStatus &found, const FileStatus &expected);
    /// Gives an entry another name that no entry has (EEXIST).
    SystemResult<void> moveToFree(int folder, const char *name, const char *newName) const;

    /// The name that an entry has meanwhile.
    static QByteArray privateName(const QByteArray &name);
    /// Whether this is the private name of something that was left so by a kill.
    static bool isPrivate(const char *name);
    /// Gives what was left under a private name its own name back; EEXIST if that is taken.
    SystemResult<void> putBack(int folder, const char *privateName) const;

private:
    SystemResult<void> removeIfSame(int folder, const char *aside,
                                    const FileStatus &expected) const;

    const SystemCalls &m_calls;
};
