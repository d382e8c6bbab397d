#include "platform/files/Packages.h"
#include "tests/support/run/TestMain.h"

class TestPackages final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsPackagesByTheirExtension_data();
    void knowsPackagesByTheirExtension();
    void ignoresWhatFollowsTheName();
};

void TestPackages::knowsPackagesByTheirExtension_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isPackage");
    for (const char *name :
         {"Player.app", "PLAYER.APP", "Some.Thing.bundle", "x.framework", "x.plugin", "x.kext",
          "letter.rtfd", "Set Up.pkg", "x.mpkg", "Holidays.photoslibrary", "a..app", ".hidden.app",
          "x.prefPane", "x.abbu", "x.xpc", "x.migratedphotolibrary", "\xff.app"})
        QTest::addRow("package %s", name) << QByteArray(name) << true;
    for (const char *name :
         {"", ".", "app", ".app", "x.", "x.app.", "x.appl", "x.ap", "x.app ", "x.txt", "appx",
          "x.application", "x.a\xff", "x.migratedphotolibraryx", "x.app/"})
        QTest::addRow("folder %s", name) << QByteArray(name) << false;
}

void TestPackages::knowsPackagesByTheirExtension()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isPackage);
    QCOMPARE(isPackageName(name), isPackage);
}

void TestPackages::ignoresWhatFollowsTheName()
{
    const QByteArray longer("x.app.txt");
    QVERIFY(isPackageName(QByteArrayView(longer).first(5)));
    QVERIFY(!isPackageName(longer));
}

VANTOR_TEST_MAIN(TestPackages)
#include "tst_Packages.moc"
