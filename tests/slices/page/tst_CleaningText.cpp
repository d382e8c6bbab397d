#include "slices/page/CleaningText.h"

#include "slices/cleaning/Cleaning.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/home/ProgramsInUse.h"
#include "slices/probe/PlaceOutOfReach.h"
#include "slices/record/Info.h"
#include "slices/record/SliceCatalogue.h"
#include "tests/support/run/GuiTestMain.h"

class TestCleaningText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksWithTheSlicesThatAreOn();
    void asksWithTheSizeWithoutWhatIsInUse();
    void namesTheFolderOfDownloads();
    void saysWhatIsKeptWithItsSize();
    void saysWhichPlacesAreOutOfReach();
    void saysWhichProgramsKeepTheirFiles();
    void saysWhatIsNoticedOfOpenFiles();
    void namesEveryPlaceLeftAloneWithItsReason();
    void countsWhatItDoesNotName();
    void saysNothingWhenNothingWasLeftAlone();
    void showsWhatIsKnownToBeExcluded();
    void namesExclusionsThatCannotBeRead();
    void namesExclusionsThatWereFound();
};

void TestCleaningText::asksWithTheSlicesThatAreOn()
{
    const auto trash = Info::infoWithName(QStringLiteral("Trash"), std::nullopt);
    const auto cache = Info::infoWithName(QStringLiteral("Cache"), std::nullopt);
    const auto logs = Info::infoWithName(QStringLiteral("App Logs"), std::nullopt);
    cache->setIsOn(false);
    QCOMPARE(confirmationText({trash, cache, logs}),
             QStringLiteral("You have chosen to delete these slices:\n• Trash\n• App Logs\n\n"
                            "Are you sure you want to permanently erase the items you’ve selected "
                            "and that are in colored slices? You cannot undo this action and we "
                            "recommend backing up before continuing."));
}

void TestCleaningText::asksWithTheSizeWithoutWhatIsInUse()
{
    const auto trash = Info::infoWithName(QStringLiteral("Trash"), std::nullopt);
    const auto browsers = Info::infoWithName(QStringLiteral("Browser Data"), std::nullopt);
    browsers->setFileSize(12'000'000);
    QStringList names{QStringLiteral("Edge")};
    const auto programs = [&](SliceKind kind) {
        return kind == SliceKind::BrowserData ? names : QStringList();
    };
    QVERIFY(
        confirmationText({trash, browsers}, {programs, {}})
            .contains(QStringLiteral("• Trash\n• Browser Data (12 MB without the files of Edge, "
                                     "which is in use)\n\n")));
    names.append({QStringLiteral("Vivaldi"), QStringLiteral("Firefox")});
    QVERIFY(confirmationText({trash, browsers}, {programs, {}})
                .contains(QStringLiteral("(12 MB without the files of Edge, Vivaldi and Firefox, "
                                         "which are in use)\n")));
    QVERIFY(confirmationText({trash, browsers}, {programs, {}, ProgramsSeen::Some})
                .contains(QStringLiteral("(12 MB without the files of Edge, Vivaldi and Firefox, "
                                         "which may be in use)\n")));
    browsers->setIsOn(false);
    QVERIFY(!confirmationText({trash, browsers}, {programs, {}}).contains(QStringLiteral("Edge")));
}

void TestCleaningText::namesTheFolderOfDownloads()
{
    const auto trash = Info::infoWithName(QStringLiteral("Trash"), std::nullopt);
    const auto downloads = Info::infoWithName(QStringLiteral("Downloads"), std::nullopt);
    QVERIFY(
        confirmationText({trash, downloads}, {{}, QStringLiteral("Data/ダウンロード")})
            .contains(QStringLiteral("• Trash\n• Downloads (the folder “Data/ダウンロード”)\n")));
    QVERIFY(confirmationText({trash, downloads}).contains(QStringLiteral("• Downloads\n")));
}

