#include "tests/slices/page/CleaningFlowTest.h"

#include <QScopeGuard>

namespace {

using State = CleaningState;

} // namespace

/// The way from the press of the start button to the result.

class TestCleaningFlow final : public CleaningFlowTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void goesFromThePressToTheResult();
    void measuresWhatTheQuestionNames();
    void beginsNothing_data();
    void beginsNothing();
    void asksForTheExclusionsToBeLookedAt_data();
    void asksForTheExclusionsToBeLookedAt();
    void asksOnceHoweverOftenItIsStarted();
    void endsWithoutAUsableGrantOrAConsent_data();
    void endsWithoutAUsableGrantOrAConsent();
    void givesUpWhereverItIs_data();
    void givesUpWhereverItIs();
    void looksAtTheExclusionsAgainAtTheConsent();
    void cleansOnceTheGrantHasBeenLookedAtForTheConsent();
    void asksAgainWhenTheChoiceIsAnother();
    void asksAgainWhenThePageCameBackUnderTheQuestion();
    void takesAConsentForOneLookAtTheGrant();
    void takesAnAnswerThatComesTooLateForNoConsent();
    void keepsWhatIsExcludedAfterTheConsent_data();
    void keepsWhatIsExcludedAfterTheConsent();
    void keepsWhatAnotherProgramExcludes();
    void freesNothingWhenTheSettingsCannotBeReadAnyMore();
    void freesNothingOnceTheExclusionsAreUnknown();
    void freesNothingWithoutMemory();
    void cleansOnWhenThePageIsLeft();
    void removesNothingOnceItIsStopped();
};

void TestCleaningFlow::goesFromThePressToTheResult()
{
    m_flow->start();
    QTRY_COMPARE(m_asked.size(), 1);
    QVERIFY(m_asked[0].first.informativeText.contains(QStringLiteral("• Browser Data\n")));
    QVERIFY(isHistoryThere());
    answer(kGoOnButton);
    QTRY_COMPARE(m_freed, QList<qint64>{4500});
    QCOMPARE(m_states, QList<State>({State::CheckingGrant, State::LookingForPrograms,
                                     State::Measuring, State::Identifying, State::Asking,
                                     State::CheckingGrant, State::Cleaning, State::Idle}));
    QVERIFY(!isHistoryThere());
    QVERIFY(m_fixture->exists(".cache/a")); // is off
}

/// The size without what stays, where a program is in use.
void TestCleaningFlow::measuresWhatTheQuestionNames()
{
    firefoxStarts();
    m_flow->start();
    QTRY_COMPARE(m_asked.size(), 1);
    QVERIFY(m_asked[0].first.informativeText.contains(
        QStringLiteral("(4 KB without the files of Firefox, which is in use)")));
    QCOMPARE(m_states,
             QList<State>({State::CheckingGrant, State::LookingForPrograms, State::Measuring,
                           State::Measuring, State::Identifying, State::Asking}));
}

void TestCleaningFlow::beginsNothing_data()
{
    using Before = std::function<void(TestCleaningFlow &)>;
    QTest::addColumn<Before>("before");
    QTest::addColumn<QString>("told");
    QTest::addRow("without a choice") << Before([](TestCleaningFlow &test) {
        test.record(SliceKind::BrowserData).setIsOn(false);
    }) << QString();
    QTest::addRow("without a page")
        << Before([](TestCleaningFlow &test) { test.m_isPageReady = false; }) << QString();
    QTest::addRow("before the home is known")
        << Before([](TestCleaningFlow &test) { test.m_home->look(); }) << QString();
    QTest::addRow("while an exclusion cannot be read")
        << Before([](TestCleaningFlow &test) { test.exclude({QStringLiteral("nonsense")}); })
        << QStringLiteral("An excluded path cannot be read.");
}

