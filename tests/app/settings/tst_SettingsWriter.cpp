#include "app/settings/SettingsWriter.h"
#include "tests/app/settings/SettingsFolder.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <QSemaphore>
#include <cerrno>

namespace {

QByteArray textOf(int number)
{
    return settingsText({{{QStringLiteral("number"), number}}, {}});
}

QJsonObject valuesOf(int number)
{
    return {{QStringLiteral("number"), number}};
}

/// Holds back every write of a file until it is told to allow it.
class SlowDisk final
{
public:
    HookedSystem::Hook hook()
    {
        return [this](int, std::string_view name) {
            if (name != "write")
                return 0;
            m_reached.release();
            m_allowed.acquire();
            m_allowed.release();
            return 0;
        };
    }
    void waitUntilReached() { m_reached.acquire(); }
    void allow() { m_allowed.release(); }

private:
    QSemaphore m_reached;
    QSemaphore m_allowed;
};

} // namespace

class TestSettingsWriter final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postingWaitsForNothing();
    void onlyTheNewestOfThoseThatWaitIsSaved();
    void whatWaitsAtTheEndIsSaved();
    void everySaveIsReported();
    void flushingTriesAFailedSaveAgain();
    void flushingWithNothingToSaveIsWell();
    void theLeaveToReplaceLastsUntilASaveWentWell();
};

void TestSettingsWriter::postingWaitsForNothing()
{
    const SettingsFolder folder;
    SlowDisk disk;
    const HookedSystem calls(disk.hook());
    SettingsWriter writer(folder.settings(calls), [](const SaveOutcome &) {});
    for (int number = 0; number < 1000; ++number)
        writer.post(textOf(number), Replace::OnlyWhatIsKnown);
    disk.waitUntilReached(); // still here, with the first save stuck
    QVERIFY(!QFile::exists(folder.file()));
    disk.allow();
    QVERIFY(writer.flush().isWell());
    QCOMPARE(folder.settings().load().values, valuesOf(999));
}

void TestSettingsWriter::onlyTheNewestOfThoseThatWaitIsSaved()
{
    const SettingsFolder folder;
    SlowDisk disk;
    const HookedSystem calls(disk.hook());
    std::atomic<int> saves = 0;
    SettingsWriter writer(folder.settings(calls), [&](const SaveOutcome &) { ++saves; });
    writer.post(textOf(0), Replace::OnlyWhatIsKnown);
    disk.waitUntilReached();
    for (int number = 1; number <= 100; ++number)
        writer.post(textOf(number), Replace::OnlyWhatIsKnown);
    disk.allow();
    QVERIFY(writer.flush().isWell());
    QCOMPARE(saves, 2);
    QCOMPARE(folder.settings().load().values, valuesOf(100));
}

void TestSettingsWriter::whatWaitsAtTheEndIsSaved()
{
    const SettingsFolder folder;
    for (int number = 0; number < 20; ++number) {
        {
            SettingsFile file = folder.settings();
            file.load();
            SettingsWriter writer(std::move(file), [](const SaveOutcome &) {});
            writer.post(textOf(number), Replace::OnlyWhatIsKnown);
        }
        QCOMPARE(folder.settings().load().values, valuesOf(number));
    }
}

void TestSettingsWriter::everySaveIsReported()
{
    const SettingsFolder folder;
    HookedSystem calls;
    QList<bool> reports;
    SettingsWriter writer(folder.settings(calls),
                          [&](const SaveOutcome &outcome) { reports.append(outcome.isWell()); });
    writer.post(textOf(0), Replace::OnlyWhatIsKnown);
    QVERIFY(writer.flush().isWell());
    calls.setHook([](int, std::string_view name) { return name == "rename" ? EIO : 0; });
    writer.post(textOf(1), Replace::OnlyWhatIsKnown);
    QVERIFY(!writer.flush().isWell());
    // The flush may have come before or after the first failure, and then it tries once more.
    QVERIFY(reports.size() == 2 || reports.size() == 3);
    QCOMPARE(reports.first(), true);
    QCOMPARE(reports.last(), false);
    QCOMPARE(folder.settings().load().values, valuesOf(0));
}

void TestSettingsWriter::flushingTriesAFailedSaveAgain()
{
    const SettingsFolder folder;
    HookedSystem calls([](int, std::string_view name) { return name == "rename" ? EIO : 0; });
    SettingsWriter writer(folder.settings(calls), [](const SaveOutcome &) {});
    writer.post(textOf(0), Replace::OnlyWhatIsKnown);
    QVERIFY(!writer.flush().isWell());
    calls.setHook({});
    QVERIFY(writer.flush().isWell());
    QCOMPARE(folder.settings().load().values, valuesOf(0));
    QVERIFY(writer.flush().isWell()); // and does not save what is saved
    const int done = calls.callCount();
    QVERIFY(writer.flush().isWell());
    QCOMPARE(calls.callCount(), done);
}

void TestSettingsWriter::flushingWithNothingToSaveIsWell()
{
    const SettingsFolder folder;
    const HookedSystem calls;
    SettingsWriter writer(folder.settings(calls), [](const SaveOutcome &) {});
    QVERIFY(writer.flush().isWell());
    QCOMPARE(calls.callCount(), 0);
}

void TestSettingsWriter::theLeaveToReplaceLastsUntilASaveWentWell()
{
    const SettingsFolder folder;
    SettingsFolder::setRaw(folder.file(), "damaged");
    HookedSystem calls;
    SettingsWriter writer(folder.settings(calls), [](const SaveOutcome &) {});
    writer.post(textOf(0), Replace::OnlyWhatIsKnown);
    QVERIFY(writer.flush().isConflict);

    calls.setHook([](int, std::string_view name) { return name == "sync" ? EIO : 0; });
    writer.post(textOf(1), Replace::Anything);
    QVERIFY(!writer.flush().isWell());
    calls.setHook({});
    writer.post(textOf(2), Replace::OnlyWhatIsKnown);
    QVERIFY(writer.flush().isWell());
    QCOMPARE(folder.settings().load().values, valuesOf(2));

    SettingsFolder::setRaw(folder.file(), "damaged again");
    writer.post(textOf(4), Replace::OnlyWhatIsKnown); // the permission is used up
    QVERIFY(writer.flush().isConflict);
    QCOMPARE(SettingsFolder::raw(folder.file()), "damaged again");
}

VANTOR_TEST_MAIN(TestSettingsWriter)
#include "tst_SettingsWriter.moc"
