#pragma once

#include <QByteArray>
#include <array>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

/// Runs a part of a test in a process of its own, for changes that cannot be undone: other mounts,
/// another user, smaller limits. The part returns what is wrong, or nothing; this function returns
/// the same.
inline QByteArray inChild(const std::function<QByteArray()> &piece)
{
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0)
        return "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        const QByteArray words = piece();
        const ssize_t written = ::write(pipe[1], words.constData(), std::size_t(words.size()));
        ::_exit(written == words.size() ? 0 : 1);
    }
    ::close(pipe[1]);
    QByteArray words;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(pipe[0], buffer.data(), buffer.size())) > 0;)
        words.append(buffer.data(), count);
    ::close(pipe[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? words : "the child died: " + words;
}
