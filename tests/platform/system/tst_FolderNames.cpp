#include "platform/system/FolderNames.h"

#include "tests/support/run/TestMain.h"

namespace {

/// The mounts of a desktop, and of a sandbox on it.
constexpr auto kMounts = R"(21 1 254:0 / / rw,relatime - ext4 /dev/vda rw
22 21 254:1 /@home /home rw,relatime shared:1 - btrfs /dev/vdb rw
23 21 254:1 /@home/anna/.cache /mnt/with\040a\040blank rw - btrfs /dev/vdb rw
24 21 254:1 /@home/anna/.cache/prog/deep /mnt/deep rw - btrfs /dev/vdb rw
25 21 0:30 / /home/other rw - tmpfs none rw
26 21 254:1 /@home/annabel /mnt/annabel rw - btrfs /dev/vdb rw
)";

} // namespace

/// Under which paths a folder is seen.
class TestFolderNames final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhereAPathLeads_data();
    void findsWhereAPathLeads();
    void findsThePlaceOfAFolder_data();
    void findsThePlaceOfAFolder();
    void knowsOnlyItsPathWithoutMounts();
    void takesTheFolderAtTheTop();
};

void TestFolderNames::findsWhereAPathLeads_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("inside");
    const auto row = [](const char *path, const char *inside) {
        QTest::newRow(path) << QByteArray(path) << QByteArray(inside);
    };
    row("/home/anna/.cache/prog/a/b", "prog/a/b");
    row("/home/anna/.cache/prog", "prog");
    row("/home/anna/.cache", "");
    row("/home/anna/.cache/", "");
    row("/home/anna/.cacheprog/a", "");
    row("/home/anna", "");
    row("/", "");
    row("/mnt/with a blank/prog/a", "prog/a");
    row("/mnt/with a blank", "");
    row("/mnt/deep/a", "prog/deep/a");
    row("/mnt/deep", "prog/deep");
    row("/mnt/deeper", "");
    row("/mnt/annabel/.cache/prog", "");
    row("/home/other/anna/.cache/prog", "");
}

void TestFolderNames::findsWhereAPathLeads()
{
    QFETCH(const QByteArray, path);
    FolderNames names;
    names.add(kMounts, {"254:1", "/@home/anna/.cache"});
    QTEST(names.pathInside(path), "inside");
}

void TestFolderNames::findsThePlaceOfAFolder_data()
{
    QTest::addColumn<QByteArray>("mount");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("place");
    QTest::newRow("below a mount") << QByteArray("22") << QByteArray("/home/anna/.cache")
                                   << QByteArray("254:1 /@home/anna/.cache/");
    QTest::newRow("on the first one")
        << QByteArray("21") << QByteArray("/srv") << QByteArray("254:0 /srv/");
    QTest::newRow("a mount itself")
        << QByteArray("25") << QByteArray("/home/other") << QByteArray("0:30 /");
    QTest::newRow("not below it") << QByteArray("25") << QByteArray("/home/anna") << QByteArray();
    QTest::newRow("no such mount") << QByteArray("9") << QByteArray("/home/anna") << QByteArray();
}

void TestFolderNames::findsThePlaceOfAFolder()
{
    QFETCH(const QByteArray, mount);
    QFETCH(const QByteArray, path);
    const auto place = FolderPlace::of(kMounts, mount, path);
    QTEST(place ? place->device + ' ' + place->path : QByteArray(), "place");
}

void TestFolderNames::knowsOnlyItsPathWithoutMounts()
{
    FolderNames names;
    QCOMPARE(names.pathInside("/home/anna/.cache/prog"), QByteArray());
    names.add("/home/anna/.cache");
    QCOMPARE(names.pathInside("/home/anna/.cache/prog"), QByteArray("prog"));
    names.add("nonsense\n\n1 2 3\n", {"254:1", "/@home/anna/.cache"});
    QCOMPARE(names.pathInside("/mnt/deep"), QByteArray());
}

void TestFolderNames::takesTheFolderAtTheTop()
{
    FolderNames names;
    names.add("/");
    QCOMPARE(names.pathInside("/prog/a"), QByteArray("prog/a"));
    QCOMPARE(names.pathInside("/"), QByteArray());
}

VANTOR_TEST_MAIN(TestFolderNames)
#include "tst_FolderNames.moc"
