#include "slices/removal/LaterChanges.h"

#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/TestMain.h"

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

/// Clocks that a test sets.
class HeldClocks final : public ForwardingSystemCalls
{
public:
    Moment now() const override { return m_now; }
    void set(const Moment &now) { m_now = now; }

private:
    Moment m_now;
};

/// At a time of day, in nanoseconds, with the machine running for an hour.
Moment at(std::int64_t stamp)
{
    return {stamp, stamp, 3600 * kSecond};
}

} // namespace

class TestLaterChanges final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countFromTheTickOfTheConfirmationOn();
    void countInDoubtWhereStampsAreCoarse();
    void goByTheClockOfTheServer();
    void countAfterTheClockWasSetBack();
    void rememberThatTheClockWasSetBack();
};

void TestLaterChanges::countFromTheTickOfTheConfirmationOn()
{
    constexpr std::int64_t kConfirmed = 1000 * kSecond + 4;
    HeldClocks clocks;
    clocks.set(at(kConfirmed));
    const LaterChanges changes(clocks, at(kConfirmed), 0);
    QVERIFY(!changes.include(kConfirmed - 1));
    QVERIFY(changes.include(kConfirmed));
    QVERIFY(changes.include(kConfirmed + 1));
}

/// A stamp of whole seconds may stand for any time of the two seconds from it on.
void TestLaterChanges::countInDoubtWhereStampsAreCoarse()
{
    HeldClocks clocks;
    clocks.set(at(1000 * kSecond + 5));
    const LaterChanges changes(clocks, at(1000 * kSecond + 5), 0);
    QVERIFY(changes.include(1000 * kSecond));
    QVERIFY(changes.include(999 * kSecond));
    QVERIFY(!changes.include(998 * kSecond));
}

void TestLaterChanges::goByTheClockOfTheServer()
{
    HeldClocks clocks;
    clocks.set(at(1000 * kSecond + 1));
    const LaterChanges behind(clocks, at(1000 * kSecond + 1), -60 * kSecond);
    QVERIFY(behind.include(941 * kSecond + 1));
    QVERIFY(!behind.include(939 * kSecond + 1));
}

void TestLaterChanges::countAfterTheClockWasSetBack()
{
    const Moment confirmed = at(1000 * kSecond + 1);
    HeldClocks clocks;
    const LaterChanges changes(clocks, confirmed, 0);
    clocks.set({900 * kSecond, 900 * kSecond, confirmed.sinceStart + kSecond});
    QVERIFY(changes.include(900 * kSecond + 7)); // a second after the confirmation
    QVERIFY(!changes.include(800 * kSecond + 7));
}

void TestLaterChanges::rememberThatTheClockWasSetBack()
{
    const Moment confirmed = at(1000 * kSecond + 1);
    HeldClocks clocks;
    const LaterChanges changes(clocks, confirmed, 0);
    clocks.set({900 * kSecond, 900 * kSecond, confirmed.sinceStart + kSecond});
    QVERIFY(changes.include(900 * kSecond + 7));
    clocks.set(
        {1002 * kSecond, 1002 * kSecond, confirmed.sinceStart + 2 * kSecond}); // and right again
    QVERIFY(changes.include(900 * kSecond + 7));
}

VANTOR_TEST_MAIN(TestLaterChanges)
#include "tst_LaterChanges.moc"
