#include "platform/ConfinedProcess.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kGlance = 20; // milliseconds between two looks at the program

/// Runs in the child, between fork and exec.
void limitItself(const ProcessLimits &limits, int input)
{
    ::setpgid(0, 0); // so that it can be ended with all that it starts
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

} // namespace

bool runConfined(const ConfinedProcess &wanted, const std::stop_token &stop)
{
    const QDeadlineTimer deadline(wanted.patience);
    QProcess process;
    setUp(process, wanted);
    process.start();
    if (!process.waitForStarted())
        return false;
    const auto group = static_cast<pid_t>(-process.processId());
    bool isKilled = false;
    while (!process.waitForFinished(kGlance) && process.state() != QProcess::NotRunning) {
        if (stop.stop_requested() || deadline.hasExpired()) {
            ::kill(group, SIGKILL);
            isKilled = true;
        }
    }
    ::kill(group, SIGKILL); // what it has left behind
    return !isKilled && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}
