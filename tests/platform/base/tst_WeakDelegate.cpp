#include "platform/base/WeakDelegate.h"

#include "tests/support/run/TestMain.h"

#include <memory>

namespace {

class Protocol
{
public:
    virtual ~Protocol() = default;
    virtual int answer() const = 0;
};

class Delegate : public QObject, public Protocol
{
public:
    int answer() const override { return 42; }
};

} // namespace

class TestWeakDelegate final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyUntilSet();
    void reachesTheDelegate();
    void emptiesItselfWhenTheDelegateDies();
    void takesOnlyObjectsOfTheProtocol();
};

void TestWeakDelegate::isEmptyUntilSet()
{
    QVERIFY(!WeakDelegate<Protocol>().get());
    QVERIFY(!WeakDelegate<Protocol>(nullptr).get());
    QVERIFY(!WeakDelegate<Protocol>(static_cast<Delegate *>(nullptr)).get());
}

void TestWeakDelegate::reachesTheDelegate()
{
    Delegate delegate;
    const WeakDelegate<Protocol> weak = &delegate;
    QCOMPARE(weak.get()->answer(), 42);
}

void TestWeakDelegate::emptiesItselfWhenTheDelegateDies()
{
    auto delegate = std::make_unique<Delegate>();
    const WeakDelegate<Protocol> weak = delegate.get();
    delegate.reset();
    QVERIFY(!weak.get());
}

void TestWeakDelegate::takesOnlyObjectsOfTheProtocol()
{
    QVERIFY((std::is_constructible_v<WeakDelegate<Protocol>, Delegate *>));
    QVERIFY((!std::is_constructible_v<WeakDelegate<Protocol>, QObject *>));
    QVERIFY((!std::is_constructible_v<WeakDelegate<Protocol>, Protocol *>));
}

VANTOR_TEST_MAIN(TestWeakDelegate)
#include "tst_WeakDelegate.moc"
