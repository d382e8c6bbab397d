#include "tests/journeys/JourneyFixture.h"

#include "app/grant/ResourceManager.h"
#include "app/pages/DiskInfoViewController.h"
#include "app/settings/SettingsKeys.h"
#include "platform/look/Pace.h"
#include "tests/support/page/ResourceManagerReset.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"

#include <QFile>
#include <QTest>
#include <algorithm>

void addKindsOfHomes()
{
    const QByteArray only = qgetenv("VANTOR_TEST_HOME");
    QTest::addColumn<HomeKind>("kind");
    if (only != "freedesktop")
        QTest::newRow("with a Library") << HomeKind::Library;
    if (only != "library")
        QTest::newRow("freedesktop") << HomeKind::Freedesktop;
}

JourneyFixture::JourneyFixture(HomeKind kind, const SystemCalls &calls)
    : m_home(m_place, 1, kind),
      m_calls({}, calls),
      m_workspace(std::make_shared<RecordingWorkspace>())
{
}

JourneyFixture::~JourneyFixture()
{
    quit();
    setPace(1);
}

void JourneyFixture::start(Tutorial tutorial, Pace pace)
{
    quit();
    setPace(pace == Pace::User ? 1 : 0);
    ResourceManagerReset::beginRun();
    AppDelegate::Configuration configuration;
    configuration.calls = m_calls;
    configuration.settingsFolder = QFile::decodeName(m_place.path("settings"));
    configuration.realHomeDirectory = [this] { return m_home.path(); };
    configuration.pingHelper.program.clear();
    configuration.workspace = m_workspace;
    m_wasRestarted = false;
    configuration.startAnother = [this] { return m_wasRestarted = true; };
    m_application = std::make_unique<AppDelegate>(std::move(configuration));
    m_application->applicationDidFinishLaunching();
    if (tutorial == Tutorial::Declined)
        m_application->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_journey = std::make_unique<Journey>(*m_application);
}

void JourneyFixture::quit()
{
    m_journey.reset();
    if (m_application)
        m_application->applicationWillTerminate();
    m_application.reset();
    awaitBackgroundThreads();
}

bool JourneyFixture::reachSlices()
{
    MainWindowController &controller = m_journey->controller();
    if (!m_application->defaults().hasInitializedFolders() &&
        !(m_journey->waitForPage(controller.folderSelectPage()) &&
          m_journey->chooseHome(m_home.path())))
        return false;
    return m_journey->waitForPage(controller.diskInfoPage()) && m_journey->pressStart() &&
           m_journey->waitForPage(controller.freeSpacePage()) && m_journey->waitForMeasures();
}

QList<QByteArray> JourneyFixture::keptAfter(const QList<SliceKind> &cleaned) const
{
    QList<QByteArray> paths = m_home.paths();
    for (const SliceKind kind : cleaned) {
        for (const QByteArray &path : m_home.pathsCleanedWith(indexOf(kind)))
            paths.removeOne(path);
    }
    return paths;
}

QList<QByteArray> JourneyFixture::pathsAt(const QList<QByteArray> &tops) const
{
    QList<QByteArray> found;
    for (const QByteArray &path : m_home.paths()) {
        if (std::ranges::any_of(tops, [&path](const QByteArray &top) {
                return path == top || path.startsWith(top + '/');
            }))
            found.append(path);
    }
    return found;
}
