#pragma once

#include "app/grant/ResourceManager.h"
#include "app/settings/SettingsKeys.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/page/CleaningFlow.h"
#include "slices/page/HomeWatch.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/FirefoxProfiles.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFile>
#include <unistd.h>

inline constexpr int kCancelButton = 0;
inline constexpr int kGoOnButton = 1;

/// The flow of a cleaning in a made freedesktop home, where only the slice Browser Data is on.
/// There is no page: the test answers the questions.
class CleaningFlowTest : public QObject
{
protected:
    void begin();
    void end();

    CleaningFlow::Services services();
    void look();
    void answer(int button);
    bool reach(CleaningState state)
    {
        return QTest::qWaitFor([this, state] { return m_flow->state() == state; });
    }
    bool reachConsent();
    void firefoxStarts();
    void exclude(const QStringList &paths);
    void excludeElsewhere(const QStringList &paths);
    void damageTheFile();
    void forgetTheExclusions();
    QString storedHistory() const;
    Info &record(SliceKind kind) { return m_selection->record(kind); }
    bool isHistoryThere() const { return m_fixture->exists(".config/chromium/Default/History"); }

    SlowDisk m_disk;
    bool m_holdsGrant = false;
    bool m_grantIsUsable = true;
    bool m_isPageReady = true;
    QList<std::function<void()>> m_held; ///< go on after the looks at the grant
    QList<Alert> m_told;
    QList<std::pair<Alert, AlertCompletion>> m_asked;
    QList<CleaningState> m_states;
    QList<qint64> m_freed;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<SliceSelection> m_selection;
    std::unique_ptr<HomeWatch> m_home;
    std::unique_ptr<CleaningFlow> m_flow;
};

inline void CleaningFlowTest::begin()
{
    m_holdsGrant = false;
    m_grantIsUsable = m_isPageReady = true;
    m_held.clear();
    m_told.clear();
    m_asked.clear();
    m_states.clear();
    m_freed.clear();
    m_fixture = std::make_unique<PageFixture>(HomeKind::Freedesktop);
    m_fixture->grantHome();
    m_fixture->makeFile(".cache/a", 2000);
    m_fixture->makeFile(".config/chromium/Default/History", 4000);
    m_fixture->makeFile(".mozilla/firefox/x.default/cookies.sqlite", 500);
    listFirefoxProfiles(m_fixture->home() + "/.mozilla/firefox", {"x.default"});
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, false, false, false, false, false, true});
    m_selection =
        std::make_unique<SliceSelection>(m_fixture->defaults(), ResourceManager::access());
    m_home = std::make_unique<HomeWatch>(
        HomeWatch::Services{m_disk.calls(), ResourceManager::access(), &ResourceManager::homeFolder,
                            [this] { return !m_flow->isCleaning(); }},
        *m_selection);
    m_flow = std::make_unique<CleaningFlow>(services());
    connect(m_flow.get(), &CleaningFlow::stateChanged, this,
            [this](CleaningState state) { m_states.append(state); });
    connect(m_flow.get(), &CleaningFlow::finished, this,
            [this](qint64 freed) { m_freed.append(freed); });
    look();
}

inline void CleaningFlowTest::end()
{
    m_disk.answer();
    m_flow.reset();
    m_home.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_selection.reset();
    m_fixture.reset();
}

inline CleaningFlow::Services CleaningFlowTest::services()
{
    return {m_fixture->defaults(),
            m_disk.calls(),
            ResourceManager::access(),
            *m_home,
            *m_selection,
            [this](const auto &then, const auto &otherwise) {
                if (m_holdsGrant)
                    m_held.append(then);
                else
                    (m_grantIsUsable ? then : otherwise)();
            },
            [this] { return m_isPageReady; },
            [this](const Alert &alert, const AlertCompletion &completion) {
                m_asked.append({alert, completion});
            },
            [this](const Alert &alert) { m_told.append(alert); }};
}

inline void CleaningFlowTest::look()
{
    m_home->look();
    QTRY_VERIFY(m_home->isKnown());
}

/// To the question that was asked last.
inline void CleaningFlowTest::answer(int button)
{
    QVERIFY(!m_asked.isEmpty());
    m_asked.takeLast().second(button);
}

/// Whether the cleaning has begun; its measures hang.
inline bool CleaningFlowTest::reachConsent()
{
    m_flow->start();
    if (!reach(CleaningState::Asking))
        return false;
    m_disk.hang();
    answer(kGoOnButton);
    return m_flow->isCleaning();
}

/// As far as its traces tell, Firefox is this very process.
inline void CleaningFlowTest::firefoxStarts()
{
    m_fixture->folder().makeLink("anna/.mozilla/firefox/x.default/lock",
                                 "127.0.1.1:+" + QByteArray::number(::getpid()));
}

inline void CleaningFlowTest::exclude(const QStringList &paths)
{
    m_fixture->defaults().setStrings(VNTExcludedPathsString, paths);
}

inline QString CleaningFlowTest::storedHistory() const
{
    const FileUrl history =
        m_fixture->homeUrl().appending(".config/chromium/Default/History", FileUrlKind::File);
    return QString::fromLatin1(history.absoluteString());
}

/// Another program stores exclusions of its own in the settings' file.
inline void CleaningFlowTest::excludeElsewhere(const QStringList &paths)
{
    QVERIFY(m_fixture->defaults().synchronize()); // nothing of its own is under way
    UserDefaults others(QFile::decodeName(m_fixture->folder().path("settings")), hostSystemCalls());
    others.setStrings(VNTExcludedPathsString, paths);
    QVERIFY(others.synchronize());
}

/// Another program writes over the settings' file what nobody can read.
inline void CleaningFlowTest::damageTheFile()
{
    QVERIFY(m_fixture->defaults().synchronize()); // nothing of its own is under way
    QFile file(QFile::decodeName(m_fixture->folder().path("settings/settings.json")));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("damaged") > 0);
    file.close();
}

/// This program finds out about it with its next save.
inline void CleaningFlowTest::forgetTheExclusions()
{
    damageTheFile();
    m_fixture->defaults().setInteger(VNTTotalCleanedSize, 1);
    QVERIFY(!m_fixture->defaults().synchronize());
    QTRY_VERIFY(!m_fixture->defaults().exclusionsAreKnown());
}
