#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/record/Info.h"
#include "tests/slices/kit/Consent.h"
#include "tests/slices/kit/FailingRemoval.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

#include <atomic>
#include <cerrno>
#include <unistd.h>

namespace {

/// The database cannot be looked at, from this look on.
class Unreadable final : public HookedCalls
{
public:
    explicit Unreadable(int look) : m_look(look) {}

    std::optional<int> before(const char *call, int, const char *name) const override
    {
        const bool isIt = qstrcmp(call, "status") == 0 && qstrcmp(name, "Cookies") == 0;
        return isIt && ++m_looks >= m_look ? std::optional(EIO) : std::nullopt;
    }

private:
    int m_look;
    mutable std::atomic<int> m_looks = 0;
};

CleaningReport cleanBrowserData(const MadeHome &home, const HomeLayout &layout,
                                const ExcludedPaths &excluded = {},
                                const SystemCalls &calls = hostSystemCalls())
{
    const auto record = Info::infoWithName(QStringLiteral("Browser Data"),
                                           layout.locations(SliceKind::BrowserData));
    return clean(home.access(), slicesToClean(layout, {record}, consentTo(home.access(), {record})),
                 excluded, calls);
}

} // namespace

/// What is special about removing the databases of a freedesktop home's browsers.
class TestBrowserCleaning final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void removesNoFolderPutInThePlaceOfABrowsersFile();
    void keepsTheJournalsOfADatabaseThatStays();
    void keepsTheJournalsOfADatabaseThatCannotBeLookedAt();
    void keepsTheJournalWhenTheLastLookFails();
    void keepsTheJournalOfADatabaseThatComesMeanwhile();
};

void TestBrowserCleaning::removesNoFolderPutInThePlaceOfABrowsersFile()
{
    const MadeHome home({".mozilla/firefox/a/cookies.sqlite"});
    home.nameFirefoxProfiles({"a"});
    const HomeLayout layout = home.survey();
    const QByteArray place = home.path(".mozilla/firefox/a/cookies.sqlite");
    QVERIFY(::unlink(place.constData()) == 0);
    home.make(".mozilla/firefox/a/cookies.sqlite/letter");
    const CleaningReport report = cleanBrowserData(home, layout);
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::NotAFile);
    QVERIFY(exists(place + "/letter"));
}

void TestBrowserCleaning::keepsTheJournalsOfADatabaseThatStays()
{
    const QByteArray profile = ".config/chromium/Default/";
    const MadeHome home({profile + "Cookies", profile + "Cookies-journal", profile + "History",
                         profile + "History-wal", profile + "History-shm", profile + "Web Data",
                         profile + "Web Data-journal"});
    const FailingRemoval calls("Cookies");
    const CleaningReport report = cleanBrowserData(
        home, home.survey(), excluding({home.access().file(profile + "History")}), calls);
    QCOMPARE(report.failures.size(), 1); // the others belong to it, or to what is excluded
    QVERIFY(report.refusals.isEmpty());
    const std::set<QByteArray> left = tree(home.path(profile.chopped(1)));
    QCOMPARE(left, std::set<QByteArray>(
                       {"Cookies", "Cookies-journal", "History", "History-wal", "History-shm"}));
}

void TestBrowserCleaning::keepsTheJournalsOfADatabaseThatCannotBeLookedAt()
{
    const QByteArray profile = ".config/chromium/Default/";
    const MadeHome home({profile + "Cookies", profile + "Cookies-journal", profile + "History"});
    const CleaningReport report = cleanBrowserData(home, home.survey(), {}, Unreadable(1));
    QCOMPARE(tree(home.path(profile.chopped(1))),
             std::set<QByteArray>({"Cookies", "Cookies-journal"}));
    QCOMPARE(report.refusals.size(), 1); // the journal belongs to what it names
    QCOMPARE(report.refusals.first().path, home.path(profile + "Cookies"));
}

/// The plan's look and the one after it find that it is gone.
void TestBrowserCleaning::keepsTheJournalWhenTheLastLookFails()
{
    const QByteArray profile = ".config/chromium/Default/";
    const MadeHome home({profile + "Cookies", profile + "Cookies-journal"});
    const HomeLayout layout = home.survey();
    move(home.path(profile + "Cookies"), home.path("Cookies"));
    const CleaningReport report = cleanBrowserData(home, layout, {}, Unreadable(3));
    QVERIFY(exists(home.path(profile + "Cookies-journal")));
    QCOMPARE(report.refusals.value(0).reason, RefusalReason::StillNeeded);
}

/// Between any two calls. Only when it comes after the last look, before the removal itself, the
/// journal goes.
void TestBrowserCleaning::keepsTheJournalOfADatabaseThatComesMeanwhile()
{
    const QByteArray profile = ".config/chromium/Default/";
    int kept = 0;
    int calls = 1; // grows with what each run needs
    for (int call = 0; call < calls; ++call) {
        const MadeHome home({profile + "Cookies", profile + "Cookies-journal"});
        const HomeLayout layout = home.survey();
        move(home.path(profile + "Cookies"), home.path("Cookies"));
        const QByteArray journal = home.path(profile + "Cookies-journal");
        bool hadJournal = false;
        const Interloper arrival({{call, [&] {
                                       hadJournal = exists(journal);
                                       move(home.path("Cookies"), home.path(profile + "Cookies"));
                                   }}});
        const CleaningReport report = cleanBrowserData(home, layout, {}, arrival);
        calls = std::max(calls, arrival.count());
        const bool isChosen = !exists(home.path(profile + "Cookies")); // it goes with its journal
        if (!hadJournal || isChosen || arrival.interrupted() == "removeFile Cookies-journal")
            continue;
        QVERIFY2(exists(journal), arrival.interrupted());
        QVERIFY2(report.refusalCount > 0, arrival.interrupted());
        ++kept;
    }
    QVERIFY2(kept > 5, QByteArray::number(kept));
}

VANTOR_TEST_MAIN(TestBrowserCleaning)
#include "tst_BrowserCleaning.moc"
