#include "platform/confinement/ProcessConfinement.h"

#include "platform/confinement/ReadableFolders.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <initializer_list>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// A guest and all that it starts. Counted in the sandbox alone.
constexpr rlim_t kMostProcesses = 128;
constexpr unsigned kThread = CLONE_VM | CLONE_THREAD;
/// Documents may name fonts that they do not bring along.
constexpr std::array kFontFolders{"/usr/share/fonts", "/usr/local/share/fonts",
                                  "/usr/share/X11/fonts"};

/// The calls of the system that a process may make. What is not known on this machine is passed
/// over: then it cannot be called either.
class SystemCallFilter final
{
public:
    explicit SystemCallFilter(std::uint32_t others) : m_filter(::seccomp_init(others)) {}
    ~SystemCallFilter() { ::seccomp_release(m_filter); }
    SystemCallFilter(const SystemCallFilter &) = delete;
    SystemCallFilter &operator=(const SystemCallFilter &) = delete;

    void add(std::uint32_t action, std::initializer_list<int> calls)
    {
        for (const int call : calls)
            add(action, call, {});
    }

    void add(std::uint32_t action, int call, std::initializer_list<scmp_arg_cmp> conditions)
    {
        m_isGood = m_isGood && m_filter != nullptr &&
                   ::seccomp_rule_add_array(m_filter, action, call, unsigned(conditions.size()),
                                            conditions.begin()) == 0;
    }

    /// For all threads.
    bool apply() const
    {
        return m_isGood && m_filter != nullptr &&
               ::seccomp_attr_set(m_filter, SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
               ::seccomp_load(m_filter) == 0;
    }

private:
    scmp_filter_ctx m_filter;
    bool m_isGood = true;
};

constexpr std::uint32_t kRefuse = SCMP_ACT_ERRNO(EPERM);
/// The library then makes the older call, whose arguments a filter can see.
constexpr std::uint32_t kUnknown = SCMP_ACT_ERRNO(ENOSYS);

/// Memory, threads and clocks; the process's own signals; what is open.
void allowDecoding(SystemCallFilter &filter)
{
    filter.add(SCMP_ACT_ALLOW,
               {SCMP_SYS(read), SCMP_SYS(readv), SCMP_SYS(pread64), SCMP_SYS(preadv),
                SCMP_SYS(write), SCMP_SYS(writev), SCMP_SYS(lseek), SCMP_SYS(_llseek),
                SCMP_SYS(close), SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(eventfd2),
                SCMP_SYS(poll), SCMP_SYS(ppoll)});
    filter.add(SCMP_ACT_ALLOW, {SCMP_SYS(mmap), SCMP_SYS(mmap2), SCMP_SYS(munmap), SCMP_SYS(mremap),
                                SCMP_SYS(mprotect), SCMP_SYS(madvise), SCMP_SYS(brk)});
    filter.add(SCMP_ACT_ALLOW,
               {SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(set_robust_list), SCMP_SYS(rseq),
                SCMP_SYS(membarrier), SCMP_SYS(sched_yield), SCMP_SYS(sched_getaffinity),
                SCMP_SYS(getcpu), SCMP_SYS(exit), SCMP_SYS(exit_group), SCMP_SYS(gettid)});
    filter.add(SCMP_ACT_ALLOW, {SCMP_SYS(clock_gettime), SCMP_SYS(clock_gettime64),
                                SCMP_SYS(clock_getres), SCMP_SYS(clock_nanosleep),
                                SCMP_SYS(nanosleep), SCMP_SYS(gettimeofday), SCMP_SYS(time)});
    filter.add(SCMP_ACT_ALLOW,
               {SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn),
                SCMP_SYS(sigaltstack), SCMP_SYS(restart_syscall)});
    filter.add(SCMP_ACT_ALLOW, {SCMP_SYS(getpid), SCMP_SYS(getuid), SCMP_SYS(geteuid),
                                SCMP_SYS(getgid), SCMP_SYS(getegid), SCMP_SYS(getrandom),
                                SCMP_SYS(sysinfo), SCMP_SYS(uname), SCMP_SYS(getrlimit)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), {SCMP_A0_32(SCMP_CMP_EQ, unsigned(::getpid()))});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(clone), {SCMP_A0(SCMP_CMP_MASKED_EQ, kThread, kThread)});
    filter.add(kUnknown, {SCMP_SYS(clone3)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(prctl), {SCMP_A0_32(SCMP_CMP_EQ, PR_SET_NAME)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(prlimit64),
               {SCMP_A0_32(SCMP_CMP_EQ, 0), SCMP_A2(SCMP_CMP_EQ, 0)});
    for (const int command : {F_GETFD, F_SETFD, F_GETFL, F_DUPFD_CLOEXEC})
        filter.add(SCMP_ACT_ALLOW, SCMP_SYS(fcntl), {SCMP_A1_32(SCMP_CMP_EQ, unsigned(command))});
}

/// Where to is decided by readOnlyIn().
void allowOpeningToRead(SystemCallFilter &filter)
{
    constexpr unsigned kChanging = O_ACCMODE | O_CREAT | O_TRUNC | O_TMPFILE | O_APPEND;
    constexpr unsigned kNothing = kChanging & ~unsigned(O_DIRECTORY); // a part of O_TMPFILE
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(openat), {SCMP_A2_32(SCMP_CMP_MASKED_EQ, kNothing, 0)});
    filter.add(SCMP_ACT_ALLOW, {SCMP_SYS(getdents64), SCMP_SYS(newfstatat), SCMP_SYS(fstatat64),
                                SCMP_SYS(stat), SCMP_SYS(statx)});
}

