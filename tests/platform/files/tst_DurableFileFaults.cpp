#include "tests/platform/files/DurableFileFolder.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/disk/TinyDisk.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// How many calls a write makes in a folder that was filled.
int callsOfOneWrite(Replace replace)
{
    const DurableFileFolder folder;
    folder.fill();
    const HookedSystem calls;
    DurableFile file = folder.file(calls);
    (void)file.write(kNew, replace);
    return calls.callCount();
}

} // namespace

/// What a durable file leaves behind when a system call fails, or when no further call is made.
class TestDurableFileFaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingIsSyncedBeforeItIsRenamed();
    void everyFailedCallLeavesTheOldOrTheNew_data();
    void everyFailedCallLeavesTheOldOrTheNew();
    void aCallThatWasInterruptedIsMadeAgain();
    void aCallThatIsAlwaysInterruptedFails();
    void everyKillLeavesTheOldOrTheNew_data();
    void everyKillLeavesTheOldOrTheNew();
    void everyKillOfTheFirstWriteLeavesNothingOrTheNew();
    void everyKillKeepsADamagedFile();
    void aFolderThatCannotBeSyncedIsNoFailure();
    void aFullDiskLeavesTheOld();
    void aFolderThatMayNotBeChangedLeavesTheOld();
};

void TestDurableFileFaults::everythingIsSyncedBeforeItIsRenamed()
{
    const DurableFileFolder folder;
    folder.fill();
    QByteArrayList names;
    const HookedSystem calls([&](int, std::string_view name) {
        names.append(QByteArray(name.data(), qsizetype(name.size())));
        return 0;
    });
    QVERIFY(folder.file(calls).write(kNew, Replace::Anything));
    const QByteArray writing = "removeFile createFile write sync ";
    QCOMPARE(names.join(' '), writing + "openFile read read " + writing + "rename rename sync");
}

void TestDurableFileFaults::everyFailedCallLeavesTheOldOrTheNew_data()
{
    QTest::addColumn<int>("error");
    for (const int error : {EIO, ENOSPC, EDQUOT, EACCES, EROFS, EINTR})
        QTest::newRow(QByteArray::number(error)) << error;
}

void TestDurableFileFaults::everyFailedCallLeavesTheOldOrTheNew()
{
    QFETCH(int, error);
    const int count = callsOfOneWrite(Replace::Anything);
    QVERIFY(count > 10);
    for (int number = 1; number <= count; ++number) {
        const DurableFileFolder folder;
        folder.fill();
        HookedSystem calls;
        DurableFile file = folder.file(calls);
        file.read(Generation::Current);
        calls.setHook(HookedSystem::failing(number, error));
        const auto written = file.write(kNew, Replace::OnlyWhatIsKnown);

        const DurableContent found = folder.file().read(Generation::Current);
        QCOMPARE(found.state, DurableState::Good);
        const bool isSyncOfTheFolder = number == count;
        QCOMPARE(found.bytes, written || isSyncOfTheFolder ? kNew : kOld);
        QVERIFY(folder.badFiles().isEmpty());
        const QByteArray previous = folder.file().read(Generation::Previous).bytes;
        QVERIFY(previous == kOlder || previous == kOld);

        QVERIFY(file.write("afterwards", Replace::OnlyWhatIsKnown));
        QCOMPARE(folder.file().read(Generation::Current).bytes, "afterwards");
        QCOMPARE(folder.entries().size(), 2);
    }
}

void TestDurableFileFaults::aCallThatWasInterruptedIsMadeAgain()
{
    for (const char *interrupted : {"write", "read"}) {
        const DurableFileFolder folder;
        folder.fill();
        int count = 0;
        const HookedSystem calls([&](int, std::string_view name) {
            return name == interrupted && count++ == 0 ? EINTR : 0;
        });
        QVERIFY(folder.file(calls).write(kNew, Replace::Anything));
        QVERIFY(count > 1);
        QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
        QCOMPARE(folder.file().read(Generation::Previous).bytes, kOld);
    }
}

void TestDurableFileFaults::aCallThatIsAlwaysInterruptedFails()
{
    constexpr int kForEver = 100'000;
    for (const char *interrupted : {"write", "read"}) {
        const DurableFileFolder folder;
        folder.fill();
        int count = 0;
        const HookedSystem calls([&](int, std::string_view name) {
            return name != interrupted ? 0 : count++ < kForEver ? EINTR : EIO;
        });
        const auto written = folder.file(calls).write(kNew, Replace::OnlyWhatIsKnown);
        QVERIFY(!written);
        QCOMPARE(written.error().error, EINTR);
        QCOMPARE(folder.file().read(Generation::Current).bytes, kOld);
    }
}

void TestDurableFileFaults::everyKillLeavesTheOldOrTheNew_data()
{
    QTest::addColumn<Replace>("replace");
    QTest::newRow("known") << Replace::OnlyWhatIsKnown;
    QTest::newRow("anything") << Replace::Anything;
}

