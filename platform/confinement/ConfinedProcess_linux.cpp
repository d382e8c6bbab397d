#include "platform/confinement/ConfinedProcess.h"

#include "platform/system/FileDescriptor.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <csignal>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kGlance = 20; // milliseconds between two looks at the program

void setUp(QProcess &process, const ConfinedProcess &wanted)
{
    process.setProgram(wanted.program);
    process.setArguments(wanted.arguments);
    process.setWorkingDirectory(wanted.workingFolder);
    confineChild(process, {wanted.limits, wanted.input, wanted.kept, {}});
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

std::optional<int> runConfined(const ConfinedProcess &wanted, const std::stop_token &stop)
{
    const QDeadlineTimer deadline(wanted.patience);
    QProcess process;
    setUp(process, wanted);
    process.start();
    if (!process.waitForStarted() || process.processId() <= 0)
        return std::nullopt;
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
    if (isKilled || process.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return process.exitCode();
}
