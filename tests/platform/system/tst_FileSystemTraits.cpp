#include "platform/system/FileDescriptor.h"
#include "platform/system/FileSystemTraits.h"
#include "tests/support/run/TestMain.h"

#include <QFile>
#include <fcntl.h>

namespace {

FileSystemTraits traitsAt(const char *path)
{
    const FileDescriptor folder(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return traitsOf(folder.get());
}

} // namespace

class TestFileSystemTraits final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void vouchesForMemory();
    void vouchesForNothingThatAProgramMakesUp_data();
    void vouchesForNothingThatAProgramMakesUp();
};

void TestFileSystemTraits::vouchesForMemory()
{
    const FileSystemTraits traits = traitsAt("/dev/shm");
    QVERIFY(traits.listsToTheEnd);
    const bool hasLabels = QFile::exists(QStringLiteral("/sys/fs/selinux/enforce")) ||
                           QFile::exists(QStringLiteral("/sys/fs/smackfs/load2"));
    QCOMPARE(traits.modeDecidesForOwner, !hasLabels);
}

void TestFileSystemTraits::vouchesForNothingThatAProgramMakesUp_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addRow("processes") << QByteArray("/proc");
    QTest::addRow("devices") << QByteArray("/sys");
    QTest::addRow("nothing at all") << QByteArray("/no such folder");
}

void TestFileSystemTraits::vouchesForNothingThatAProgramMakesUp()
{
    QFETCH(QByteArray, path);
    const FileSystemTraits traits = traitsAt(path.constData());
    QVERIFY(!traits.listsToTheEnd);
    QVERIFY(!traits.modeDecidesForOwner);
}

VANTOR_TEST_MAIN(TestFileSystemTraits)
#include "tst_FileSystemTraits.moc"
