#include "platform/system/HostSystemCalls.h"
#include "tests/largefiles/search/SearchKit.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/disk/OwnMounts.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <cstdio>

namespace {

SearchOutcome search(const SystemCalls &calls, const MadeTree &home, LargeFileListener &listener,
                     const std::stop_token &stop = {})
{
    HomeAccess access(home);
    return searchLargeFiles(calls, access, {searchURLs(homeUrl(home)), {}, {}}, listener, stop, 1);
}

/// What an ordinary user finds and what this user cannot read, comma-separated.
QByteArray foundByNobody(const MadeTree &home)
{
    return runInChild(ChildUser::Nobody,
                      [&] {
                          SearchRecord record(home);
                          const LogRecorder log;
                          search(hostSystemCalls(), home, record);
                          const QByteArray text = sorted(record.files).join(',') + '|' +
                                                  sorted(record.failures).join(',');
                          std::fputs(text.constData(), stderr);
                          return 0;
                      })
        .errorText;
}

void grow(const MadeTree &home)
{
    make(home, {"Desktop/", "Desktop/a", "Movies/", "Movies/a", "Movies/early/", "Movies/early/b",
                "Movies/late/", "Movies/late/c", "Music/", "Music/d"});
}

const QByteArrayList kAll{"Desktop/a", "Movies/a", "Movies/early/b", "Movies/late/c", "Music/d"};

/// Whether all is found, and one of the files does not count as deletable.
bool isOneNotPromised(const SearchRecord &record)
{
    return sorted(record.files) == kAll &&
           std::count_if(record.records.begin(), record.records.end(),
                         [](const File &file) { return !file.isDeletable(); }) == 1;
}

/// Does something when a search of the grown home is about to make a call about a name.
class Meddling
{
public:
    Meddling(WatchedCall call, QByteArray name, std::function<int()> deed)
        : calls([call, name, deed](int, WatchedCall made, const char *about) {
              return made == call && name == about ? deed() : 0;
          })
    {
    }

    const WatchedSystemCalls calls;
};

} // namespace

/// What a search does where something cannot be read, vanishes or is to end.
class TestLargeFileSearchFaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAnErrorToItsFolder();
    void passesAFileOverWhoseStatusIsRefused();
    void passesAFolderOnAnotherDiskOver();
    void tellsWhatAUserCannotRead();
    void tellsWhatAUserCannotDelete();
    void toleratesAFolderThatVanishes();
    void toleratesAFileThatVanishes();
    void isNotLedAstrayByALinkPutInPlace();
    void survivesEveryFailure_data();
    void survivesEveryFailure();
    void stopsBeforeAnyCall();
};

void TestLargeFileSearchFaults::keepsAnErrorToItsFolder()
{
    const MadeTree home;
    grow(home);
    // The folder listed last is entered first.
    const Meddling meddling(WatchedCall::OpenFolder, "late", [] { return EIO; });
    const LogRecorder log;
    SearchRecord record(home);
    QVERIFY(!search(meddling.calls, home, record).isComplete);
    QCOMPARE(record.files, (QByteArrayList{"Desktop/a", "Movies/a", "Music/d"}));
    QCOMPARE(record.failures, QByteArrayList{"Movies/late: " + QByteArray::number(EIO)});
    const QByteArray late =
        FileUrl::fromPath(home.path("Movies/late"), FileUrlKind::Folder).absoluteString();
    QCOMPARE(log.lines(),
             QStringList{QString::fromLatin1(late) + QStringLiteral(", ") + qt_error_string(EIO)});
}

void TestLargeFileSearchFaults::passesAFileOverWhoseStatusIsRefused()
{
    const MadeTree home;
    grow(home);
    const Meddling meddling(WatchedCall::Status, "b", [] { return EIO; });
    const LogRecorder log;
    SearchRecord record(home);
    QVERIFY(!search(meddling.calls, home, record).isComplete);
    QByteArrayList others = kAll;
    others.removeOne("Movies/early/b");
    QCOMPARE(sorted(record.files), others);
    QCOMPARE(record.failures, QByteArrayList{"Movies/early/b: " + QByteArray::number(EIO)});
    QCOMPARE(log.lines(), QStringList{qt_error_string(EIO)});
}

void TestLargeFileSearchFaults::passesAFolderOnAnotherDiskOver()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    MadeTree home;
    grow(home);
    const QByteArray text =
        runInChild(ChildUser::Same, [&] {
            const OwnMounts mounts(home);
            mounts.mountMemory("Movies");
            home.makeFile("Movies/far", kLarge);
            SearchRecord record(home);
            const LogRecorder log;
            search(hostSystemCalls(), home, record);
            const QByteArray said = record.files.join(',') + '|' + record.failures.join(',') + '|' +
                                    log.lines().join(u',').toUtf8();
            std::fputs(mounts.areMade() ? said.constData() : "not made", stderr);
            return 0;
        }).errorText;
    QCOMPARE(text, "Desktop/a,Music/d|Movies: " + QByteArray::number(EXDEV) + '|');
}

void TestLargeFileSearchFaults::tellsWhatAUserCannotRead()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const MadeTree home;
    grow(home);
    make(home, {"Public/", "Public/e", "Sites/", "Sites/listed/", "Sites/listed/f", "Sites/g"});
    home.setMode("Movies/early/b", 0); // its content does not matter, its size is known
    home.setMode("Public", 0);
    home.setMode("Sites/listed", 0444); // shows its names, and nothing else
    const QByteArray error = ": " + QByteArray::number(EACCES);
    QCOMPARE(foundByNobody(home),
             kAll.join(',') + ",Sites/g|Public" + error + ",Sites/listed/f" + error);
}

