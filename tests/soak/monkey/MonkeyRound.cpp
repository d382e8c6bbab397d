#include "tests/soak/monkey/MonkeyRound.h"

#include "app/pages/DiskInfoViewController.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "prefs/window/ColorWindow.h"
#include "tests/support/page/SheetDriver.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"

namespace {

/// Events from one help to the next, on the average.
constexpr int kHelpEvery = 25;
/// Rounds of a hundred in which the windows fade and move as users see it.
constexpr int kSlowRounds = 10;

/// Milliseconds until the question is up, if it comes at all.
constexpr int kQuestionComes = 300;
const QString kAgree = QStringLiteral("Delete Files");

bool isUsable(const QWidget *button)
{
    return button && button->isVisible() && button->isEnabled();
}

} // namespace

MonkeyRound::MonkeyRound(quint32 seed)
    : m_monkey(seed),
      m_fixture(m_monkey.below(2) == 0 ? HomeKind::Library : HomeKind::Freedesktop, m_system),
      m_home(m_fixture.place(), m_fixture.home())
{
    m_system.setFence(m_fixture.place().path());
}

bool MonkeyRound::isOpen() const
{
    return m_fixture.journey().window().isVisible() && !m_fixture.wasRestarted();
}

/// The program with the settings that it has left, mostly on the page of the slices.
bool MonkeyRound::start(MonkeyTally &tally)
{
    const bool isSlow = m_monkey.below(100) < kSlowRounds;
    m_fixture.start(JourneyFixture::Tutorial::Declined,
                    isSlow ? JourneyFixture::Pace::User : JourneyFixture::Pace::Hasty);
    m_monkey.letGo(); // a window that is gone does not hear of it
    if (!std::exchange(m_hasExclusions, true))
        m_fixture.application().defaults().setStrings(VNTExcludedPathsString, m_home.exclusions());
    m_watch = std::make_unique<ConsentWatch>(
        [this] { return m_fixture.slicesPage().selection().choice(); });
    QObject::connect(&m_fixture.slicesPage(), &FreeSpaceViewController::cleaningChanged,
                     m_watch.get(), [this, &tally](bool isCleaning) {
                         if (isCleaning)
                             cleaningBegins(tally);
                     });
    return m_monkey.below(8) == 0 || m_fixture.reachSlices();
}

void MonkeyRound::cleaningBegins(MonkeyTally &tally)
{
    ++tally.cleanings;
    const auto consent = m_watch->takeConsent();
    if (!consent)
        tally.findings.append(QStringLiteral("a cleaning to which nobody agreed"));
    else if (*consent != m_fixture.slicesPage().selection().choice())
        tally.findings.append(QStringLiteral("a cleaning of something else than was agreed to"));
    else
        m_home.allow(*consent);
}

bool MonkeyRound::isWell(const MonkeyTally &tally) const
{
    return tally.findings.isEmpty() && m_monkey.nestedLoops() == 0;
}

void MonkeyRound::play(int events, MonkeyTally &tally)
{
    ++tally.rounds;
    if (!start(tally))
        tally.findings.append(QStringLiteral("the program does not come up: ") + scene());
    for (int sent = 0; sent < events && isWell(tally); ++sent, ++tally.events) {
        if (m_monkey.below(kHelpEvery) == 0)
            help();
        if (isOpen() && m_monkey.act())
            continue;
        ++tally.restarts;
        tally.earlyPresses += m_watch->earlyPresses();
        if (!start(tally))
            tally.findings.append(QStringLiteral("the program does not come up again: ") + scene());
    }
    m_monkey.letGo();
    if (m_monkey.nestedLoops() > 0)
        tally.findings.append(QStringLiteral("an event is held up until a popup is closed"));
    tally.earlyPresses += m_watch->earlyPresses();
    m_fixture.quit();
    m_watch.reset();
    for (const QByteArray &path : m_home.lost())
        tally.findings.append(QStringLiteral("lost: %1").arg(QString::fromUtf8(path)));
    tally.removed += m_home.removedCount();
    if (!tally.findings.isEmpty())
        tally.findings.append(m_monkey.lastActs());
}

/// What a user sees, for people.
QString MonkeyRound::scene() const
{
    const Journey &journey = m_fixture.journey();
    return QLatin1String(journey.controller().currentViewController()->metaObject()->className()) +
           (hasSheet(journey.window()) ? QStringLiteral(" under ") + sheetText(journey.window())
                                       : QString());
}

void MonkeyRound::help()
{
    if (!isOpen())
        return;
    switch (m_monkey.below(6)) {
    case 0:
        turnPage();
        break;
    case 1:
        openSomething();
        break;
    case 2:
        tap(SliceKind(m_monkey.below(kSliceCount)));
        break;
    case 3:
        pressStart();
        break;
    default:
        answer();
    }
}

void MonkeyRound::click(QWidget &button)
{
    QTest::mouseClick(button.window()->windowHandle(), Qt::LeftButton, {},
                      button.mapTo(button.window(), button.rect().center()));
}

void MonkeyRound::tap(SliceKind kind)
{
    if (isUsable(m_fixture.slicesPage().pieChart()))
        m_fixture.journey().tapSlice(kind);
}

void MonkeyRound::pressStart()
{
    if (!isUsable(m_fixture.slicesPage().startButton()))
        return;
    click(*m_fixture.slicesPage().startButton());
    const ColorWindow &window = m_fixture.journey().window();
    const auto isAsked = [&] { return sheetButton(window, kAgree) != nullptr; };
    if (m_monkey.below(2) == 0 && QTest::qWaitFor(isAsked, kQuestionComes))
        answer();
}

/// Reads the question, mostly, and agrees.
void MonkeyRound::answer()
{
    const ColorWindow &window = m_fixture.journey().window();
    const auto destroys = [&] { return sheetButton(window, kAgree); };
    if (!destroys())
        return;
    if (m_monkey.below(3) > 0 && letSheetBeRead(window))
        m_watch->pass(kReadingTime);
    if (QAbstractButton *const button = destroys())
        click(*button);
}

void MonkeyRound::turnPage()
{
    MainWindowController &controller = m_fixture.journey().controller();
    for (QWidget *button : std::initializer_list<QWidget *>{
             controller.folderSelectPage().homeButton(), controller.diskInfoPage().startButton(),
             controller.finalPage().scanAgainButton()}) {
        if (isUsable(button))
            click(*button);
    }
}

void MonkeyRound::openSomething()
{
    if (m_monkey.below(2) == 0)
        m_fixture.application().openPreferences();
    else
        tap(SliceKind::LargeFiles);
}
