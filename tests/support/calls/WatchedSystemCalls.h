#pragma once

#include "platform/system/Descent.h"
#include "platform/system/FileStatus.h"
#include "platform/system/FileSystemTraits.h"
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

/// The system with an observer: before each call of a walk or a measurement, `before` gets the
/// call's number, from 0 on, its kind and the name on which it works ("" where there is none).
/// `before` may change the files, or return an errno with which the call then fails. It runs on the
/// thread that makes the call. Each listing is sorted by name, so a test knows on any file system
/// what comes first. Unless told otherwise it vouches for no trait of the file system, so that the
/// calls are the same on each.
class WatchedSystemCalls final
{
public:
    using Before = std::function<int(int number, WatchedCall call, const char *name)>;

    explicit WatchedSystemCalls(Before before);
    /// Waits for background threads that may be calling.
    ~WatchedSystemCalls();

    /// Lets a test pass this object where SystemCalls are expected.
    operator const SystemCalls &() const;

    int count() const;
    void setTraits(const FileSystemTraits &traits);

private:
    class Calls;
    std::unique_ptr<Calls> m_calls;
};
