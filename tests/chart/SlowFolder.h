#pragma once

#include "slices/record/Info.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <QSemaphore>
#include <QTest>
#include <atomic>

/// A folder whose measurement goes on until the test lets it end.
class SlowFolder final
{
public:
    ~SlowFolder()
    {
        allow();
        awaitBackgroundThreads();
    }

    std::shared_ptr<Info> info(const QString &name)
    {
        Info::Services services;
        services.measure = [this](const FileUrl &, const FileUrls &) {
            ++measured;
            m_started.release();
            m_allowed.acquire();
            return bytes.load();
        };
        return Info::infoWithName(name, FileUrls{FileUrl::fromPath("/slow", FileUrlKind::Folder)},
                                  services);
    }

    bool startsWithin(int milliseconds) { return m_started.tryAcquire(1, milliseconds); }
    void awaitStart() { QVERIFY(startsWithin(5000)); }
    void allow() { m_allowed.release(100); }

    std::atomic<qint64> bytes = 1240000000;
    std::atomic<int> measured = 0;

private:
    QSemaphore m_started;
    QSemaphore m_allowed;
};
