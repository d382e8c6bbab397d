#include "largefiles/search/File.h"
#include "tests/support/run/TestMain.h"

Q_DECLARE_METATYPE(FileUrlKind)

class TestFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsNothingButItsPlaceAtFirst();
    void isNamedByItsLastComponent_data();
    void isNamedByItsLastComponent();
    void keepsWhatItIsTold();
};

void TestFile::knowsNothingButItsPlaceAtFirst()
{
    const FileUrl url = FileUrl::fromPath("/home/anna/Movies/a.mov", FileUrlKind::File);
    const File file(url);
    QVERIFY(file.fileURL() == url);
    QVERIFY(file.previewItemURL() == url);
    QCOMPARE(file.size(), 0);
    QVERIFY(!file.sizeString());
    QVERIFY(!file.isAdded());
}

void TestFile::isNamedByItsLastComponent_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<FileUrlKind>("kind");
    QTest::addColumn<QString>("name");
    QTest::addRow("file") << QByteArray("/home/anna/a.mov") << FileUrlKind::File
                          << QStringLiteral("a.mov");
    QTest::addRow("folder") << QByteArray("/home/anna/Movies") << FileUrlKind::Folder
                            << QStringLiteral("Movies");
    QTest::addRow("no UTF-8") << QByteArray("/home/anna/\xff.mov") << FileUrlKind::File
                              << QStringLiteral("\uFFFD.mov");
    QTest::addRow("root") << QByteArray("/") << FileUrlKind::Folder << QStringLiteral("/");
}

void TestFile::isNamedByItsLastComponent()
{
    QFETCH(QByteArray, path);
    QFETCH(FileUrlKind, kind);
    QTEST(File(FileUrl::fromPath(path, kind)).name(), "name");
}

void TestFile::keepsWhatItIsTold()
{
    File file(FileUrl::fromPath("/home/anna/a.mov", FileUrlKind::File));
    file.setSize(100'000'001);
    file.setSizeString(QStringLiteral("100 MB"));
    file.setIsAdded(true);
    QCOMPARE(file.size(), 100'000'001);
    QCOMPARE(*file.sizeString(), QStringLiteral("100 MB"));
    QVERIFY(file.isAdded());
}

VANTOR_TEST_MAIN(TestFile)
#include "tst_File.moc"
