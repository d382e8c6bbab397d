#include "slices/page/CleaningStates.h"

#include "tests/support/run/GuiTestMain.h"

#include <algorithm>

namespace {

using State = CleaningState;
using Event = CleaningEvent;

constexpr std::array kStates{State::Idle,      State::CheckingGrant, State::LookingForPrograms,
                             State::Measuring, State::Identifying,   State::Asking,
                             State::Cleaning};
constexpr std::array kEvents{Event::Pressed,       Event::GrantUsable,   Event::GrantUnusable,
                             Event::ConsentStands, Event::ProgramsFound, Event::Measured,
                             Event::AllMeasured,   Event::Identified,    Event::ChoiceChanged,
                             Event::Confirmed,     Event::Declined,      Event::NotReady,
                             Event::PageLeft,      Event::Cleaned};

/// Where each event leads, as the cleaning is meant to go.
struct Step
{
    const char *name;
    State state;
    Event event;
    State next;
};
constexpr Step kSteps[]{
    {"a press begins", State::Idle, Event::Pressed, State::CheckingGrant},
    {"a consent after a return", State::Idle, Event::Confirmed, State::CheckingGrant},
    {"a usable grant", State::CheckingGrant, Event::GrantUsable, State::LookingForPrograms},
    {"a consent that stands", State::CheckingGrant, Event::ConsentStands, State::Cleaning},
    {"a useless grant", State::CheckingGrant, Event::GrantUnusable, State::Idle},
    {"no choice at the grant", State::CheckingGrant, Event::NotReady, State::Idle},
    {"left at the grant", State::CheckingGrant, Event::PageLeft, State::Idle},
    {"programs are known", State::LookingForPrograms, Event::ProgramsFound, State::Measuring},
    {"left at the programs", State::LookingForPrograms, Event::PageLeft, State::Idle},
    {"some sizes are known", State::Measuring, Event::Measured, State::Measuring},
    {"all sizes are known", State::Measuring, Event::AllMeasured, State::Identifying},
    {"no choice at the sizes", State::Measuring, Event::NotReady, State::Idle},
    {"left at the sizes", State::Measuring, Event::PageLeft, State::Idle},
    {"locations are known", State::Identifying, Event::Identified, State::Asking},
    {"another choice at the locations", State::Identifying, Event::ChoiceChanged, State::Measuring},
    {"no choice at the locations", State::Identifying, Event::NotReady, State::Idle},
    {"left at the locations", State::Identifying, Event::PageLeft, State::Idle},
    {"a consent", State::Asking, Event::Confirmed, State::CheckingGrant},
    {"no consent", State::Asking, Event::Declined, State::Idle},
    {"no choice at the consent", State::Asking, Event::NotReady, State::Idle},
    {"left at the question", State::Asking, Event::PageLeft, State::Idle},
    {"the end", State::Cleaning, Event::Cleaned, State::Idle},
};

} // namespace

/// Where the events of a cleaning lead, row by row, and that they lead nowhere else.
class TestCleaningStates final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadsOn_data();
    void leadsOn();
    void leadsNowhereElse();
};

void TestCleaningStates::leadsOn_data()
{
    QTest::addColumn<Step>("step");
    for (const Step &step : kSteps)
        QTest::addRow("%s", step.name) << step;
}

void TestCleaningStates::leadsOn()
{
    QFETCH(Step, step);
    QVERIFY(nextState(step.state, step.event) == step.next);
}

void TestCleaningStates::leadsNowhereElse()
{
    QCOMPARE(kStates.size(), std::size_t(State::Cleaning) + 1); // all there are
    QCOMPARE(kEvents.size(), std::size_t(Event::Cleaned) + 1);
    std::size_t dead = 0;
    for (const State state : kStates) {
        for (const Event event : kEvents) {
            const bool isStep = std::ranges::any_of(kSteps, [&](const Step &step) {
                return step.state == state && step.event == event;
            });
            if (isStep)
                continue;
            ++dead;
            QVERIFY2(
                !nextState(state, event),
                qPrintable(QStringLiteral("state %1, event %2").arg(int(state)).arg(int(event))));
        }
    }
    QCOMPARE(dead, kStates.size() * kEvents.size() - std::size(kSteps));
    QCOMPARE(kCleaningTransitions.size(), std::size(kSteps)); // no row stands twice
}

VANTOR_GUI_TEST_MAIN(TestCleaningStates)
#include "tst_CleaningStates.moc"
