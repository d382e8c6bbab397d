#include "platform/ConfinedProcess.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int kGlance = 20; // milliseconds between two looks at the program
constexpr rlim_t kMostMemory = 4ULL << 30;
constexpr rlim_t kLargestOutput = 64ULL << 20;
constexpr rlim_t kMostProcessorSeconds = 30;

void limitItself()
{
    ::setpgid(0, 0); // so that it can be ended with all that it starts
    const auto limit = [](auto resource, rlim_t value) {
        const rlimit limits{value, value};
        ::setrlimit(resource, &limits);
    };
    limit(RLIMIT_AS, kMostMemory);
    limit(RLIMIT_FSIZE, kLargestOutput);
    limit(RLIMIT_CPU, kMostProcessorSeconds);
    limit(RLIMIT_CORE, 0);
}

void setUp(QProcess &process, const ConfinedProcess &wanted)
{
    process.setProgram(wanted.program);
    process.setArguments(wanted.arguments);
    process.setWorkingDirectory(wanted.workingFolder);
    process.setChildProcessModifier(&limitItself);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
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
