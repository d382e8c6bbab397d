#include "slices/home/HomeLayout.h"
#include "tests/support/run/TestMain.h"

/// What the page says of the slices in each kind of home.
class TestHomeLayout final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesTheSlicesOfAFreedesktopHome_data();
    void describesTheSlicesOfAFreedesktopHome();
    void describesAllSlicesWithoutGaps();
    void namesDownloadsThatAreCalledOtherwise();
};

void TestHomeLayout::describesTheSlicesOfAFreedesktopHome_data()
{
    QTest::addColumn<SliceKind>("kind");
    QTest::addColumn<QString>("details");
    QTest::newRow("trash") << SliceKind::Trash << "Empty the Trash";
    QTest::newRow("old iOS") << SliceKind::OldIos
                             << "Every single iOS update that is downloaded from iTunes is stored "
                                "in the folder of Wine.";
    QTest::newRow("mail") << SliceKind::MailDownloads
                          << "Attachments downloaded in Claws Mail and Sylpheed are stored in your "
                             "hard drive when they are opened.";
    QTest::newRow("browsers")
        << SliceKind::BrowserData
        << "Removes browser data from Firefox, Chrome, Chromium, Brave, Edge and Vivaldi such as "
           "cookie files, the history of the latter five and what was typed into forms.";
}

void TestHomeLayout::describesTheSlicesOfAFreedesktopHome()
{
    QFETCH(const SliceKind, kind);
    QFETCH(const QString, details);
    const auto home = FileUrl::fromPath("/home/anna", FileUrlKind::Folder);
    QCOMPARE(HomeLayout::freedesktop(home, {}).details(kind), details);
}

void TestHomeLayout::describesAllSlicesWithoutGaps()
{
    const auto home = FileUrl::fromPath("/home/anna", FileUrlKind::Folder);
    for (const SliceDescription &slice : sliceCatalogue()) {
        for (const HomeLayout &layout :
             {HomeLayout::withLibrary(home), HomeLayout::freedesktop(home, {})}) {
            const QString details = layout.details(slice.kind);
            QVERIFY2(!details.isEmpty() && !details.contains(u'{') && !details.contains(u'%'),
                     qPrintable(details));
        }
    }
}

void TestHomeLayout::namesDownloadsThatAreCalledOtherwise()
{
    const auto home = FileUrl::fromPath("/home/anna", FileUrlKind::Folder);
    HomeLayout::Findings findings;
    findings.locations[indexOf(SliceKind::Downloads)] = {
        home.appending("Get", FileUrlKind::Folder)};
    const HomeLayout layout = HomeLayout::freedesktop(home, findings);
    QCOMPARE(layout.nameOfDownloads(), QStringLiteral("Get"));
    QVERIFY(layout.details(SliceKind::Downloads)
                .endsWith(QStringLiteral("all files from there. It is called “Get”.")));
}

VANTOR_TEST_MAIN(TestHomeLayout)
#include "tst_HomeLayout.moc"
