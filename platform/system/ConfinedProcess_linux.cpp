#include "platform/system/ConfinedProcess.h"

#include "platform/system/FileDescriptor.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <csignal>
#include <poll.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kGlance = 20; // milliseconds between two looks at the program

/// Runs in the child, between fork and exec.
void limitItself(const ProcessLimits &limits, int input)
{
    ::setpgid(0, 0); // so that it can be killed with what it starts
    const auto limit = [](auto resource, rlim_t value) {
        const rlimit both{value, value};
        ::setrlimit(resource, &both);
    };
    limit(RLIMIT_AS, limits.memory);
    limit(RLIMIT_FSIZE, limits.fileSize);
    limit(RLIMIT_CPU, rlim_t(limits.processorTime.count()));
    limit(RLIMIT_CORE, 0);
    if (input >= 0)
        ::dup2(input, STDIN_FILENO);
}

void setUp(QProcess &process, const ConfinedProcess &wanted)
{
    process.setProgram(wanted.program);
    process.setArguments(wanted.arguments);
    process.setWorkingDirectory(wanted.workingFolder);
    process.setChildProcessModifier(
        [limits = wanted.limits, input = wanted.input] { limitItself(limits, input); });
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(wanted.outputFile.isEmpty() ? QProcess::nullDevice()
                                                              : wanted.outputFile);
    process.setStandardErrorFile(QProcess::nullDevice());
}

/// A program from its start until it is reaped. Until then no other process gets its number, so it
/// is safe to signal the program and its group.
class UnreapedProgram final
{
public:
    explicit UnreapedProgram(pid_t number)
        : m_number(number), m_descriptor(int(::syscall(SYS_pidfd_open, number, 0)))
    {
        Q_ASSERT(number > 0);
    }

    /// Waits for kGlance at most.
    bool hasEnded() const
    {
        pollfd end{m_descriptor.get(), POLLIN, 0};
        ::poll(&end, m_descriptor.isValid() ? 1 : 0, kGlance);
        siginfo_t info = {};
        const int asked = ::waitid(P_PID, id_t(m_number), &info, WEXITED | WNOHANG | WNOWAIT);
        return asked != 0 || info.si_pid == m_number;
    }

    void killGroup() const
    {
        siginfo_t info = {};
        const bool isMine =
            ::waitid(P_PID, id_t(m_number), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
        if (m_number > 0 && isMine)
            ::kill(-m_number, SIGKILL);
    }

private:
    const pid_t m_number;
    const FileDescriptor m_descriptor; ///< none on a system that is too old
};

} // namespace

bool runConfined(const ConfinedProcess &wanted, const std::stop_token &stop)
{
    const QDeadlineTimer deadline(wanted.patience);
    QProcess process;
    setUp(process, wanted);
    process.start();
    if (!process.waitForStarted() || process.processId() <= 0)
        return false;
    bool isKilled = false;
    const UnreapedProgram program(static_cast<pid_t>(process.processId()));
    while (!program.hasEnded()) {
        if (isKilled || (!stop.stop_requested() && !deadline.hasExpired()))
            continue;
        program.killGroup();
        isKilled = true;
    }
    program.killGroup(); // what it left behind, before another process can get its number
    process.waitForFinished(-1);
    return !isKilled && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}