void TestLargeFileSearchFaults::tellsWhatAUserCannotDelete()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    const MadeTree home;
    make(home, {"Movies/", "Movies/a", "Music/", "Music/b"});
    home.setOwner("Movies", kNobody);
    home.setOwner("Music", kNobody);
    home.setMode("Music", 0555);
    const QByteArray text =
        runInChild(ChildUser::Nobody, [&] {
            SearchRecord record(home);
            search(hostSystemCalls(), home, record);
            for (const File &file : std::as_const(record.records))
                std::fprintf(stderr, "%s %d,", qPrintable(file.name()), file.isDeletable());
            return 0;
        }).errorText;
    QCOMPARE(text, QByteArray("a 1,b 0,"));
}

void TestLargeFileSearchFaults::toleratesAFolderThatVanishes()
{
    const MadeTree home;
    grow(home);
    const Meddling meddling(WatchedCall::OpenFolder, "early", [&] {
        home.remove("Movies/early/b");
        home.remove("Movies/early");
        return 0;
    });
    const LogRecorder log;
    SearchRecord record(home);
    QVERIFY(search(meddling.calls, home, record).isComplete);
    QByteArrayList others = kAll;
    others.removeOne("Movies/early/b");
    QCOMPARE(sorted(record.files), others);
    QCOMPARE(log.lines(), QStringList());
}

void TestLargeFileSearchFaults::toleratesAFileThatVanishes()
{
    const MadeTree home;
    grow(home);
    const Meddling meddling(WatchedCall::Status, "c", [&] {
        home.remove("Movies/late/c");
        return 0;
    });
    SearchRecord record(home);
    QVERIFY(search(meddling.calls, home, record).isComplete);
    QVERIFY(!record.files.contains("Movies/late/c"));
    QCOMPARE(record.files.size(), kAll.size() - 1);
}

void TestLargeFileSearchFaults::isNotLedAstrayByALinkPutInPlace()
{
    const MadeTree home;
    grow(home);
    make(home, {"outside/", "outside/x"});
    const Meddling meddling(WatchedCall::OpenFolder, "early", [&] {
        home.rename("Movies/early", "aside");
        home.makeLink("Movies/early", "../outside");
        return 0;
    });
    SearchRecord record(home);
    search(meddling.calls, home, record);
    QCOMPARE(record.files.size(), kAll.size() - 1);
    QVERIFY(!record.files.contains("Movies/early/x"));
}

void TestLargeFileSearchFaults::survivesEveryFailure_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isTold");
    for (const int error : {EACCES, EIO, ENOMEM, ESTALE, EINTR})
        QTest::addRow("errno %d", error) << error << true;
    for (const int error : {ENOENT, ENOTDIR})
        QTest::addRow("errno %d", error) << error << false;
}

void TestLargeFileSearchFaults::survivesEveryFailure()
{
    QFETCH(int, error);
    QFETCH(bool, isTold);
    const MadeTree home;
    grow(home);
    const WatchedSystemCalls counting([](int, WatchedCall, const char *) { return 0; });
    SearchRecord whole(home);
    search(counting, home, whole);
    QCOMPARE(sorted(whole.files), kAll);
    const LogRecorder quiet;
    for (int k = 0; k < counting.count(); ++k) {
        bool isDescriptor = false;
        const WatchedSystemCalls calls([&](int number, WatchedCall call, const char *) {
            if (number != k)
                return 0;
            isDescriptor = call == WatchedCall::StatusOf;
            return error;
        });
        SearchRecord record(home);
        const SearchOutcome outcome = search(calls, home, record);
        QVERIFY(record.files.size() <= kAll.size());
        const bool isOneTold = !outcome.isComplete && record.failures.size() == 1;
        if (isTold)
            QVERIFY2(isOneTold || isOneNotPromised(record), QByteArray::number(k));
        if (error == ENOENT && !isDescriptor) // what is open does not vanish
            QVERIFY2(outcome.isComplete, QByteArray::number(k));
        // Whatever happens in one of the nine, the others are searched.
        const bool hasOthers = record.files.contains("Desktop/a") +
                                   record.files.contains("Music/d") +
                                   record.files.contains("Movies/a") >=
                               2;
        QVERIFY2(hasOthers, QByteArray::number(k));
    }
}

void TestLargeFileSearchFaults::stopsBeforeAnyCall()
{
    const MadeTree home;
    grow(home);
    const WatchedSystemCalls counting([](int, WatchedCall, const char *) { return 0; });
    SearchRecord whole(home);
    search(counting, home, whole);
    QVERIFY(counting.count() > 20);
    for (int k = 0; k < counting.count(); ++k) {
        std::stop_source stop;
        int after = 0;
        const WatchedSystemCalls calls([&](int number, WatchedCall, const char *) {
            if (number == k)
                stop.request_stop();
            after += number > k ? 1 : 0;
            return 0;
        });
        SearchRecord record(home);
        QVERIFY(!search(calls, home, record, stop.get_token()).isComplete);
        // The search still looks at the folder that it is just opening, but at none of its entries;
        // or it judges the file that it has just found.
        QVERIFY2(after <= 6, QByteArray::number(after));
    }
}

VANTOR_TEST_MAIN(TestLargeFileSearchFaults)
#include "tst_LargeFileSearchFaults.moc"
