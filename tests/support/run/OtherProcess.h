#pragma once

#include "tests/support/run/Must.h"

#include <csignal>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Another process, which does something and then waits to be ended.
class OtherProcess final
{
public:
    /// Returns when the work is done.
    explicit OtherProcess(const std::function<void()> &work)
    {
        int ready[2];
        must(::pipe(ready) == 0, "a pipe");
        const pid_t test = ::getpid();
        m_process = ::fork();
        must(m_process >= 0, "a process");
        if (m_process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it must not outlive a test that is killed
            must(::getppid() == test, "the test that it is for");
            work();
            must(::write(ready[1], "x", 1) == 1, "a sign that it is ready");
            for (;;)
                ::pause();
        }
        ::close(ready[1]);
        char sign = 0;
        must(::read(ready[0], &sign, 1) == 1, "waiting for the other process");
        ::close(ready[0]);
    }
    ~OtherProcess() { end(); }
    OtherProcess(const OtherProcess &) = delete;
    OtherProcess &operator=(const OtherProcess &) = delete;

    pid_t number() const { return m_process; }
    void end()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
        m_process = 0;
    }

private:
    pid_t m_process = 0;
};