bool confineDecoder()
{
    SystemCallFilter filter(kRefuse);
    allowDecoding(filter);
    if (readOnlyIn(kFontFolders))
        allowOpeningToRead(filter);
    return filter.apply();
}

/// What reaches out of a sandbox, or much of the kernel.
void refuseLeaving(SystemCallFilter &filter)
{
    filter.add(kRefuse, {SCMP_SYS(unshare), SCMP_SYS(setns), SCMP_SYS(mount), SCMP_SYS(umount2),
                         SCMP_SYS(pivot_root), SCMP_SYS(chroot), SCMP_SYS(fsopen),
                         SCMP_SYS(fsmount), SCMP_SYS(open_tree), SCMP_SYS(move_mount),
                         SCMP_SYS(mount_setattr), SCMP_SYS(open_by_handle_at)});
    filter.add(kRefuse, {SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
                         SCMP_SYS(pidfd_getfd), SCMP_SYS(kcmp), SCMP_SYS(process_madvise)});
    filter.add(kRefuse, {SCMP_SYS(bpf), SCMP_SYS(perf_event_open), SCMP_SYS(userfaultfd),
                         SCMP_SYS(io_uring_setup), SCMP_SYS(add_key), SCMP_SYS(request_key),
                         SCMP_SYS(keyctl), SCMP_SYS(quotactl), SCMP_SYS(syslog),
                         SCMP_SYS(personality), SCMP_SYS(acct), SCMP_SYS(swapon),
                         SCMP_SYS(kexec_load), SCMP_SYS(init_module), SCMP_SYS(finit_module)});
    filter.add(kRefuse, SCMP_SYS(clone),
               {SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_NEWUSER, CLONE_NEWUSER)});
    filter.add(kUnknown, {SCMP_SYS(clone3)});
    // Only sockets that the sandbox shows, and those between a program's own processes.
    filter.add(SCMP_ACT_ERRNO(EAFNOSUPPORT), SCMP_SYS(socket),
               {SCMP_A0_32(SCMP_CMP_NE, unsigned(AF_UNIX))});
}

bool limitProcesses()
{
    rlimit processes{};
    if (::getrlimit(RLIMIT_NPROC, &processes) != 0)
        return false;
    processes.rlim_max = std::min(processes.rlim_max, kMostProcesses);
    processes.rlim_cur = std::min(processes.rlim_cur, kMostProcesses);
    return ::setrlimit(RLIMIT_NPROC, &processes) == 0;
}

bool confineGuest(Confinement confinement)
{
    SystemCallFilter filter(SCMP_ACT_ALLOW);
    refuseLeaving(filter);
    if (confinement == Confinement::Player) {
        filter.add(kRefuse,
                   {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork)});
        filter.add(kRefuse, SCMP_SYS(clone), {SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0)});
    }
    return limitProcesses() && filter.apply();
}

} // namespace

bool confineThisProcess(Confinement confinement)
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    return confinement == Confinement::Decoder ? confineDecoder() : confineGuest(confinement);
}
