#pragma once

#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "platform/sheet/Alert.h"
#include "prefs/popover/Popover.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/page/SliceHoverButtons.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/page/FirefoxProfiles.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ImageButton.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <unistd.h>

/// A gate where calls to the disk wait while it is closed. Must outlive every thread that may wait
/// at it.
class DiskGate final
{
public:
    void close() { set(false); }
    void open() { set(true); }
    void pass()
    {
        std::unique_lock lock(m_mutex);
        m_opened.wait(lock, [this] { return m_isOpen; });
    }

private:
    void set(bool isOpen)
    {
        const std::scoped_lock lock(m_mutex);
        m_isOpen = isOpen;
        m_opened.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_isOpen = true;
};

/// What the tests of the page of the slices in a freedesktop home share: a made home with something
/// in four slices, of which Browser Data is on, and the page over it.
class FreeSpaceHomeTest : public QObject
{
protected:
    void begin();
    void end();

    void appear();
    void firefoxStarts();
    void firefoxEnds();
    QString description(SliceKind kind);

    bool m_holdsGrant = false;       ///< whether the look at the grant hangs
    std::function<void()> m_held;    ///< goes on after it
    std::function<void()> m_refused; ///< or does not
    std::unique_ptr<PageFixture> m_fixture;
    DiskGate m_folders; ///< before they are opened
    DiskGate m_listings;
    DiskGate m_sizes;             ///< before the one file in the caches is measured
    std::atomic<int> m_count = 0; ///< of the calls for folders and entries
    bool m_isSilent = false;      ///< whether the kind of the home cannot be told
    WatchedSystemCalls m_calls{[this](int, WatchedCall call, const char *name) {
        ++m_count;
        if (m_isSilent && qstrcmp(name, "Library") == 0)
            return EIO;
        if (call == WatchedCall::OpenFolder)
            m_folders.pass();
        if (call == WatchedCall::ReadEntries)
            m_listings.pass();
        if (call == WatchedCall::Status && qstrcmp(name, "a") == 0)
            m_sizes.pass();
        return 0;
    }};
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
};

inline void FreeSpaceHomeTest::begin()
{
    m_delegate.moves.clear();
    m_isSilent = false;
    m_holdsGrant = false;
    m_held = nullptr;
    m_refused = nullptr;
    m_fixture = std::make_unique<PageFixture>(HomeKind::Freedesktop);
    m_fixture->grantHome();
    m_fixture->makeFile(".cache/a", 2'000'000);
    m_fixture->makeFile(".local/share/Trash/files/b", 300'000);
    m_fixture->makeFile(".config/chromium/Default/History", 4'000'000);
    m_fixture->makeFile(".mozilla/firefox/x.default/cookies.sqlite", 500'000);
    listFirefoxProfiles(m_fixture->home() + "/.mozilla/firefox", {"x.default"});
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {false, false, false, false, false, false, false, true});
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{m_fixture->defaults(), m_calls, ResourceManager::access(),
                                          m_fixture->workspace(), m_excludedFilesChanged,
                                          &ResourceManager::homeFolder,
                                          [this](const auto &then, const auto &otherwise) {
                                              m_refused = otherwise;
                                              if (m_holdsGrant)
                                                  m_held = then;
                                              else
                                                  then();
                                          },
                                          PageFixture::madeVolume()});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
}

inline void FreeSpaceHomeTest::end()
{
    m_folders.open();
    m_listings.open();
    m_sizes.open();
    m_page.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

inline void FreeSpaceHomeTest::appear()
{
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
    QTRY_VERIFY(m_page->startButton()->isEnabled());
}

/// As far as its traces tell, Firefox is this very process: the link alone, as where the file with
/// the file lock was lost.
inline void FreeSpaceHomeTest::firefoxStarts()
{
    m_fixture->folder().makeLink("anna/.mozilla/firefox/x.default/lock",
                                 "127.0.1.1:+" + QByteArray::number(::getpid()));
}

inline void FreeSpaceHomeTest::firefoxEnds()
{
    QVERIFY(
        QFile::remove(QFile::decodeName(m_fixture->home() + "/.mozilla/firefox/x.default/lock")));
}

inline QString FreeSpaceHomeTest::description(SliceKind kind)
{
    const auto popover = [this] { return m_page->view()->window()->findChild<Popover *>(); };
    while (popover())
        delete popover(); // of an earlier description
    m_page->didHoverOverSliceAtIndex(*m_page->pieChart(), indexOf(kind));
    m_page->hover().showInfo();
    QString text;
    if (QTest::qWaitFor([&] { return popover() != nullptr; })) {
        for (const QLabel *label : popover()->findChildren<QLabel *>())
            text += label->text();
    }
    return text;
}
