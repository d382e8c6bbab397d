#include "slices/exclusions/PrefixSet.h"
#include "tests/support/run/TestMain.h"

#include <QByteArrayList>
#include <QRandomGenerator>
#include <algorithm>

Q_DECLARE_METATYPE(ExclusionMatch)

class TestPrefixSet final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhatBeginsWhat_data();
    void tellsWhatBeginsWhat();
    void agreesWithTheRuleInAnyOrder();
    void leavesItsCopiesAsTheyWere();
};

void TestPrefixSet::tellsWhatBeginsWhat_data()
{
    QTest::addColumn<QByteArrayList>("members");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<ExclusionMatch>("match");
    const QByteArrayList shortFirst{"/a/", "/a/b/", "/a/c/"};
    const QByteArrayList shortLast{"/a/b/", "/a/c/", "/a/"};
    QTest::addRow("nothing") << QByteArrayList() << QByteArray("/a") << ExclusionMatch::None;
    QTest::addRow("itself") << shortFirst << QByteArray("/a/b/") << ExclusionMatch::Whole;
    QTest::addRow("below the shortest")
        << shortFirst << QByteArray("/a/z") << ExclusionMatch::Whole;
    QTest::addRow("the same, added last")
        << shortLast << QByteArray("/a/z") << ExclusionMatch::Whole;
    QTest::addRow("above") << shortLast << QByteArray("/a") << ExclusionMatch::OnTheWay;
    QTest::addRow("after all") << shortLast << QByteArray("/b") << ExclusionMatch::None;
    QTest::addRow("high bytes come last")
        << QByteArrayList{"/\xff", "/a"} << QByteArray("/\xff\xff") << ExclusionMatch::Whole;
}

void TestPrefixSet::tellsWhatBeginsWhat()
{
    QFETCH(QByteArrayList, members);
    QFETCH(QByteArray, text);
    QFETCH(ExclusionMatch, match);
    PrefixSet set;
    for (const QByteArray &member : members)
        set.add(member);
    QCOMPARE(set.match(text), match);
}

void TestPrefixSet::agreesWithTheRuleInAnyOrder()
{
    QRandomGenerator random(11);
    const auto text = [&] {
        QByteArray made;
        for (quint32 bytes = random.bounded(6U); bytes > 0; --bytes)
            made += char('a' + random.bounded(2U));
        return made;
    };
    constexpr int kRounds = 1000;
    for (int round = 0; round < kRounds; ++round) {
        PrefixSet set;
        QByteArrayList members;
        for (int added = 0; added < 8; ++added) {
            members.append(text());
            set.add(members.last());
            const QByteArray asked = text();
            const auto begins = [&](const QByteArray &member) { return asked.startsWith(member); };
            const auto isBegun = [&](const QByteArray &member) { return member.startsWith(asked); };
            const ExclusionMatch rule = std::ranges::any_of(members, begins) ? ExclusionMatch::Whole
                                        : std::ranges::any_of(members, isBegun)
                                            ? ExclusionMatch::OnTheWay
                                            : ExclusionMatch::None;
            QCOMPARE(set.match(asked), rule);
        }
    }
}

void TestPrefixSet::leavesItsCopiesAsTheyWere()
{
    PrefixSet set;
    set.add("/a/");
    const PrefixSet before = set;
    set.add("/b/");
    QCOMPARE(before.match("/b/"), ExclusionMatch::None);
    QCOMPARE(set.match("/b/"), ExclusionMatch::Whole);
    QCOMPARE(set.match("/a/"), ExclusionMatch::Whole);
}

VANTOR_TEST_MAIN(TestPrefixSet)
#include "tst_PrefixSet.moc"
