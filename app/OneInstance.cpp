#include "app/OneInstance.h"

#include "platform/base/Log.h"
#include "platform/desktop/Activation.h"

#include <QApplication>
#include <QMessageBox>
#include <cstdlib>

OneInstance::OneInstance(const QString &settingsFolder, std::chrono::milliseconds patience)
    : m_settingsFolder(settingsFolder),
      m_patience(patience),
      m_activation(givenActivation()),
      m_places(InstancePlaces::of(settingsFolder)),
      m_lock(m_places.locks),
      m_role(m_lock.take())
{
}

std::optional<int> OneInstance::settle()
{
    if (m_role == InstanceRole::Second) {
        const std::optional<HandOverResult> result = handOver();
        if (!result)
            return EXIT_FAILURE; // asked to end from outside
        switch (*result) {
        case HandOverResult::Answered:
            return EXIT_SUCCESS;
        case HandOverResult::Unanswered:
            tellOfSilence();
            return EXIT_FAILURE;
        case HandOverResult::Succeeded:
            m_role = InstanceRole::First;
            break;
        }
    }
    m_server = std::make_unique<InstanceServer>(m_places.socket);
    connect(m_server.get(), &InstanceServer::called, this, &OneInstance::called);
    listen();
    return std::nullopt;
}

std::optional<HandOverResult> OneInstance::handOver()
{
    HandOver handOver(m_lock, {m_places.socket, m_activation, m_patience});
    std::optional<HandOverResult> ended;
    connect(&handOver, &HandOver::finished, this, [&ended](HandOverResult result) {
        ended = result;
        QCoreApplication::exit();
    });
    handOver.start();
    QCoreApplication::exec();
    return ended;
}

/// There is no window yet that could show an alert.
void OneInstance::tellOfSilence()
{
    const QString text = tr("Vantor is open already, but does not answer.");
    qCWarning(logVantor).noquote() << text;
    QMessageBox message(QMessageBox::Warning, {}, text, QMessageBox::Close);
    message.setInformativeText(
        tr("Only one Vantor may run at a time, so that none deletes what you have excluded in the "
           "other one. Wait until the open one answers, or end it, and start Vantor again."));
    connect(&message, &QMessageBox::finished, &message, [] { QCoreApplication::exit(); });
    message.open();
    QCoreApplication::exec();
}

QString OneInstance::doubt() const
{
    if (m_role != InstanceRole::Unknown)
        return {};
    return tr("Vantor cannot find out whether it is open more than once, because it can lock no "
              "file in “%1”. Please close every other Vantor.")
        .arg(m_settingsFolder);
}

void OneInstance::close()
{
    m_server->close();
}

/// Without a socket a second start ends as well, but cannot have the window shown.
void OneInstance::listen()
{
    if (!m_server->listen())
        qCWarning(logVantor).noquote() << "no socket for a second start:" << m_server->error();
}
