#pragma once

#include "app/AppDelegate.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/page/Journey.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/SampleHome.h"

#include <memory>

/// For initTestCase_data(): every journey is taken in a home of each kind. The global column "kind"
/// holds its HomeKind. A process takes only the kinds that VANTOR_TEST_HOME names, so that both
/// kinds can run at the same time.
void addKindsOfHomes();

/// The real program on a made home folder, and a user in front of it. The program can be started
/// again with the settings that it left. Ends quietly: no work of the program outlives it.
class JourneyFixture final
{
public:
    /// Whether the user has declined the tutorial before the program starts.
    enum class Tutorial { Declined, Shown };

    /// At a user's pace, or in haste: then nothing fades, and no page waits.
    enum class Pace { User, Hasty };

    /// `calls` must outlive it.
    explicit JourneyFixture(HomeKind kind = HomeKind::Library,
                            const SystemCalls &calls = hostSystemCalls());
    ~JourneyFixture();
    JourneyFixture(const JourneyFixture &) = delete;
    JourneyFixture &operator=(const JourneyFixture &) = delete;

    void start(Tutorial tutorial = Tutorial::Declined, Pace pace = Pace::Hasty);
    /// Ends the program and waits for what it still does.
    void quit();

    /// From the first page that is shown to the slices, each of them measured.
    bool reachSlices();

    /// What is left of the home after these slices were cleaned and nothing was excluded, sorted.
    QList<QByteArray> keptAfter(const QList<SliceKind> &cleaned) const;

    /// Those of the made paths that are, or lie below, one of these.
    QList<QByteArray> pathsAt(const QList<QByteArray> &tops) const;

    const ScratchFolder &place() const { return m_place; }
    const SampleHome &home() const { return m_home; }
    AppDelegate &application() { return *m_application; }
    RecordingWorkspace &workspace() { return *m_workspace; }
    Journey &journey() const { return *m_journey; }
    /// Whether the program has ended itself since its start, to be started again.
    bool wasRestarted() const { return m_wasRestarted; }
    FreeSpaceViewController &slicesPage() { return m_journey->controller().freeSpacePage(); }

private:
    ScratchFolder m_place;
    SampleHome m_home;
    HookedSystem m_calls;
    bool m_wasRestarted = false;
    std::shared_ptr<RecordingWorkspace> m_workspace;
    std::unique_ptr<AppDelegate> m_application;
    std::unique_ptr<Journey> m_journey;
};
