#include "platform/look/FileImages.h"
#include "platform/look/Images.h"
#include "tests/support/run/GuiTestMain.h"

class TestFileImages final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsAKindByItsName_data();
    void knowsAKindByItsName();
    void hasADrawingForEveryWord_data();
    void hasADrawingForEveryWord();
};

void TestFileImages::knowsAKindByItsName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("drawing");
    const auto add = [](const char *name, const char *drawing) {
        QTest::addRow("%s", name) << QByteArray(name) << QString::fromLatin1(drawing);
    };
    add("holiday.mov", "documentVideo");
    add("song.mp3", "documentAudio");
    add("photo.JPG", "documentImage");
    add("backup.tar.gz", "documentArchive");
    add("package.deb", "documentArchive");
    add("system.iso", "documentDisk");
    add("machine.qcow2", "documentDisk");
    add("tool.AppImage", "documentProgram");
    add("thesis.pdf", "documentText");
    add("sums.xlsx", "documentText");
    add("readme.txt", "documentText");
    add("no ending", "document");
    add("unknown.q8z", "document");
    add("\xff\xfe.mov", "documentVideo");
}

void TestFileImages::knowsAKindByItsName()
{
    QFETCH(QByteArray, name);
    QTEST(imageNameForGenericIcon(genericIconName(name)), "drawing");
}

void TestFileImages::hasADrawingForEveryWord_data()
{
    QTest::addColumn<QString>("word");
    for (const char *word : {"audio-x-generic", "video-x-generic", "image-x-generic",
                             "text-x-generic", "package-x-generic", "drive-harddisk",
                             "application-x-executable", "x-office-document", "font-x-generic", ""})
        QTest::addRow("%s", word) << QString::fromLatin1(word);
}

void TestFileImages::hasADrawingForEveryWord()
{
    QFETCH(QString, word);
    QVERIFY(hasImageNamed(imageNameForGenericIcon(word)));
}

VANTOR_GUI_TEST_MAIN(TestFileImages)
#include "tst_FileImages.moc"
