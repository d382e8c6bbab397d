#include "slices/record/SliceCatalogue.h"

#include "slices/record/Info.h"
#include "tests/support/run/TestMain.h"

#include <QSet>
#include <set>

namespace {

const FileUrl kHome = FileUrl::fromPath("/home/anna", FileUrlKind::Folder);

QByteArrayList pathsOf(SliceKind kind)
{
    QByteArrayList paths;
    for (const FileUrl &url : sliceLocations(kind, kHome).value_or(FileUrls()))
        paths.append(url.absoluteString());
    return paths;
}

} // namespace

class TestSliceCatalogue final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsItsOrder();
    void explainsEachSlice();
    void paintsEachSliceInItsColors();
    void switchesFourSlicesOnByDefault();
    void offersToShowFourSlices();
    void tellsTheSlicesApart();
    void hasALocationOfEachSliceThatIsNotPicked();
    void leavesLargeFilesToTheUser();
    void namesEveryLocationBelowTheHome();
    void givesFoldersAndFilesTheirForm();
    void tellsFilesFromFoldersByTheRecord_data();
    void tellsFilesFromFoldersByTheRecord();
    void findsSlicesByName();
};

void TestSliceCatalogue::keepsItsOrder()
{
    QStringList names;
    for (int i = 0; i < kSliceCount; ++i) {
        QCOMPARE(indexOf(sliceCatalogue()[i].kind), i);
        names.append(QString::fromUtf16(sliceCatalogue()[i].name));
    }
    QCOMPARE(names,
             QStringList({QStringLiteral("Trash"), QStringLiteral("Large Files"),
                          QStringLiteral("Cache"), QStringLiteral("App Logs"),
                          QStringLiteral("Old iOS"), QStringLiteral("Downloads"),
                          QStringLiteral("Mail Downloads"), QStringLiteral("Browser Data")}));
}

void TestSliceCatalogue::explainsEachSlice()
{
    const QStringList details{
        QStringLiteral("Empty the Trash"),
        QStringLiteral("View all files (except files excluded in the Preferences) organized by "
                       "size. Added files are not deleted."),
        QStringLiteral("Cache files increase speeds of your apps. Cache files can acclimate over "
                       "time to gigabytes of data because some apps don’t ever delete them "
                       "leading to many unused files."),
        QStringLiteral("Similar to Cache, some apps make log files that could end up leading to "
                       "large files"),
        QStringLiteral("Every single iOS update that is downloaded from iTunes is stored on your "
                       "Mac."),
        QStringLiteral("Delete all items in the downloads folder. Please make sure to view and "
                       "check your downloads folder before deleting all files from there."),
        QStringLiteral("Attachments downloaded in Mail are stored in your hard drive when they "
                       "are opened."),
        QStringLiteral("Removes browser data from Safari and Chrome such as cookie files and "
                       "website cache.")};
    for (int i = 0; i < kSliceCount; ++i)
        QCOMPARE(QString::fromUtf16(sliceCatalogue()[i].details), details[i]);
}

void TestSliceCatalogue::paintsEachSliceInItsColors()
{
    const std::vector<std::pair<SliceColor, SliceColor>> colors{
        {{93, 183, 26}, {103, 166, 56}},    {{237, 215, 98}, {206, 179, 36}},
        {{167, 118, 235}, {135, 100, 183}}, {{93, 156, 236}, {46, 126, 227}},
        {{112, 210, 48}, {123, 186, 82}},   {{242, 175, 37}, {237, 160, 29}},
        {{215, 112, 173}, {220, 86, 165}},  {{62, 173, 228}, {18, 164, 236}}};
    for (int i = 0; i < kSliceCount; ++i) {
        QVERIFY(sliceCatalogue()[i].color == colors[i].first);
        QVERIFY(sliceCatalogue()[i].secondaryColor == colors[i].second);
    }
}

void TestSliceCatalogue::switchesFourSlicesOnByDefault()
{
    QList<bool> defaults;
    for (const SliceDescription &slice : sliceCatalogue())
        defaults.append(slice.isOnByDefault);
    QCOMPARE(defaults, QList<bool>({true, false, true, true, true, false, false, false}));
}