void TestCleaningFlow::beginsNothing()
{
    QFETCH(std::function<void(TestCleaningFlow &)>, before);
    QFETCH(QString, told);
    m_holdsGrant = true;
    before(*this);
    m_flow->start();
    QVERIFY(m_held.isEmpty() && m_asked.isEmpty() && m_states.isEmpty());
    QCOMPARE(m_told.value(0).messageText, told);
}

void TestCleaningFlow::asksForTheExclusionsToBeLookedAt_data()
{
    QTest::addColumn<int>("button");
    QTest::addRow("cancelled") << kCancelButton;
    QTest::addRow("confirmed") << kGoOnButton;
}

void TestCleaningFlow::asksForTheExclusionsToBeLookedAt()
{
    QFETCH(int, button);
    forgetTheExclusions();
    m_flow->start();
    QVERIFY(m_flow->isIdle());
    QCOMPARE(m_asked.size(), 1);
    QCOMPARE(m_asked[0].first.messageText,
             QStringLiteral("Cleaning is off until you have checked your excluded paths."));
    answer(button);
    QVERIFY(m_flow->isIdle());
    QCOMPARE(m_fixture->defaults().exclusionsAreKnown(), button == kGoOnButton);
}

void TestCleaningFlow::asksOnceHoweverOftenItIsStarted()
{
    m_holdsGrant = true;
    m_flow->start();
    m_flow->start();
    QCOMPARE(m_held.size(), 1);
    m_held.takeFirst()();
    m_flow->start(); // while it looks for programs
    QVERIFY(reach(State::Asking));
    exclude({QStringLiteral("nonsense")});
    m_flow->start();
    QVERIFY(m_held.isEmpty() && m_told.isEmpty());
    QCOMPARE(m_asked.size(), 1);
    exclude({});
    answer(kCancelButton);
    m_flow->start(); // anew
    QCOMPARE(m_held.size(), 1);
}

void TestCleaningFlow::endsWithoutAUsableGrantOrAConsent_data()
{
    QTest::addColumn<bool>("isUsableAtFirst");
    QTest::addColumn<bool>("isUsableLater");
    QTest::addColumn<int>("button");
    QTest::addRow("no grant before the question") << false << true << kGoOnButton;
    QTest::addRow("no grant after the question") << true << false << kGoOnButton;
    QTest::addRow("no consent") << true << true << kCancelButton;
}

void TestCleaningFlow::endsWithoutAUsableGrantOrAConsent()
{
    QFETCH(bool, isUsableAtFirst);
    QFETCH(bool, isUsableLater);
    QFETCH(int, button);
    m_grantIsUsable = isUsableAtFirst;
    m_flow->start();
    QTRY_COMPARE(m_asked.size(), isUsableAtFirst ? 1 : 0);
    m_grantIsUsable = isUsableLater;
    if (isUsableAtFirst)
        answer(button);
    QVERIFY(m_flow->isIdle());
    QVERIFY(!m_states.contains(State::Cleaning) && isHistoryThere());
}

void TestCleaningFlow::givesUpWhereverItIs_data()
{
    using Cause = std::function<void(TestCleaningFlow &)>;
    QTest::addColumn<State>("where");
    QTest::addColumn<int>("visit");
    QTest::addColumn<Cause>("cause");
    const Cause leave = [](TestCleaningFlow &test) { test.m_flow->leave(); };
    const Cause switchOff = [](TestCleaningFlow &test) {
        test.record(SliceKind::BrowserData).setIsOn(false);
    };
    const Cause hide = [](TestCleaningFlow &test) { test.m_isPageReady = false; };
    const auto add = [](State state, int visit, const char *name, const Cause &cause) {
        QTest::addRow("%s, state %d, visit %d", name, int(state), visit) << state << visit << cause;
    };
    for (const auto &[state, visit] :
         {std::pair(State::CheckingGrant, 1), std::pair(State::LookingForPrograms, 1),
          std::pair(State::Measuring, 1), std::pair(State::Identifying, 1),
          std::pair(State::Asking, 1), std::pair(State::CheckingGrant, 2)}) {
        add(state, visit, "left", leave);
        add(state, visit, "nothing chosen any more", switchOff);
        add(state, visit, "no page any more", hide);
    }
}

