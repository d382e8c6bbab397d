#include "platform/files/FolderGrant.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/TestMain.h"

#include <QCryptographicHash>
#include <QDataStream>

namespace {

/// The reason why the grant does not lead to a folder; "none" when it does.
QByteArray failureOf(const QByteArray &grant)
{
    const auto folder = resolveGrant(hostSystemCalls(), grant);
    return folder ? "none" : nameOf(folder.error());
}

QByteArray withChecksum(const QByteArray &body)
{
    return body + QCryptographicHash::hash(body, QCryptographicHash::Sha256);
}

} // namespace

/// Grants that were stored and did not come back whole.
class TestFolderGrantBytes final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isDamagedWhenCutShort();
    void isDamagedByEveryFlippedBit();
    void isDamagedWhenNotAGrant_data();
    void isDamagedWhenNotAGrant();

private:
    ScratchFolder m_scratch;
    QByteArray m_grant;
};

void TestFolderGrantBytes::initTestCase()
{
    m_grant = makeGrant(hostSystemCalls(), m_scratch.path()).value_or(QByteArray());
    QCOMPARE(failureOf(m_grant), QByteArray("none"));
}

void TestFolderGrantBytes::isDamagedWhenCutShort()
{
    const QByteArray &grant = m_grant;
    for (qsizetype size = 0; size < grant.size(); ++size) {
        QCOMPARE(failureOf(grant.first(size)), QByteArray("damaged"));
        QCOMPARE(failureOf(grant.last(size)), QByteArray("damaged"));
    }
    QCOMPARE(failureOf(grant + '\0'), QByteArray("damaged"));
    QCOMPARE(failureOf(grant + grant), QByteArray("damaged"));
}

void TestFolderGrantBytes::isDamagedByEveryFlippedBit()
{
    const QByteArray &grant = m_grant;
    for (qsizetype bit = 0; bit < grant.size() * 8; ++bit) {
        QByteArray flipped = grant;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        QCOMPARE(failureOf(flipped), QByteArray("damaged"));
    }
    QCOMPARE(failureOf(grant), QByteArray("none"));
}

void TestFolderGrantBytes::isDamagedWhenNotAGrant_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("failure");
    const QByteArray path = m_scratch.path();
    const auto body = [](quint8 version, quint32 magic, const QByteArray &folder) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << version << magic << folder << QByteArray("handle") << quint64(1) << quint64(2)
               << qint64(3) << quint32(4);
        return bytes;
    };
    constexpr quint32 kMagic = 0x564e5447;
    QTest::addRow("well made, of another folder")
        << body(1, kMagic, path) << QByteArray("replaced");
    QTest::addRow("another version") << body(2, kMagic, path) << QByteArray("damaged");
    QTest::addRow("another magic") << body(1, 0, path) << QByteArray("damaged");
    QTest::addRow("a relative path") << body(1, kMagic, "tmp") << QByteArray("damaged");
    QTest::addRow("no path") << body(1, kMagic, "") << QByteArray("damaged");
    QTest::addRow("a path with a spare slash")
        << body(1, kMagic, path + '/') << QByteArray("damaged");
    QTest::addRow("a path with a NUL")
        << body(1, kMagic, path + QByteArray("\0x", 2)) << QByteArray("damaged");
    QTest::addRow("more than a grant") << body(1, kMagic, path) + "more" << QByteArray("damaged");
    QTest::addRow("less than a grant") << body(1, kMagic, path).chopped(1) << QByteArray("damaged");
    QTest::addRow("a path of 2 GB, it says")
        << body(1, kMagic, path).first(5) + "\x7f\xff\xff\xff" << QByteArray("damaged");
    QTest::addRow("too long") << body(1, kMagic, path + QByteArray(9000, 'a'))
                              << QByteArray("damaged");
    QTest::addRow("nothing") << QByteArray() << QByteArray("damaged");
}

void TestFolderGrantBytes::isDamagedWhenNotAGrant()
{
    QFETCH(QByteArray, body);
    QTEST(failureOf(withChecksum(body)), "failure");
}

VANTOR_TEST_MAIN(TestFolderGrantBytes)
#include "tst_FolderGrantBytes.moc"
