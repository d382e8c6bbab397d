#include "platform/base/WeakReference.h"
#include "tests/support/run/TestMain.h"

#include <memory>

namespace {

struct Thing final : WeaklyReferable
{
};

class Protocol : public WeaklyReferable
{
public:
    virtual ~Protocol() = default;
    virtual int answer() const = 0;
};

class Delegate final : public QObject, public Protocol
{
public:
    int answer() const override { return 42; }
};

} // namespace

class TestWeakReference final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsNullAfterTheObjectIsGone();
    void readsNullWithoutObject();
    void belongsToOneObjectNotToItsCopies();
    void reachesTheDelegate();
    void emptiesItselfWhenTheDelegateDies();
    void takesOnlyObjectsOfTheProtocol();
};

void TestWeakReference::readsNullAfterTheObjectIsGone()
{
    auto thing = std::make_unique<Thing>();
    const WeakReference<Thing> reference(thing.get());
    QCOMPARE(reference.get(), thing.get());
    thing.reset();
    QVERIFY(!reference.get());
}

void TestWeakReference::readsNullWithoutObject()
{
    QVERIFY(!WeakReference<Thing>().get());
    QVERIFY(!WeakReference<Thing>(nullptr).get());
    QVERIFY(!WeakReference<Protocol>(static_cast<Delegate *>(nullptr)).get());
}

void TestWeakReference::belongsToOneObjectNotToItsCopies()
{
    auto thing = std::make_unique<Thing>();
    const Thing copy(*thing);
    const WeakReference<Thing> reference(thing.get());
    thing.reset();
    QVERIFY(!reference.get());
    QVERIFY(!copy.lifetime().expired());
}

void TestWeakReference::reachesTheDelegate()
{
    Delegate delegate;
    const WeakReference<Protocol> weak = &delegate;
    QCOMPARE(weak.get()->answer(), 42);
}

void TestWeakReference::emptiesItselfWhenTheDelegateDies()
{
    auto delegate = std::make_unique<Delegate>();
    const WeakReference<Protocol> weak = delegate.get();
    delegate.reset();
    QVERIFY(!weak.get());
}

void TestWeakReference::takesOnlyObjectsOfTheProtocol()
{
    QVERIFY((std::is_constructible_v<WeakReference<Protocol>, Delegate *>));
    QVERIFY((!std::is_constructible_v<WeakReference<Protocol>, QObject *>));
    QVERIFY((!std::is_constructible_v<WeakReference<Protocol>, Thing *>));
}

VANTOR_TEST_MAIN(TestWeakReference)
#include "tst_WeakReference.moc"
