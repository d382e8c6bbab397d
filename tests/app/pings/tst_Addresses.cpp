#include "app/pings/Addresses.h"
#include "tests/support/run/TestMain.h"

#include <QSet>
#include <QUrl>

class TestAddresses final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areSixDifferentPages();
    void pingPlainPages();
};

void TestAddresses::areSixDifferentPages()
{
    const Addresses addresses = buildAddresses();
    const QSet<QString> all{addresses.firstLaunchPing, addresses.launchPing, addresses.cleaningPing,
                            addresses.facebook,        addresses.twitter,    addresses.homePage};
    QCOMPARE(all.size(), 6);
    for (const QString &address : all)
        QVERIFY2(QUrl(address, QUrl::StrictMode).isValid() && !QUrl(address).host().isEmpty(),
                 qPrintable(address));
}

void TestAddresses::pingPlainPages()
{
    const Addresses addresses = buildAddresses();
    for (const QString &address :
         {addresses.firstLaunchPing, addresses.launchPing, addresses.cleaningPing}) {
        QCOMPARE(QUrl(address).scheme(), QStringLiteral("http"));
        QVERIFY(!QUrl(address).hasQuery());
    }
}

VANTOR_TEST_MAIN(TestAddresses)
#include "tst_Addresses.moc"