/// What is answered later leads nowhere.
void TestCleaningFlow::givesUpWhereverItIs()
{
    QFETCH(State, where);
    QFETCH(int, visit);
    QFETCH(std::function<void(TestCleaningFlow &)>, cause);
    connect(m_flow.get(), &CleaningFlow::stateChanged, this,
            [this, where, visit, cause](State state) {
                if (state == where && m_states.count(where) == visit)
                    cause(*this);
            });
    m_flow->start();
    QTRY_VERIFY(m_flow->isIdle() || !m_asked.isEmpty());
    if (!m_asked.isEmpty()) {
        QVERIFY(where == State::Asking || visit == 2); // no question is asked in vain
        answer(kGoOnButton);
    }
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QVERIFY(m_asked.isEmpty());
    QVERIFY(m_flow->isIdle());
    QCOMPARE(m_states.last(), State::Idle);
    QVERIFY(!m_states.contains(State::Cleaning) && isHistoryThere());
}

void TestCleaningFlow::looksAtTheExclusionsAgainAtTheConsent()
{
    m_flow->start();
    QVERIFY(reach(State::Asking));
    m_holdsGrant = true;
    exclude({QStringLiteral("nonsense")});
    answer(kGoOnButton);
    QCOMPARE(m_told.value(0).messageText, QStringLiteral("An excluded path cannot be read."));
    QVERIFY(m_flow->isIdle() && m_held.isEmpty());
}

void TestCleaningFlow::cleansOnceTheGrantHasBeenLookedAtForTheConsent()
{
    m_flow->start();
    QVERIFY(reach(State::Asking));
    m_holdsGrant = true;
    answer(kGoOnButton);
    QCOMPARE(m_flow->state(), State::CheckingGrant);
    m_held.takeFirst()();
    QVERIFY(m_flow->isCleaning());
    QTRY_COMPARE(m_freed, QList<qint64>{4500});
}

void TestCleaningFlow::asksAgainWhenTheChoiceIsAnother()
{
    m_flow->start();
    QVERIFY(reach(State::Asking));
    record(SliceKind::Cache).setIsOn(true);
    answer(kGoOnButton);
    QTRY_COMPARE(m_asked.size(), 1);
    QVERIFY(m_asked[0].first.informativeText.contains(QStringLiteral("• Cache\n")));
    QVERIFY(isHistoryThere() && m_fixture->exists(".cache/a"));
    answer(kGoOnButton);
    QTRY_COMPARE(m_freed, QList<qint64>{6500});
}

void TestCleaningFlow::asksAgainWhenThePageCameBackUnderTheQuestion()
{
    m_flow->start();
    QVERIFY(reach(State::Asking));
    m_flow->leave();
    look(); // of the next visit
    answer(kGoOnButton);
    QTRY_COMPARE(m_asked.size(), 1);
    QVERIFY(isHistoryThere());
}

void TestCleaningFlow::takesAConsentForOneLookAtTheGrant()
{
    m_holdsGrant = true;
    m_flow->start();
    const std::function<void()> first = m_held.takeFirst();
    first();
    QVERIFY(reach(State::Asking));
    answer(kGoOnButton);
    QCOMPARE(m_flow->state(), State::CheckingGrant);
    first(); // again, and not for the consent
    QVERIFY(!m_flow->isCleaning());
    QVERIFY(reach(State::Asking));
    m_held.takeFirst()(); // that one is over
    QCOMPARE(m_flow->state(), State::Asking);
    QVERIFY(isHistoryThere());
}

