#include "slices/plan/LostExclusions.h"
#include "tests/support/run/TestMain.h"

namespace {

using Lost = ResolvedExclusions::Lost;

/// The errno of the first one that could be in the folder; 0 for none.
int errorIn(const std::vector<Lost> &lost, const QByteArray &folder)
{
    const auto found = LostExclusions(lost).firstPerhapsIn(folder);
    return found ? found->error : 0;
}

} // namespace

class TestLostExclusions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFirstThatCouldBeInside_data();
    void findsTheFirstThatCouldBeInside();
};

void TestLostExclusions::findsTheFirstThatCouldBeInside_data()
{
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<int>("withoutHidden");
    QTest::addColumn<int>("withHidden");
    QTest::addRow("one inside") << QByteArray("/h/c") << 4 << 3;
    QTest::addRow("the first of several, whatever their names") << QByteArray("/h/b") << 1 << 1;
    QTest::addRow("a name that begins alike") << QByteArray("/h/bb") << 0 << 3;
    QTest::addRow("itself") << QByteArray("/h/b/z") << 0 << 3;
    QTest::addRow("nothing") << QByteArray("/h/d") << 0 << 3;
}

void TestLostExclusions::findsTheFirstThatCouldBeInside()
{
    QFETCH(QByteArray, folder);
    const std::vector<Lost> seen{{"/h/b/z", 1}, {"/h/b/a", 2}, {"/h/c/a", 4}};
    QTEST(errorIn(seen, folder), "withoutHidden");
    const std::vector<Lost> hidden{
        {"/h/b/z", 1}, {"/h/b/a", 2}, {"/v/x", 3, true}, {"/h/c/a", 4}, {"/v/y", 5, true}};
    QTEST(errorIn(hidden, folder), "withHidden");
    QCOMPARE(errorIn({}, folder), 0);
}

VANTOR_TEST_MAIN(TestLostExclusions)
#include "tst_LostExclusions.moc"
