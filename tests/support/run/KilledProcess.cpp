#include "tests/support/run/KilledProcess.h"

#include "tests/support/run/Must.h"

#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

RunningProcess::RunningProcess(const std::function<void()> &work) : m_process(::fork())
{
    must(m_process >= 0, "a process");
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it must not outlive a test that is killed
        work();
        ::_exit(0);
    }
}

RunningProcess::~RunningProcess()
{
    if (m_process < 0)
        return;
    kill();
    (void)end();
}

void RunningProcess::kill() const
{
    ::kill(m_process, SIGKILL);
}

WorkEnd RunningProcess::end()
{
    int status = 0;
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR)
        continue;
    m_process = -1;
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        return WorkEnd::Killed;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? WorkEnd::Done : WorkEnd::Failed;
}

WorkEnd runAndKill(const std::function<void()> &work,
                   std::optional<std::chrono::microseconds> after)
{
    RunningProcess process(work);
    if (after) {
        // The kill has to come at any moment of the work, so there is nothing to wait for.
        std::this_thread::sleep_for(*after);
        process.kill();
    }
    return process.end();
}
