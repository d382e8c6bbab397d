#include "platform/instance/InstancePlaces.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

class TestInstancePlaces final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesTheFolder();
    void keepsFoldersApart();
    void isTheSameForEveryPathOfAFolder();
    void leavesNameEnoughForASocket();
};

void TestInstancePlaces::makesTheFolder()
{
    const QTemporaryDir folder;
    const QString settings = folder.filePath(QStringLiteral("a/b"));
    const InstancePlaces places = InstancePlaces::of(settings);
    QVERIFY(QFileInfo(settings).isDir());
    QVERIFY(QDir(settings).isEmpty());
    QVERIFY(places.locks.value(0).startsWith(settings + u'/'));
    QCOMPARE(places.locks.size(), 2);
}

void TestInstancePlaces::keepsFoldersApart()
{
    const QTemporaryDir folder;
    const InstancePlaces one = InstancePlaces::of(folder.filePath(QStringLiteral("one")));
    const InstancePlaces other = InstancePlaces::of(folder.filePath(QStringLiteral("other")));
    for (const QString &lock : one.locks)
        QVERIFY(!other.locks.contains(lock));
    QVERIFY(one.socket != other.socket);
}

void TestInstancePlaces::isTheSameForEveryPathOfAFolder()
{
    const QTemporaryDir folder;
    const QString settings = folder.filePath(QStringLiteral("one"));
    QVERIFY(QDir().mkpath(settings));
    const QString link = folder.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(settings, link));
    QCOMPARE(InstancePlaces::of(link).socket, InstancePlaces::of(settings).socket);
    QCOMPARE(InstancePlaces::of(link).locks.last(), InstancePlaces::of(settings).locks.last());
}

/// The system cuts the name of a socket off at 107 bytes.
void TestInstancePlaces::leavesNameEnoughForASocket()
{
    const QTemporaryDir folder;
    const QString settings = folder.filePath(QString(200, u'x'));
    const QString runtime = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    const QString socket = InstancePlaces::of(settings).socket;
    QVERIFY(socket.startsWith(runtime + u'/'));
    QVERIFY(socket.size() - runtime.size() < 40);
}

VANTOR_TEST_MAIN(TestInstancePlaces)
#include "tst_InstancePlaces.moc"