void TestCleaningText::saysWhatIsKeptWithItsSize()
{
    QCOMPARE(keptText({}), QString());
    QCOMPARE(keptText({{QStringLiteral("drafts"), std::nullopt},
                       {QStringLiteral("files"), 1'200'000'000}}),
             QStringLiteral(" Not removed, because it is no cache: drafts and files (1.2 GB)."));
}

void TestCleaningText::saysWhichPlacesAreOutOfReach()
{
    const QList<PlaceOutOfReach> places{{".cache", Obstacle::Link},
                                        {"Fast/cache", Obstacle::OtherFileSystem}};
    QCOMPARE(outOfReachText({}), QString());
    QCOMPARE(outOfReachText(places),
             QStringLiteral(" Left alone: “.cache”, because it is a link and “Fast/cache”, because "
                            "it is on another disk."));
    const auto cache = Info::infoWithName(QStringLiteral("Cache"), std::nullopt);
    const auto trash = Info::infoWithName(QStringLiteral("Trash"), std::nullopt);
    const auto ofCache = [&](SliceKind kind) {
        return kind == SliceKind::Cache ? places.first(1) : QList<PlaceOutOfReach>();
    };
    QVERIFY(
        confirmationText({trash, cache}, {{}, {}, {}, ofCache})
            .contains(QStringLiteral("• Trash\n• Cache (not “.cache”, because it is a link)\n")));
}

void TestCleaningText::saysWhichProgramsKeepTheirFiles()
{
    const QStringList one{QStringLiteral("Edge")};
    const QStringList two{QStringLiteral("Edge"), QStringLiteral("Brave")};
    QCOMPARE(inUseText({}, ProgramsSeen::All), QString());
    QCOMPARE(inUseText({}, ProgramsSeen::Some), QString());
    QCOMPARE(inUseText(one, ProgramsSeen::All), QStringLiteral(" Edge is in use: its files stay."));
    QCOMPARE(inUseText(two, ProgramsSeen::All),
             QStringLiteral(" Edge and Brave are in use: their files stay."));
    QCOMPARE(inUseText(one, ProgramsSeen::Some),
             QStringLiteral(" Edge may be in use: its files stay."));
    QCOMPARE(inUseText(two, ProgramsSeen::Some),
             QStringLiteral(" Edge and Brave may be in use: their files stay."));
}

void TestCleaningText::saysWhatIsNoticedOfOpenFiles()
{
    QCOMPARE(cacheInUseText(ProgramsSeen::All),
             QStringLiteral(" A folder in it stays while a program has something open there."));
    QVERIFY(cacheInUseText(ProgramsSeen::Some).contains(QStringLiteral("cannot see here")));
}

void TestCleaningText::namesEveryPlaceLeftAloneWithItsReason()
{
    CleaningReport report;
    QStringList reasons;
    for (int reason = 0; reason <= static_cast<int>(kLastRefusalReason); ++reason) {
        report.refusals = {{"/home/anna/place", static_cast<RefusalReason>(reason), 0}};
        const QString text = leftAloneText(report);
        QVERIFY(text.startsWith(QStringLiteral("/home/anna/place: ")));
        reasons.append(text);
    }
    QCOMPARE(reasons.removeDuplicates(), 0);
}

void TestCleaningText::countsWhatItDoesNotName()
{
    CleaningReport report;
    for (int i = 0; i < 12; ++i)
        report.refusals.append({"/p" + QByteArray::number(i), RefusalReason::Unreadable, 0});
    const QStringList lines = leftAloneText(report).split(u'\n');
    QCOMPARE(lines.size(), 9);
    QCOMPARE(lines.constLast(), QStringLiteral("and 4 more"));
}

void TestCleaningText::saysNothingWhenNothingWasLeftAlone()
{
    CleaningReport report;
    report.failureCount = 3; // single files: logged, not told
    QCOMPARE(leftAloneText(report), QString());
}

void TestCleaningText::showsWhatIsKnownToBeExcluded()
{
    const auto excluded =
        ExcludedPaths::fromStoredStrings({QStringLiteral("file:///home/anna/Keep/")});
    const QString text = unknownExclusionsText(QStringLiteral("Damaged."), excluded);
    QVERIFY(text.startsWith(QStringLiteral("Damaged.")));
    QVERIFY(text.contains(QStringLiteral("/home/anna/Keep")));
    QVERIFY(unknownExclusionsText({}, {}).contains(QStringLiteral("No path")));
}

void TestCleaningText::namesExclusionsThatCannotBeRead()
{
    const QString text = unparsableExclusionsText({QStringLiteral("nonsense")});
    QVERIFY(text.contains(QStringLiteral("preferences")));
    QVERIFY(text.endsWith(QStringLiteral("\nnonsense")));
}

void TestCleaningText::namesExclusionsThatWereFound()
{
    const QString text =
        foundExclusionsText({QStringLiteral("file:///home/anna/a"), QStringLiteral("nonsense")});
    QVERIFY(text.contains(QStringLiteral("\n/home/anna/a\nnonsense")));
}

VANTOR_GUI_TEST_MAIN(TestCleaningText)
#include "tst_CleaningText.moc"
