#include "slices/SliceCatalogue.h"
#include "tests/support/TestMain.h"

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
    void switchesFourSlicesOnByDefault();
    void leavesLargeFilesToTheUser();
    void namesEveryLocationBelowTheHome();
    void givesFoldersAndFilesTheirForm();
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

void TestSliceCatalogue::switchesFourSlicesOnByDefault()
{
    QList<bool> defaults;
    for (const SliceDescription &slice : sliceCatalogue())
        defaults.append(slice.isOnByDefault);
    QCOMPARE(defaults, QList<bool>({true, false, true, true, true, false, false, false}));
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

void TestSliceCatalogue::findsSlicesByName()
{
    QCOMPARE(sliceKindNamed(QStringLiteral("Browser Data")), std::optional(SliceKind::BrowserData));
    QVERIFY(!sliceKindNamed(QStringLiteral("Movies")));
}

VANTOR_TEST_MAIN(TestSliceCatalogue)
#include "tst_SliceCatalogue.moc"
