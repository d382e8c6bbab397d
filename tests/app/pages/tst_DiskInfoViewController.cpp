#include "app/pages/DiskInfoViewController.h"
#include "chart/PieChart.h"
#include "platform/look/ViewAlpha.h"
#include "slices/record/Info.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QSignalSpy>

class TestDiskInfoViewController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void hidesAllButThePieUntilItAppears();
    void fadesAllButThePieInWithinASecond();
    void splitsTheDiskIntoFreeAndUsed();
    void answersOtherIndexesAsUsed();
    void givesSlicesNoLabels();
    void showsAFullDiskAsUsed();
    void readsTheSizesAnewAtEachAppearance();
    void keepsTheButtonDisabledWhileItAppears();
    void leadsOnByTheKeyboardAtOnce();
    void movesOnWithoutData();
    void foldsThePieWhenItDisappears();
    void growsThePieAnewAtEachAppearance();
    void asksForNoSecondMoveOnItsWayOut();

private:
    void appear();

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<DiskInfoViewController> m_page;
    RecordingPageDelegate m_delegate;
    VolumeSizes m_volume;
};

void TestDiskInfoViewController::init()
{
    m_volume = {1000, 250};
    m_delegate.moves.clear();
    m_fixture = std::make_unique<PageFixture>();
    m_page =
        std::make_unique<DiskInfoViewController>(m_fixture->loader(), [this] { return m_volume; });
    m_page->view()->show();
    m_page->setDelegate(&m_delegate);
}

void TestDiskInfoViewController::cleanup()
{
    m_page.reset();
    m_fixture.reset();
}

void TestDiskInfoViewController::appear()
{
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
}

void TestDiskInfoViewController::hidesAllButThePieUntilItAppears()
{
    QCOMPARE(alphaValue(*m_page->pieChart()), 1.0);
    QCOMPARE(alphaValue(*m_page->startButton()), 0.0);
    QCOMPARE(alphaValue(*m_page->labelController().freeLabel()), 0.0);
    appear();
    QCOMPARE(alphaValue(*m_page->startButton()), 1.0);
    QTRY_COMPARE(alphaValue(*m_page->labelController().freeLabel()), 1.0);
}

void TestDiskInfoViewController::fadesAllButThePieInWithinASecond()
{
    appear();
    const LabelController &labels = m_page->labelController();
    for (const QWidget *label : {labels.freeLabel(), labels.usedLabel(), labels.totalLabel()})
        QVERIFY(isFading(*label, 1, std::chrono::seconds(1)));
    QCOMPARE(alphaValue(*m_page->pieChart()), 1.0);
}

void TestDiskInfoViewController::splitsTheDiskIntoFreeAndUsed()
{
    appear();
    PieChart &chart = *m_page->pieChart();
    QCOMPARE(m_page->numberOfSlicesInPieChart(chart), 2);
    QCOMPARE(m_page->valueForSliceAtIndex(chart, 0), 250.0);
    QCOMPARE(m_page->valueForSliceAtIndex(chart, 1), 750.0);
    QCOMPARE(*m_page->colorForSliceAtIndex(chart, 0), QColor(74, 174, 51));
    QCOMPARE(*m_page->colorForSliceAtIndex(chart, 1), QColor(21, 106, 202));
    QVERIFY(chart.drawShadow());
}

void TestDiskInfoViewController::answersOtherIndexesAsUsed()
{
    appear();
    PieChart &chart = *m_page->pieChart();
    QCOMPARE(m_page->valueForSliceAtIndex(chart, 7), 750.0);
    QCOMPARE(*m_page->colorForSliceAtIndex(chart, 7), QColor(21, 106, 202));
}

void TestDiskInfoViewController::givesSlicesNoLabels()
{
    PieChart &chart = *m_page->pieChart();
    const std::shared_ptr<Info> info = m_page->infoForSliceAtIndex(chart, 0);
    QCOMPARE(info->name(), QString());
    QVERIFY(!info->fileURLs());
    QVERIFY(!info->fileSizeString());
    QVERIFY(info != m_page->infoForSliceAtIndex(chart, 0));
}

void TestDiskInfoViewController::showsAFullDiskAsUsed()
{
    m_volume = {1000, 0};
    appear();
    QCOMPARE(m_page->valueForSliceAtIndex(*m_page->pieChart(), 0), 0.0);
    QCOMPARE(m_page->valueForSliceAtIndex(*m_page->pieChart(), 1), 1000.0);
}

void TestDiskInfoViewController::readsTheSizesAnewAtEachAppearance()
{
    appear();
    m_volume = {1000, 900};
    appear();
    QCOMPARE(m_page->valueForSliceAtIndex(*m_page->pieChart(), 0), 900.0);
    QCOMPARE(m_page->labelController().freeLabel()->text(), QStringLiteral("900 bytes"));
}

void TestDiskInfoViewController::keepsTheButtonDisabledWhileItAppears()
{
    m_page->viewWillAppear(true);
    QTest::mouseClick(m_page->startButton(), Qt::LeftButton);
    QCOMPARE(m_delegate.moves.size(), 0);
    m_page->viewDidAppear(true);
    QTest::mouseClick(m_page->startButton(), Qt::LeftButton);
    QCOMPARE(m_delegate.moves.size(), 1);
}

void TestDiskInfoViewController::leadsOnByTheKeyboardAtOnce()
{
    appear();
    QCOMPARE(m_page->view()->window()->focusWidget(), m_page->startButton());
}

void TestDiskInfoViewController::movesOnWithoutData()
{
    appear();
    QCOMPARE(m_page->startButton()->mainText().text(), QStringLiteral("Start"));
    m_page->next();
    QCOMPARE(m_delegate.moves.size(), 1);
    QVERIFY(m_delegate.moves[0].isForward);
    QVERIFY(!m_delegate.moves[0].data.isValid());
}

void TestDiskInfoViewController::foldsThePieWhenItDisappears()
{
    appear();
    QSignalSpy settled(m_page->pieChart(), &PieChart::animationFinished);
    QVERIFY(settled.wait());
    m_page->viewWillDisappear(true);
    QVERIFY(!m_page->pieChart()->drawShadow());
    QVERIFY(m_page->pieChart()->isAnimating());
}

/// Flat until it has grown, as at the first time.
void TestDiskInfoViewController::growsThePieAnewAtEachAppearance()
{
    appear();
    QTRY_VERIFY(m_page->pieChart()->didLoad());
    m_page->viewWillDisappear(true);
    appear();
    QVERIFY(!m_page->pieChart()->didLoad());
    QTRY_VERIFY(m_page->pieChart()->didLoad());
}

void TestDiskInfoViewController::asksForNoSecondMoveOnItsWayOut()
{
    appear();
    m_page->viewWillDisappear(true);
    QTest::mouseClick(m_page->startButton(), Qt::LeftButton);
    QCOMPARE(m_delegate.moves.size(), 0);
    QVERIFY(!m_page->startButton()->isEnabled());
}

VANTOR_GUI_TEST_MAIN(TestDiskInfoViewController)
#include "tst_DiskInfoViewController.moc"
