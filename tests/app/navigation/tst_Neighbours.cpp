#include "app/navigation/Neighbours.h"

#include "tests/support/run/TestMain.h"

class TestNeighbours final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheNeighbours();
    void findsNothingBeyondTheEnds();
    void findsNothingForStrangers();
    void looksAtDifferentPlacesOfAnObjectThatIsThereTwice();
    void takesADerivedObject();

private:
    int m_a = 1;
    int m_b = 1; // all equal, none identical
    int m_c = 1;
};

void TestNeighbours::findsTheNeighbours()
{
    const QList<int *> list{&m_a, &m_b, &m_c};
    QCOMPARE(objectAfter(list, &m_a), &m_b);
    QCOMPARE(objectAfter(list, &m_b), &m_c);
    QCOMPARE(objectBefore(list, &m_b), &m_a);
    QCOMPARE(objectBefore(list, &m_c), &m_b);
}

void TestNeighbours::findsNothingBeyondTheEnds()
{
    const QList<int *> list{&m_a, &m_b, &m_c};
    QCOMPARE(objectAfter(list, &m_c), nullptr);
    QCOMPARE(objectBefore(list, &m_a), nullptr);
    QCOMPARE(objectAfter(QList<int *>{&m_a}, &m_a), nullptr);
    QCOMPARE(objectBefore(QList<int *>{&m_a}, &m_a), nullptr);
}

void TestNeighbours::findsNothingForStrangers()
{
    const QList<int *> list{&m_a, &m_b};
    QCOMPARE(objectAfter(list, &m_c), nullptr); // though equal to both
    QCOMPARE(objectBefore(list, &m_c), nullptr);
    QCOMPARE(objectAfter(list, nullptr), nullptr);
    QCOMPARE(objectBefore(list, nullptr), nullptr);
    QCOMPARE(objectAfter(QList<int *>(), &m_a), nullptr);
    QCOMPARE(objectBefore(QList<int *>(), &m_a), nullptr);
}

void TestNeighbours::looksAtDifferentPlacesOfAnObjectThatIsThereTwice()
{
    const QList<int *> list{&m_a, &m_b, &m_c, &m_a};
    QCOMPARE(objectAfter(list, &m_a), &m_b);
    QCOMPARE(objectBefore(list, &m_a), &m_c);
    const QList<int *> last{&m_b, &m_a, &m_c, &m_a};
    QCOMPARE(objectAfter(last, &m_a), &m_c);
    QCOMPARE(objectBefore(last, &m_a), &m_c);
}

void TestNeighbours::takesADerivedObject()
{
    QObject first;
    const struct Derived : QObject
    {
    } second;
    const QList<QObject *> list{&first, const_cast<Derived *>(&second)};
    QCOMPARE(objectBefore(list, &second), &first);
}

VANTOR_TEST_MAIN(TestNeighbours)
#include "tst_Neighbours.moc"
