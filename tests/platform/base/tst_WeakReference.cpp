#include "platform/base/WeakReference.h"
#include "tests/support/run/TestMain.h"

#include <memory>
#include <optional>

namespace {

struct Thing final : WeaklyReferable
{
};

} // namespace

class TestWeakReference final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsNullAfterTheObjectIsGone();
    void readsNullWithoutObject();
    void belongsToOneObjectNotToItsCopies();
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
}

void TestWeakReference::belongsToOneObjectNotToItsCopies()
{
    std::optional<Thing> thing(std::in_place);
    const Thing copy(*thing);
    const WeakReference<Thing> reference(&*thing);
    thing.reset();
    QVERIFY(!reference.get());
    QVERIFY(!copy.lifetime().expired());
}

VANTOR_TEST_MAIN(TestWeakReference)
#include "tst_WeakReference.moc"
