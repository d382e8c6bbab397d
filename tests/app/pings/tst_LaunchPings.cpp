#include "app/pings/Addresses.h"
#include "app/pings/LaunchPings.h"
#include "app/pings/PingSender.h"
#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/RecordingServer.h"
#include "tests/support/run/TestMain.h"

#include <QTemporaryDir>

namespace {

/// Writes down which pings it is asked for.
class ListingUpdater final : public StatsUpdater
{
public:
    void updateStatsForURLString(const QString &urlString) override { m_asked.append(urlString); }
    QStringList asked() const { return m_asked; }

private:
    QStringList m_asked;
};

const Addresses kAddresses{.firstLaunchPing = QStringLiteral("first"),
                           .launchPing = QStringLiteral("launch"),
                           .cleaningPing = QStringLiteral("cleaning"),
                           .facebook = {},
                           .twitter = {},
                           .homePage = {}};

} // namespace

class TestLaunchPings final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstLaunchSendsTwo();
    void everyOtherLaunchSendsOne();
    void aFirstLaunchCountsEvenWhenItsPingsFail();
    void bothPagesAreReallyAskedFor();

private:
    std::unique_ptr<UserDefaults> defaultsIn(const QTemporaryDir &folder)
    {
        auto defaults = std::make_unique<UserDefaults>(folder.path(), hostSystemCalls());
        defaults->registerDefaults(registeredDefaults());
        return defaults;
    }
};

void TestLaunchPings::theFirstLaunchSendsTwo()
{
    const QTemporaryDir folder;
    const auto defaults = defaultsIn(folder);
    const LogRecorder log;
    ListingUpdater updater;
    sendLaunchPings(*defaults, updater, kAddresses);
    QCOMPARE(updater.asked(), QStringList({QStringLiteral("first"), QStringLiteral("launch")}));
    QCOMPARE(log.lines(), QStringList{QStringLiteral("Here")});
    QVERIFY(defaults->boolean(VNTHasLaunchedBeforeString));
}

void TestLaunchPings::everyOtherLaunchSendsOne()
{
    const QTemporaryDir folder;
    {
        const auto defaults = defaultsIn(folder);
        ListingUpdater updater;
        sendLaunchPings(*defaults, updater, kAddresses);
    }
    for (int launch = 0; launch < 2; ++launch) {
        const auto defaults = defaultsIn(folder);
        const LogRecorder log;
        ListingUpdater updater;
        sendLaunchPings(*defaults, updater, kAddresses);
        QCOMPARE(updater.asked(), QStringList{QStringLiteral("launch")});
        QCOMPARE(log.lines(), QStringList());
    }
}

void TestLaunchPings::aFirstLaunchCountsEvenWhenItsPingsFail()
{
    Addresses addresses;
    {
        const RecordingServer closed;
        addresses.firstLaunchPing = addresses.launchPing = closed.address(QStringLiteral("/page"));
    }
    const QTemporaryDir folder;
    const LogRecorder log;
    {
        const auto defaults = defaultsIn(folder);
        PingSender sender(PingHelper{});
        sendLaunchPings(*defaults, sender, addresses);
        QVERIFY(defaults->boolean(VNTHasLaunchedBeforeString));
        QTRY_COMPARE(log.lines().size(), 3);
    }
    const QString refused = QStringLiteral("Error: Connection refused");
    QCOMPARE(log.lines(), QStringList({QStringLiteral("Here"), refused, refused}));
    QVERIFY(defaultsIn(folder)->boolean(VNTHasLaunchedBeforeString));
}

void TestLaunchPings::bothPagesAreReallyAskedFor()
{
    RecordingServer server;
    Addresses addresses;
    addresses.firstLaunchPing = server.address(QStringLiteral("/first"));
    addresses.launchPing = server.address(QStringLiteral("/launch"));
    server.servePage(QStringLiteral("/first"), {});
    server.servePage(QStringLiteral("/launch"), {});
    const QTemporaryDir folder;
    const auto defaults = defaultsIn(folder);
    const LogRecorder log;
    PingSender sender(PingHelper{});
    sendLaunchPings(*defaults, sender, addresses);
    QTRY_COMPARE(server.requests().size(), 2);
    QCOMPARE(server.requestCount(QStringLiteral("/first")), 1);
    QCOMPARE(server.requestCount(QStringLiteral("/launch")), 1);
    // Nothing about the user or the machine goes with it.
    for (const QByteArray &head : server.heads())
        QVERIFY(!head.contains('?') && !head.toLower().contains("cookie"));
}

VANTOR_TEST_MAIN(TestLaunchPings)
#include "tst_LaunchPings.moc"
