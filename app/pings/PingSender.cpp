#include "app/pings/PingSender.h"

#include "platform/base/Log.h"
#include "platform/base/LogText.h"
#include "platform/confinement/ChildConfinement.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTimer>
#include <memory>

namespace {

using namespace std::chrono_literals;
constexpr auto kTransferTimeout = 60s;
/// How much of an answer is read. A page that is longer is there, which is all that matters.
constexpr qint64 kMostRead = qint64{1024} * 1024;
constexpr qint64 kMostBuffered = qint64{64} * 1024;
/// Without the variable the engine would ask the system where the user's home is.
const QString kNoHome = QStringLiteral("/nonexistent");

/// Whether the page did not come at all. A server's own "not found" page is a page like any other:
/// the library reports its status as an error, but the transport had no error.
bool isTransportError(const QNetworkReply &reply)
{
    if (reply.error() == QNetworkReply::NoError)
        return false;
    constexpr int kFirstErrorStatus = 400;
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool isOfTheStatus = status >= kFirstErrorStatus &&
                               reply.error() > QNetworkReply::UnknownNetworkError &&
                               reply.error() != QNetworkReply::ProtocolFailure;
    return !isOfTheStatus;
}

QNetworkRequest plainRequest(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setTransferTimeout(int(std::chrono::milliseconds(kTransferTimeout).count()));
    // No cookie is kept, so none is ever given back, not even within one run.
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    return request;
}

/// The helper has the network by its purpose, and the web engine guards its own pages. It keeps the
/// language, and what leads to the network and what is trusted there; the flags are for those who
/// run the engine where its guards cannot work. Its reservations of address space and the time that
/// its scripts need are its own business: it is killed at its limit.
void confineHelper(QProcess &helper)
{
    ChildConfinement confinement;
    confinement.limits.memory = std::nullopt;
    for (const char *variable :
         {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY", "HTTPS_PROXY",
          "ALL_PROXY", "NO_PROXY", "SSL_CERT_FILE", "SSL_CERT_DIR", "QTWEBENGINE_DISABLE_SANDBOX",
          "QTWEBENGINE_CHROMIUM_FLAGS"})
        confinement.variables << QString::fromLatin1(variable);
    confineChild(helper, confinement);
    QProcessEnvironment environment = helper.processEnvironment();
    environment.insert(QStringLiteral("HOME"), kNoHome);
    helper.setProcessEnvironment(environment);
}

void reportEnd(const QProcess &helper)
{
    if (helper.exitStatus() == QProcess::CrashExit)
        qCInfo(logVantor, "The page of a ping was given up.");
    else if (helper.exitCode() != 0)
        qCInfo(logVantor, "The page of a ping was not loaded.");
}

} // namespace

PingHelper PingHelper::besideTheProgram()
{
    return {QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-ping")};
}

PingSender::PingSender(PingHelper helper, QObject *parent)
    : QObject(parent), m_helper(std::move(helper)), m_network(new QNetworkAccessManager(this))
{
}

PingSender::~PingSender()
{
    const auto helpers = findChildren<QProcess *>();
    for (QProcess *helper : helpers) {
        helper->disconnect();
        helper->kill();
    }
    for (QProcess *helper : helpers)
        helper->waitForFinished(); // waits only until the killed process is taken down
}

void PingSender::updateStatsForURLString(const QString &urlString)
{
    const QUrl url(urlString);
    QNetworkReply *reply = m_network->get(plainRequest(url));
    reply->setReadBufferSize(kMostBuffered);
    const auto length = std::make_shared<qint64>(0);
    connect(reply, &QNetworkReply::readyRead, this, [this, reply, url, length] {
        *length += reply->read(kMostRead - *length).size();
        if (*length < kMostRead)
            return;
        reply->disconnect(this);
        reply->deleteLater();
        takePage(url);
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, url, length] {
        reply->deleteLater();
        finish(*reply, url, *length + reply->bytesAvailable());
    });
}

void PingSender::finish(QNetworkReply &reply, const QUrl &url, qint64 length)
{
    if (isTransportError(reply)) {
        qCInfo(logVantor, "Error: %ls", qUtf16Printable(logText(reply.errorString())));
        return;
    }
    if (length > 0)
        takePage(url);
}

void PingSender::takePage(const QUrl &url)
{
    loadPage(url);
    qCInfo(logVantor, "Loading");
}

void PingSender::loadPage(const QUrl &url)
{
    auto *helper = new QProcess(this);
    confineHelper(*helper);
    helper->setStandardInputFile(QProcess::nullDevice());
    helper->setStandardOutputFile(QProcess::nullDevice());
    helper->setStandardErrorFile(QProcess::nullDevice());
    connect(helper, &QProcess::errorOccurred, this, [helper](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        qCInfo(logVantor, "The page of a ping has no program to load it: %ls",
               qUtf16Printable(logText(helper->errorString())));
        helper->deleteLater();
    });
    connect(helper, &QProcess::finished, this, [helper] {
        reportEnd(*helper);
        helper->deleteLater();
    });
    QTimer::singleShot(m_helper.limit, helper, &QProcess::kill);
    helper->start(m_helper.program,
                  {url.toString(QUrl::FullyEncoded), QString::number(m_helper.limit.count())});
}
