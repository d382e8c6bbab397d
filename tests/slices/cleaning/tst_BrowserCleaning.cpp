#include "platform/system/HostSystemCalls.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/record/Info.h"
#include "tests/slices/kit/Consent.h"
#include "tests/slices/kit/FailingRemoval.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/run/TestMain.h"

#include <unistd.h>

namespace {

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
    cleanBrowserData(home, home.survey(), excluding({home.access().file(profile + "History")}),
                     calls);
    const std::set<QByteArray> left = tree(home.path(profile.chopped(1)));
    QCOMPARE(left, std::set<QByteArray>(
                       {"Cookies", "Cookies-journal", "History", "History-wal", "History-shm"}));
}

void TestBrowserCleaning::keepsTheJournalsOfADatabaseThatCannotBeLookedAt()
{
    class Unreadable final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            const bool isIt = qstrcmp(call, "status") == 0 && qstrcmp(name, "Cookies") == 0;
            return isIt ? std::optional(EIO) : std::nullopt;
        }
    };
    const QByteArray profile = ".config/chromium/Default/";
    const MadeHome home({profile + "Cookies", profile + "Cookies-journal", profile + "History"});
    cleanBrowserData(home, home.survey(), {}, Unreadable());
    QCOMPARE(tree(home.path(profile.chopped(1))),
             std::set<QByteArray>({"Cookies", "Cookies-journal"}));
}

VANTOR_TEST_MAIN(TestBrowserCleaning)
#include "tst_BrowserCleaning.moc"
