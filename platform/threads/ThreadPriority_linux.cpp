#include "platform/threads/ThreadPriority.h"

#include <linux/ioprio.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int kNiceness = 10;

} // namespace

void setThreadPriority(ThreadPriority priority)
{
    if (priority == ThreadPriority::Usual)
        return;
    // Both calls mean the thread, not the process, when they are given a thread's number. A user
    // who has made the whole program nicer than that keeps it so.
    const auto thread = static_cast<id_t>(gettid());
    if (getpriority(PRIO_PROCESS, thread) < kNiceness)
        setpriority(PRIO_PROCESS, thread, kNiceness);
    syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, thread, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}
