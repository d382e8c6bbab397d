#include "slices/exclusions/TouchedLocations.h"
#include "tests/support/run/TestMain.h"

#include <QRandomGenerator>
#include <algorithm>

namespace {

FileUrl urlOf(const QByteArray &path)
{
    return FileUrl::fromPath(path, path.endsWith('/') ? FileUrlKind::Folder : FileUrlKind::File);
}

FileUrls urlsOf(const QByteArrayList &paths)
{
    FileUrls urls;
    for (const QByteArray &path : paths)
        urls.append(urlOf(path));
    return urls;
}

} // namespace

class TestTouchedLocations final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void touchesPlacesThatHoldAnExclusion_data();
    void touchesPlacesThatHoldAnExclusion();
    void agreesWithTheRuleOnWholePaths();
};

void TestTouchedLocations::touchesPlacesThatHoldAnExclusion_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QByteArrayList>("excluded");
    QTest::addColumn<bool>("isTouched");
    QTest::addRow("none") << QByteArray("/h/a/") << QByteArrayList() << false;
    QTest::addRow("itself") << QByteArray("/h/a/") << QByteArrayList{"/h/a/"} << true;
    QTest::addRow("inside") << QByteArray("/h/a/") << QByteArrayList{"/h/b", "/h/a/x/y"} << true;
    QTest::addRow("around") << QByteArray("/h/a/") << QByteArrayList{"/h/"} << false;
    QTest::addRow("beside") << QByteArray("/h/a/") << QByteArrayList{"/h/b/"} << false;
    QTest::addRow("longer name") << QByteArray("/h/a/") << QByteArrayList{"/h/ab/"} << true;
    QTest::addRow("the end of another name")
        << QByteArray("/h/a/") << QByteArrayList{"/v/bh/a/"} << false;
    QTest::addRow("begins alike") << QByteArray("/h/ab/") << QByteArrayList{"/h/a/"} << false;
    QTest::addRow("everything") << QByteArray("/") << QByteArrayList{"/h/a/"} << true;
    QTest::addRow("anywhere in it") << QByteArray("/h/a/") << QByteArrayList{"/v/h/a/"} << true;
}

void TestTouchedLocations::touchesPlacesThatHoldAnExclusion()
{
    QFETCH(QByteArray, location);
    QFETCH(QByteArrayList, excluded);
    QFETCH(bool, isTouched);
    QCOMPARE(TouchedLocations(urlsOf(excluded)).isTouched(urlOf(location)), isTouched);
}

void TestTouchedLocations::agreesWithTheRuleOnWholePaths()
{
    QRandomGenerator random(7);
    const auto path = [&] {
        QByteArray made;
        for (quint32 names = 1 + random.bounded(4U); names > 0; --names)
            made += '/' + QByteArray(1 + int(random.bounded(2U)), char('a' + random.bounded(2U)));
        return made;
    };
    constexpr int kRounds = 2000;
    for (int round = 0; round < kRounds; ++round) {
        const FileUrls excluded = urlsOf({path(), path(), path()});
        const FileUrl location = urlOf(path());
        const bool contains = std::ranges::any_of(
            excluded, [&](const FileUrl &one) { return one.path().contains(location.path()); });
        QCOMPARE(TouchedLocations(excluded).isTouched(location), contains);
    }
}

VANTOR_TEST_MAIN(TestTouchedLocations)
#include "tst_TouchedLocations.moc"
