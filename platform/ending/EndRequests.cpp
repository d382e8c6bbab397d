#include "platform/ending/EndRequests.h"

#include <QCoreApplication>
#include <QEvent>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

/// The end of the pipe to which the handler writes; -1 while there is none.
volatile std::sig_atomic_t &writeEnd()
{
    static constinit volatile std::sig_atomic_t value = -1;
    return value;
}

/// Runs between any two instructions of any thread, so it may do next to nothing.
void passOn(int signal)
{
    const int error = errno;
    const auto number = static_cast<char>(signal);
    [[maybe_unused]] const ssize_t written = ::write(writeEnd(), &number, 1);
    errno = error;
}

void setAction(int signal, void (*handler)(int), int flags)
{
    struct sigaction before = {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN)
        return;
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    ::sigaction(signal, &action, nullptr);
}

void makePrivate(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

} // namespace

EndRequests::EndRequests()
{
    qApp->installEventFilter(this);
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        return; // then the signals keep their usual effect
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    makePrivate(ends[0]);
    makePrivate(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(m_readEnd.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &EndRequests::takeSignals);
    writeEnd() = m_writeEnd.get();
    setAction(SIGTERM, passOn, SA_RESTART | SA_RESETHAND);
    setAction(SIGINT, passOn, SA_RESTART | SA_RESETHAND);
    setAction(SIGHUP, passOn, SA_RESTART);
}

EndRequests::~EndRequests()
{
    for (const int signal : kSignals)
        setAction(signal, SIG_DFL, 0);
    writeEnd() = -1;
}

void EndRequests::takeSignals()
{
    char number = 0;
    while (::read(m_readEnd.get(), &number, 1) == 1) {
        if (m_signal == 0)
            m_signal = static_cast<unsigned char>(number);
        Q_EMIT endAsked();
    }
}

/// A session that ends does not ask the windows: one with a sheet would refuse, and be killed.
bool EndRequests::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != qApp || event->type() != QEvent::Quit)
        return false;
    Q_EMIT endAsked();
    return true;
}