void TestSliceCatalogue::offersToShowFourSlices()
{
    constexpr auto kNever = RevealPolicy::Never;
    constexpr auto kAlways = RevealPolicy::Always;
    QList<RevealPolicy> policies;
    for (const SliceDescription &slice : sliceCatalogue())
        policies.append(slice.reveal);
    QCOMPARE(policies, QList<RevealPolicy>({kAlways, kNever, kNever, kNever,
                                            RevealPolicy::WhenThere, kAlways, kAlways, kNever}));
}

/// People know them by their names and colours, the stored selection knows them by their order.
void TestSliceCatalogue::tellsTheSlicesApart()
{
    QSet<QString> names;
    std::set<SliceColor> colors{kOffColor, kOffSecondaryColor};
    for (const SliceDescription &slice : sliceCatalogue()) {
        names.insert(QString::fromUtf16(slice.name));
        colors.insert({slice.color, slice.secondaryColor});
        QVERIFY(!QString::fromUtf16(slice.details).isEmpty());
        QCOMPARE(&sliceDescription(slice.kind), &slice);
        QCOMPARE(sliceKindNamed(QString::fromUtf16(slice.name)), std::optional(slice.kind));
    }
    QCOMPARE(names.size(), kSliceCount);
    QCOMPARE(colors.size(), std::size_t{2} * kSliceCount + 2);
}

void TestSliceCatalogue::hasALocationOfEachSliceThatIsNotPicked()
{
    for (const SliceDescription &slice : sliceCatalogue())
        QCOMPARE(pathsOf(slice.kind).isEmpty(), slice.kind == SliceKind::LargeFiles);
}

void TestSliceCatalogue::leavesLargeFilesToTheUser()
{
    QVERIFY(!sliceLocations(SliceKind::LargeFiles, kHome));
}

void TestSliceCatalogue::namesEveryLocationBelowTheHome()
{
    for (const SliceDescription &slice : sliceCatalogue()) {
        for (const QByteArray &path : pathsOf(slice.kind))
            QVERIFY2(path.startsWith(kHome.absoluteString()) && path != kHome.absoluteString(),
                     path);
    }
}

void TestSliceCatalogue::givesFoldersAndFilesTheirForm()
{
    QCOMPARE(pathsOf(SliceKind::Trash), QByteArrayList({"file:///home/anna/.Trash/"}));
    QCOMPARE(pathsOf(SliceKind::OldIos),
             QByteArrayList({"file:///home/anna/Library/iTunes/iPad%20Software%20Updates/",
                             "file:///home/anna/Library/iTunes/iPod%20Software%20Updates/",
                             "file:///home/anna/Library/iTunes/iPhone%20Software%20Updates/"}));
    const QByteArrayList browser = pathsOf(SliceKind::BrowserData);
    QCOMPARE(browser.size(), 5);
    QCOMPARE(browser[2], QByteArray("file:///home/anna/Library/Application%20Support/Google/Chrome/"
                                    "Default/Web%20Data"));
}

void TestSliceCatalogue::tellsFilesFromFoldersByTheRecord_data()
{
    QTest::addColumn<bool>("areFiles");
    QTest::newRow("Trash") << false;
    QTest::newRow("Large Files") << true;
    QTest::newRow("Cache") << false;
    QTest::newRow("App Logs") << false;
    QTest::newRow("Old iOS") << false;
    QTest::newRow("Downloads") << false;
    QTest::newRow("Mail Downloads") << false;
    QTest::newRow("Browser Data") << true;
    QTest::newRow("no slice of ours") << false;
    QTest::newRow("browser data") << false;
}

void TestSliceCatalogue::tellsFilesFromFoldersByTheRecord()
{
    const auto record =
        Info::infoWithName(QString::fromLatin1(QTest::currentDataTag()), std::nullopt);
    QTEST(infoIsFilesNotFolders(*record), "areFiles");
}

void TestSliceCatalogue::findsSlicesByName()
{
    QCOMPARE(sliceKindNamed(QStringLiteral("Browser Data")), std::optional(SliceKind::BrowserData));
    QVERIFY(!sliceKindNamed(QStringLiteral("Movies")));
}

VANTOR_TEST_MAIN(TestSliceCatalogue)
#include "tst_SliceCatalogue.moc"