/// Neither to the question that is under way then, nor to any later one.
void TestCleaningFlow::takesAnAnswerThatComesTooLateForNoConsent()
{
    m_flow->start();
    QVERIFY(reach(State::Asking));
    m_flow->leave();
    m_holdsGrant = true;
    m_flow->start();
    answer(kGoOnButton); // to the question of the former visit
    QCOMPARE(m_flow->state(), State::CheckingGrant);
    m_flow->leave();
    m_holdsGrant = false;
    m_flow->start();
    QVERIFY(reach(State::Asking));
    QVERIFY(!m_states.contains(State::Cleaning) && isHistoryThere());
}

void TestCleaningFlow::keepsWhatIsExcludedAfterTheConsent_data()
{
    QTest::addColumn<bool>("isExcludedBefore");
    QTest::addRow("excluded after it") << false;
    QTest::addRow("taken back after it") << true;
}

void TestCleaningFlow::keepsWhatIsExcludedAfterTheConsent()
{
    QFETCH(bool, isExcludedBefore);
    exclude(isExcludedBefore ? QStringList{storedHistory()} : QStringList());
    QVERIFY(reachConsent());
    exclude(isExcludedBefore ? QStringList() : QStringList{storedHistory()});
    m_disk.answer();
    QTRY_COMPARE(m_freed.size(), 1);
    QVERIFY(isHistoryThere());
    QVERIFY(!m_fixture->exists(".mozilla/firefox/x.default/cookies.sqlite"));
}

/// It is in the file alone; this program has neither read it since nor tried to write it.
void TestCleaningFlow::keepsWhatAnotherProgramExcludes()
{
    QVERIFY(reachConsent());
    excludeElsewhere({storedHistory()});
    m_disk.answer();
    QTRY_COMPARE(m_freed.size(), 1);
    QVERIFY(isHistoryThere());
    QVERIFY(!m_fixture->exists(".mozilla/firefox/x.default/cookies.sqlite"));
    QCOMPARE(m_fixture->defaults().strings(VNTExcludedPathsString), QStringList{storedHistory()});
}

/// Nothing but the look before the cleaning can have found out.
void TestCleaningFlow::freesNothingWhenTheSettingsCannotBeReadAnyMore()
{
    QVERIFY(reachConsent());
    damageTheFile();
    m_disk.answer();
    QTRY_COMPARE(m_freed, QList<qint64>{0});
    QVERIFY(!m_fixture->defaults().exclusionsAreKnown());
    QVERIFY(isHistoryThere());
}

void TestCleaningFlow::freesNothingOnceTheExclusionsAreUnknown()
{
    QVERIFY(reachConsent());
    forgetTheExclusions();
    m_disk.answer();
    QTRY_COMPARE(m_freed, QList<qint64>{0});
    QVERIFY(isHistoryThere());
}

void TestCleaningFlow::freesNothingWithoutMemory()
{
    QVERIFY(reachConsent());
    const auto giveBack = qScopeGuard([this] { m_disk.takeMemoryAt({}); });
    m_disk.takeMemoryAt(QStringLiteral("identity")); // while it plans
    m_disk.answer();
    QTRY_COMPARE(m_freed, QList<qint64>{0});
    QVERIFY(isHistoryThere());
}

void TestCleaningFlow::cleansOnWhenThePageIsLeft()
{
    QVERIFY(reachConsent());
    m_flow->leave();
    QVERIFY(m_flow->isCleaning());
    m_flow->start();
    m_disk.answer();
    QTRY_COMPARE(m_freed, QList<qint64>{4500});
    QVERIFY(m_flow->isIdle() && !isHistoryThere());
}

void TestCleaningFlow::removesNothingOnceItIsStopped()
{
    QVERIFY(reachConsent());
    m_flow->requestStop();
    m_disk.answer();
    QTRY_COMPARE(m_freed.size(), 1);
    QVERIFY(m_flow->isIdle() && isHistoryThere());
}

VANTOR_GUI_TEST_MAIN(TestCleaningFlow)
#include "tst_CleaningFlow.moc"
