#pragma once

#include "app/pings/StatsUpdater.h"

#include <QObject>
#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;

/// The program that loads a ping's page in an off-screen browser view, in a process of its own. So
/// its memory is given back when it is done, and its crash harms nothing else. It gets no home, no
/// bus and no agent of the user.
struct PingHelper
{
    QString program;
    static constexpr std::chrono::seconds kLongest{15};
    std::chrono::milliseconds limit = kLongest; ///< then it is killed

    /// The helper that was installed beside the running program.
    static PingHelper besideTheProgram();
};

/// Sends usage pings: plain page loads that carry nothing about the user or the machine.
///
/// Owned by the start-up; main thread only. A ping is a plain GET; when the page is there and is
/// not empty, the helper loads it once more with its scripts, which is what the statistics count.
/// No more than 1 MB of the answer is read. Nothing waits for a ping, several may be under way at
/// once, and none is sent again. When this is destroyed, what is under way is dropped without
/// delay, the helpers' processes included.
///
/// Log lines: "Loading", or "Error: " and the transport's error. The status code is never looked
/// at.
class PingSender final : public QObject, public StatsUpdater
{
    Q_OBJECT

public:
    explicit PingSender(PingHelper helper = PingHelper::besideTheProgram(),
                        QObject *parent = nullptr);
    ~PingSender() override;

    void updateStatsForURLString(const QString &urlString) override;

private:
    void finish(QNetworkReply &reply, const QUrl &url, qint64 length);
    void takePage(const QUrl &url);
    void loadPage(const QUrl &url);

    PingHelper m_helper;
    QNetworkAccessManager *const m_network;
};
