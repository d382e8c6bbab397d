#include "platform/base/Indestructible.h"

#include "tests/support/run/TestMain.h"

class TestIndestructible final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsAnObjectThatIsNeverDestroyed();
};

namespace {

struct Counted
{
    Counted(int &destructions, int number) : m_destructions(destructions), value(number) {}
    ~Counted() { ++m_destructions; }

    int &m_destructions;
    int value;
};

} // namespace

void TestIndestructible::holdsAnObjectThatIsNeverDestroyed()
{
    constexpr int kValue = 7;
    int destructions = 0;
    {
        const Indestructible<Counted> held(destructions, kValue);
        QCOMPARE((*held).value, kValue);
        (*held).value = kValue + 1;
        QCOMPARE((*held).value, kValue + 1);
    }
    QCOMPARE(destructions, 0);
}

VANTOR_TEST_MAIN(TestIndestructible)
#include "tst_Indestructible.moc"
