#include "platform/files/ExistingLocations.h"
#include "platform/system/HostSystemCalls.h"

#include "tests/slices/kit/HomeKit.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/run/TestMain.h"

#include <QTest>

class TestExistingLocations final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhatIsThere();
    void endsEarlyWhenStopped();
};

void TestExistingLocations::findsWhatIsThere()
{
    const MadeHome home({"Movies/old/", "notes.txt"});
    home.link("link", "nowhere");
    home.link("away", "Movies");
    FolderAccess access(home.path());
    const auto url = [&home](const QByteArray &path) {
        return home.url().appending(path, FileUrlKind::File);
    };
    const FileUrls places{url("Movies/old"), url("missing"), url("notes.txt"),  url("link"),
                          url("away/old"),   url("a/b/c"),   url("../outside"), FileUrl()};
    QCOMPARE(existingLocations(hostSystemCalls(), access, places, {}),
             FileUrls({url("Movies/old"), url("notes.txt"), url("link")}));
    QCOMPARE(access.count(), 0);
}

void TestExistingLocations::endsEarlyWhenStopped()
{
    const MadeHome home({"notes.txt"});
    FolderAccess access(home.path());
    std::stop_source stop;
    stop.request_stop();
    QVERIFY(existingLocations(hostSystemCalls(), access,
                              {home.url().appending("notes.txt", FileUrlKind::File)},
                              stop.get_token())
                .isEmpty());
}

VANTOR_TEST_MAIN(TestExistingLocations)
#include "tst_ExistingLocations.moc"
