#include "platform/ending/EndRequests.h"

#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QSignalSpy>
#include <csignal>

namespace {

constexpr int kObeyed = 1;

} // namespace

class TestEndRequests final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfASignal_data();
    void tellsOfASignal();
    void keepsTheFirstSignal();
    void endsAtOnceAtTheSecond_data();
    void endsAtOnceAtTheSecond();
    void livesOnAfterASecondHangUp();
    void leavesAnIgnoredSignalAlone();
    void givesTheSignalsBack();
    void tellsOfTheEndOfTheSession();
    void leavesOtherEventsAlone();
};

void TestEndRequests::tellsOfASignal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestEndRequests::tellsOfASignal()
{
    QFETCH(int, signal);
    const EndRequests requests;
    QSignalSpy asked(&requests, &EndRequests::endAsked);
    QCOMPARE(requests.signal(), 0);
    ::raise(signal);
    QVERIFY(asked.isEmpty()); // only the event loop tells
    QTRY_COMPARE(asked.size(), 1);
    QCOMPARE(requests.signal(), signal);
}

void TestEndRequests::keepsTheFirstSignal()
{
    const EndRequests requests;
    QSignalSpy asked(&requests, &EndRequests::endAsked);
    ::raise(SIGTERM);
    ::raise(SIGHUP); // as the manager of a session sends them
    QTRY_COMPARE(asked.size(), 2);
    QCOMPARE(requests.signal(), SIGTERM);
}

void TestEndRequests::endsAtOnceAtTheSecond_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestEndRequests::endsAtOnceAtTheSecond()
{
    QFETCH(int, signal);
    const ChildOutcome outcome = runInChild(ChildUser::Same, [signal] {
        const EndRequests requests;
        ::raise(signal);
        ::raise(signal);
        return 0;
    });
    QCOMPARE(outcome.signal, signal);
}

void TestEndRequests::livesOnAfterASecondHangUp()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        const EndRequests requests;
        ::raise(SIGHUP);
        ::raise(SIGHUP);
        return kObeyed;
    });
    QCOMPARE(outcome.signal, 0);
    QCOMPARE(outcome.exitCode, kObeyed);
}

void TestEndRequests::leavesAnIgnoredSignalAlone()
{
    const auto former = std::signal(SIGHUP, SIG_IGN);
    {
        const EndRequests requests;
        QSignalSpy asked(&requests, &EndRequests::endAsked);
        ::raise(SIGHUP);
        ::raise(SIGTERM);
        QTRY_COMPARE(asked.size(), 1);
        QCOMPARE(requests.signal(), SIGTERM);
    }
    const auto left = std::signal(SIGHUP, former);
    QVERIFY(left == SIG_IGN);
}

void TestEndRequests::givesTheSignalsBack()
{
    const ChildOutcome outcome = runInChild(ChildUser::Same, [] {
        {
            const EndRequests requests;
        }
        ::raise(SIGTERM);
        return 0;
    });
    QCOMPARE(outcome.signal, SIGTERM);
}

void TestEndRequests::tellsOfTheEndOfTheSession()
{
    const EndRequests requests;
    QSignalSpy asked(&requests, &EndRequests::endAsked);
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(requests.signal(), 0);
}

void TestEndRequests::leavesOtherEventsAlone()
{
    const EndRequests requests;
    QSignalSpy asked(&requests, &EndRequests::endAsked);
    QObject other;
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(&other, &quit);
    QEvent language(QEvent::LanguageChange);
    QCoreApplication::sendEvent(qApp, &language);
    QVERIFY(asked.isEmpty());
}

VANTOR_TEST_MAIN(TestEndRequests)
#include "tst_EndRequests.moc"