void TestDurableFileFaults::everyKillLeavesTheOldOrTheNew()
{
    QFETCH(Replace, replace);
    const int count = callsOfOneWrite(Replace::Anything);
    for (int number = 1; number <= count + 1; ++number) {
        const DurableFileFolder folder;
        folder.fill();
        HookedSystem calls;
        DurableFile file = folder.file(calls);
        file.read(Generation::Current);
        calls.setHook(HookedSystem::killedBefore(number));
        (void)file.write(kNew, replace);

        DurableFile afterwards = folder.file();
        const DurableContent found = afterwards.read(Generation::Current);
        QCOMPARE(found.state, DurableState::Good);
        QCOMPARE(found.bytes, number >= count ? kNew : kOld);
        const DurableContent previous = afterwards.read(Generation::Previous);
        QCOMPARE(previous.state, DurableState::Good);
        QVERIFY(previous.bytes == kOlder || previous.bytes == kOld);
        QVERIFY(afterwards.write("afterwards", Replace::OnlyWhatIsKnown));
    }
}

void TestDurableFileFaults::everyKillOfTheFirstWriteLeavesNothingOrTheNew()
{
    const DurableFileFolder untouched;
    const HookedSystem counting;
    QVERIFY(untouched.file(counting).write(kNew, Replace::OnlyWhatIsKnown));
    for (int number = 1; number <= counting.callCount(); ++number) {
        const DurableFileFolder folder;
        const HookedSystem calls(HookedSystem::killedBefore(number));
        QVERIFY(!folder.file(calls).write(kNew, Replace::OnlyWhatIsKnown));
        const DurableContent found = folder.file().read(Generation::Current);
        const bool isInPlace = number == counting.callCount();
        QCOMPARE(found.state, isInPlace ? DurableState::Good : DurableState::Missing);
        QCOMPARE(found.bytes, isInPlace ? kNew : QByteArray());
    }
}

void TestDurableFileFaults::everyKillKeepsADamagedFile()
{
    for (int number = 1;; ++number) {
        const DurableFileFolder folder;
        folder.fill();
        folder.setRaw("damaged");
        const HookedSystem calls(HookedSystem::killedBefore(number));
        const bool isWritten = folder.file(calls).write(kNew, Replace::Anything).has_value();

        const bool isSetAside = folder.file().hasFilesSetAside().value();
        const QByteArray kept =
            isSetAside ? folder.badFiles().first().toLatin1() : QByteArray(kName);
        QCOMPARE(folder.raw(kept), "damaged");
        QCOMPARE(folder.file().read(Generation::Previous).bytes, kOlder);
        if (isWritten)
            break;
    }
}

void TestDurableFileFaults::aFolderThatCannotBeSyncedIsNoFailure()
{
    const int count = callsOfOneWrite(Replace::Anything);
    for (const int error : {EINVAL, ENOTSUP}) {
        const DurableFileFolder folder;
        folder.fill();
        const HookedSystem calls(HookedSystem::failing(count, error));
        QVERIFY(folder.file(calls).write(kNew, Replace::Anything));
        QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
    }
}

void TestDurableFileFaults::aFullDiskLeavesTheOld()
{
    const DurableFileFolder folder;
    constexpr int kDiskSize = 64 * 1024;
    const int answer = runWithTinyDisk(folder.path(), kDiskSize, [&folder] {
        folder.fill();
        QFile filler(folder.path("filler"));
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return 1;
        while (filler.write(QByteArray(4096, 'x')) > 0) {
        }
        DurableFile file = folder.file();
        file.read(Generation::Current);
        const auto written = file.write(kNew, Replace::OnlyWhatIsKnown);
        if (written || written.error().error != ENOSPC)
            return 2;
        if (folder.file().read(Generation::Current).bytes != kOld)
            return 3;
        filler.remove(); // the cleaning did its work
        if (!file.write(kNew, Replace::OnlyWhatIsKnown))
            return 4;
        return folder.file().read(Generation::Current).bytes == kNew ? 0 : 5;
    });
    QCOMPARE(answer, 0);
}

void TestDurableFileFaults::aFolderThatMayNotBeChangedLeavesTheOld()
{
    const DurableFileFolder folder;
    folder.fill();
    QFile::setPermissions(folder.path(kName), QFile::Permissions(0x4444));
    QFile::setPermissions(folder.path(), QFile::Permissions(0x5555));
    const int answer = runInChild(ChildUser::Nobody, [&folder] {
                           DurableFile file = folder.file();
                           if (file.read(Generation::Current).bytes != kOld)
                               return 1;
                           const auto written = file.write(kNew, Replace::Anything);
                           if (written || written.error().error != EACCES)
                               return 2;
                           return folder.file().read(Generation::Current).bytes == kOld ? 0 : 3;
                       }).exitCode;
    QCOMPARE(answer, 0);
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7700));
}

VANTOR_TEST_MAIN(TestDurableFileFaults)
#include "tst_DurableFileFaults.moc"
