#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "slices/page/FreeSpaceViewController.h"
#include "slices/record/Info.h"
#include "tests/support/calls/SlowDisk.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/GuiTestMain.h"

/// The page of the slices on a disk that does not answer its measures.
class TestFreeSpaceMeasures final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void waitsForNoMeasureAtItsEndAndTellsItToStop();
    void tellsItsMeasuresToStopWhenItIsLeft();

private:
    SlowDisk m_disk;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FreeSpaceViewController> m_page;
    std::shared_ptr<Info> m_trash; ///< the record, with something to measure
};

/// Shown, with measures under way that hang.
void TestFreeSpaceMeasures::init()
{
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_fixture->makeFile(".Trash/a", 4321);
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{
            m_fixture->defaults(), m_disk.calls(), ResourceManager::access(),
            m_fixture->workspace(), m_excludedFilesChanged, &ResourceManager::homeFolder,
            [](const auto &then, const auto &) { then(); }, PageFixture::madeVolume()});
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
    m_page->viewWillAppear(true);
    m_disk.hang();
    m_page->viewDidAppear(true);
    m_trash = m_page->selection().records().at(indexOf(SliceKind::Trash));
    QTRY_VERIFY(m_disk.waiting() > 0);
}

void TestFreeSpaceMeasures::cleanup()
{
    m_disk.answer();
    m_page.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_trash.reset();
    m_fixture.reset();
}

void TestFreeSpaceMeasures::waitsForNoMeasureAtItsEndAndTellsItToStop()
{
    m_page.reset(); // else this would never return
    QVERIFY(m_disk.waiting() > 0);
    m_disk.answer();
    awaitBackgroundThreads();
    QVERIFY(!m_trash->isMeasured());
}

void TestFreeSpaceMeasures::tellsItsMeasuresToStopWhenItIsLeft()
{
    m_page->viewWillDisappear(true);
    m_disk.answer();
    awaitBackgroundThreads();
    QVERIFY(!m_trash->isMeasured());
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceMeasures)
#include "tst_FreeSpaceMeasures.moc"
