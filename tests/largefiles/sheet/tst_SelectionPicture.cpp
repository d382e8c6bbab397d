#include "largefiles/sheet/SelectionPicture.h"
#include "platform/system/HostSystemCalls.h"

#include "largefiles/sheet/FileIconNames.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QLabel>
#include <QSignalSpy>

namespace {

/// Two labels, and a home with a film in it.
struct ShownPicture
{
    ShownPicture()
    {
        folder.makeFolder("Movies/Old");
        folder.makeFile("Movies/Old/summer.mkv", 10);
        label.resize(220, 220);
        place.resize(220, 20);
        picture.setLabels(label, place);
    }

    File film() const
    {
        return File(FileUrl::fromPath(folder.path("Movies/Old/summer.mkv"), FileUrlKind::File));
    }

    ScratchFolder folder;
    FolderAccess access{folder.path()};
    FileIconNames icons;
    QLabel label;
    QLabel place;
    SelectionPicture picture{
        {hostSystemCalls(), access}, icons, FileUrl::fromPath(folder.path(), FileUrlKind::Folder)};
};

} // namespace

class TestSelectionPicture final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheIconAtOnceAndThenTheContent();
    void namesTheFolderFromTheHomeOn_data();
    void namesTheFolderFromTheHomeOn();
    void showsAHintInsteadOfAPicture();
    void leavesNoPictureWithoutAHint();
    void changesTheHint();
};

void TestSelectionPicture::showsTheIconAtOnceAndThenTheContent()
{
    ShownPicture made;
    QSignalSpy shown(&made.picture, &SelectionPicture::shown);
    made.picture.showFile(made.film());
    QVERIFY(!made.label.pixmap().isNull());
    QCOMPARE(made.label.accessibleName(), QStringLiteral("Picture of summer.mkv"));
    QCOMPARE(shown.count(), 0);
    QVERIFY(shown.wait());
    QCOMPARE(made.label.pixmap().size(), QSize(220, 220));
}

void TestSelectionPicture::namesTheFolderFromTheHomeOn_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("place");
    QTest::newRow("in the home") << QByteArray() << QStringLiteral("In Movies/Old");
    QTest::newRow("elsewhere") << QByteArray("/else/where/a.mkv")
                               << QStringLiteral("In /else/where");
}

void TestSelectionPicture::namesTheFolderFromTheHomeOn()
{
    QFETCH(const QByteArray, path);
    ShownPicture made;
    made.picture.showFile(path.isEmpty() ? made.film()
                                         : File(FileUrl::fromPath(path, FileUrlKind::File)));
    QTEST(made.place.text(), "place");
}

void TestSelectionPicture::showsAHintInsteadOfAPicture()
{
    ShownPicture made;
    QSignalSpy shown(&made.picture, &SelectionPicture::shown);
    made.picture.showFile(made.film());
    made.picture.showNothing(QStringLiteral("Select a file."));
    QVERIFY(made.label.pixmap().isNull());
    QCOMPARE(made.label.text(), QStringLiteral("Select a file."));
    QCOMPARE(made.label.accessibleName(), QString()); // the text speaks
    QCOMPARE(made.place.text(), QString());
    QCOMPARE(shown.count(), 1);
}

void TestSelectionPicture::leavesNoPictureWithoutAHint()
{
    ShownPicture made;
    made.picture.showFile(made.film());
    made.picture.showNothing({});
    QVERIFY(made.label.pixmap().isNull());
}

void TestSelectionPicture::changesTheHint()
{
    ShownPicture made;
    made.picture.showNothing({});
    made.picture.setHint(QStringLiteral("Select a file."));
    QCOMPARE(made.label.text(), QStringLiteral("Select a file."));
    made.picture.setHint({});
    QCOMPARE(made.label.text(), QString());
}

VANTOR_GUI_TEST_MAIN(TestSelectionPicture)
#include "tst_SelectionPicture.moc"
