#pragma once

#include "platform/system/Descent.h"
#include "platform/system/FileStatus.h"
#include "platform/system/SystemResult.h"
#include <functional>
#include <memory>

class SystemCalls;

enum class WatchedCall {
    OpenFolder,
    OpenParent,
    ReadEntries,
    Status,
    StatusOf,
    KindBehind,
    MayChangeEntries
};

/// The system, with somebody looking on: before each call of a walk or a measure `before` is told
/// its number, from 0 on, what it is and the name that it is about ("" where there is none). It may
/// change the files meanwhile, or answer an errno with which the call is to fail. It is called on
/// whatever thread makes the call. Each listing comes sorted by name, so that a test knows what
/// comes first on any file system.
class WatchedSystemCalls final
{
public:
    using Before = std::function<int(int number, WatchedCall call, const char *name)>;

    explicit WatchedSystemCalls(Before before);
    /// Waits for background threads that may be calling.
    ~WatchedSystemCalls();

    /// Stands for the calls wherever they are asked for.
    operator const SystemCalls &() const;

    int count() const;

private:
    class Calls;
    std::unique_ptr<Calls> m_calls;
};
