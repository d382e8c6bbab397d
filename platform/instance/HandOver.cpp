#include "platform/instance/HandOver.h"

#include "platform/instance/InstanceCall.h"
#include "platform/instance/InstanceLock.h"

#include <utility>

namespace {

using namespace std::chrono_literals;
/// Between two attempts to reach a program that starts or ends.
constexpr auto kPause = 50ms;

} // namespace

HandOver::HandOver(InstanceLock &lock, Call call, QObject *parent)
    : QObject(parent), m_lock(lock), m_call(std::move(call))
{
    m_retry.setSingleShot(true);
    m_patience.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &HandOver::attempt);
    connect(&m_patience, &QTimer::timeout, this, [this] { finish(HandOverResult::Unanswered); });
    connect(&m_socket, &QLocalSocket::connected, this, &HandOver::send);
    connect(&m_socket, &QLocalSocket::readyRead, this, &HandOver::read);
    const auto retry = [this] { m_retry.start(kPause); };
    connect(&m_socket, &QLocalSocket::disconnected, this, retry);
    connect(&m_socket, &QLocalSocket::errorOccurred, this, retry);
}

void HandOver::start()
{
    m_patience.start(m_call.patience);
    m_retry.start(0ms);
}

void HandOver::attempt()
{
    if (m_isFinished)
        return;
    if (m_lock.take() == InstanceRole::First)
        finish(HandOverResult::Succeeded);
    else if (m_call.socket.isEmpty())
        m_retry.start(kPause);
    else
        m_socket.connectToServer(m_call.socket);
}

void HandOver::send()
{
    m_socket.write(m_call.activation.toBase64() + '\n');
}

void HandOver::read()
{
    if (m_socket.canReadLine() && m_socket.readLine() == InstanceCall::kAnswer)
        finish(HandOverResult::Answered);
}

void HandOver::finish(HandOverResult result)
{
    if (std::exchange(m_isFinished, true))
        return;
    m_retry.stop();
    m_patience.stop();
    Q_EMIT finished(result);
}
