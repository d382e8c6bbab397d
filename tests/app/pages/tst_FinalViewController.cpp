#include "app/pages/FinalViewController.h"
#include "app/pings/StatsUpdater.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "chart/slice/ChartPlane.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Sheet.h"
#include "slices/record/Info.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QSignalSpy>

namespace {

const Addresses kAddresses{
    QStringLiteral("http://first.invalid/"),    QStringLiteral("http://launch.invalid/"),
    QStringLiteral("http://cleaning.invalid/"), QStringLiteral("http://f.invalid/"),
    QStringLiteral("http://t.invalid/"),        QStringLiteral("http://home.invalid/")};

class RecordingStats final : public StatsUpdater
{
public:
    void updateStatsForURLString(const QString &urlString) override { pings.append(urlString); }

    QStringList pings;
};

} // namespace

class TestFinalViewController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsWhatWasFreed_data();
    void showsWhatWasFreed();
    void addsEachCleaningToTheTotal();
    void leavesTheTotalWhenNothingWasFreed();
    void takesATotalBelowNothingForNothing();
    void fadesTheSizeInOnTheFirstVisitAlone();
    void reportsEachCleaning();
    void drawsAFanOfThreeLinks();
    void opensOnePageForEachLink();
    void opensTheLinkThatIsClicked();
    void showsTheAddressWhenNoBrowserStarts();
    void keepsTheButtonDisabledWhileItAppears();
    void leadsBackByTheKeyboardAtOnce();
    void goesBackToScanAgain();
    void readsTheSizesAnewAtEachAppearance();
    void drawsNoShadow();
    void foldsThePieWhenItDisappears();
    void asksForNoSecondMoveOnItsWayOut();

private:
    void appear(const QVariant &freed);

    std::unique_ptr<PageFixture> m_fixture;
    std::unique_ptr<FinalViewController> m_page;
    RecordingStats m_stats;
    RecordingPageDelegate m_delegate;
    VolumeSizes m_volume;
};

void TestFinalViewController::init()
{
    m_stats.pings.clear();
    m_delegate.moves.clear();
    m_volume = {1000, 250};
    m_fixture = std::make_unique<PageFixture>();
    m_page = std::make_unique<FinalViewController>(
        m_fixture->loader(),
        FinalViewController::Services{
            m_fixture->defaults(), m_stats, kAddresses,
            [this](const QUrl &url) { return m_fixture->workspace().openUrl(url); },
            [this] { return m_volume; }});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
}

void TestFinalViewController::cleanup()
{
    m_page.reset();
    m_fixture.reset();
}

void TestFinalViewController::appear(const QVariant &freed)
{
    m_page->viewWillAppear(true);
    m_page->setData(freed);
    m_page->viewDidAppear(true);
}

void TestFinalViewController::showsWhatWasFreed_data()
{
    QTest::addColumn<QVariant>("freed");
    QTest::addColumn<QString>("text");
    QTest::addRow("some") << QVariant(qint64{1234567890}) << QStringLiteral("1.23 GB");
    QTest::addRow("none") << QVariant(qint64{0}) << QStringLiteral("Zero KB");
    QTest::addRow("no data") << QVariant() << QStringLiteral("Zero KB");
}

void TestFinalViewController::showsWhatWasFreed()
{
    QFETCH(QVariant, freed);
    appear(freed);
    QTEST(m_page->sizeLabel()->text(), "text");
}

void TestFinalViewController::addsEachCleaningToTheTotal()
{
    QTest::ignoreMessage(QtInfoMsg, "New total size saved: 1000000");
    appear(qint64{1000000});
    QCOMPARE(m_fixture->defaults().integer(VNTTotalCleanedSize), 1000000);
    QTest::ignoreMessage(QtInfoMsg, "New total size saved: 3500000");
    appear(qint64{2500000});
    QCOMPARE(m_fixture->defaults().integer(VNTTotalCleanedSize), 3500000);
}

void TestFinalViewController::leavesTheTotalWhenNothingWasFreed()
{
    m_fixture->defaults().setInteger(VNTTotalCleanedSize, 42);
    appear(qint64{0});
    QCOMPARE(m_fixture->defaults().integer(VNTTotalCleanedSize), 42);
}

/// As in settings that were edited by hand.
void TestFinalViewController::takesATotalBelowNothingForNothing()
{
    m_fixture->defaults().setInteger(VNTTotalCleanedSize, -42);
    appear(qint64{1000});
    QCOMPARE(m_fixture->defaults().integer(VNTTotalCleanedSize), 1000);
}

void TestFinalViewController::fadesTheSizeInOnTheFirstVisitAlone()
{
    appear(qint64{1});
    QVERIFY(alphaValue(*m_page->sizeLabel()) < 0.5);
    QVERIFY(isFading(*m_page->sizeLabel(), 1, std::chrono::seconds(3)));
    QTRY_COMPARE(alphaValue(*m_page->sizeLabel()), 1.0);
    appear(qint64{2});
    QCOMPARE(alphaValue(*m_page->sizeLabel()), 1.0);
}

void TestFinalViewController::reportsEachCleaning()
{
    appear(qint64{0});
    appear(qint64{7});
    QCOMPARE(m_stats.pings, QStringList({kAddresses.cleaningPing, kAddresses.cleaningPing}));
}

void TestFinalViewController::drawsAFanOfThreeLinks()
{
    PieChart &chart = *m_page->pieChart();
    QCOMPARE(m_page->numberOfSlicesInPieChart(chart), 5);
    const QList<double> values{2, 1, 1, 1, 2};
    const QList<QColor> colors{Qt::transparent, QColor(66, 96, 166), QColor(91, 194, 230),
                               QColor(64, 145, 190), Qt::transparent};
    const QStringList images{QString(), QStringLiteral("socialFacebook"),
                             QStringLiteral("socialTwitter"), QStringLiteral("socialAppStoreLink"),
                             QString()};
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(m_page->valueForSliceAtIndex(chart, i), values[i]);
        QCOMPARE(*m_page->colorForSliceAtIndex(chart, i), colors[i]);
        QCOMPARE(m_page->infoForSliceAtIndex(chart, i)->image(), images[i]);
    }
    QVERIFY(m_page->infoForSliceAtIndex(chart, 0) == m_page->infoForSliceAtIndex(chart, 4));
    QCOMPARE(chart.infoRadius(), 120.0);
}

void TestFinalViewController::opensOnePageForEachLink()
{
    for (int i = 0; i < 5; ++i)
        m_page->didSelectSliceAtIndex(*m_page->pieChart(), i);
    QCOMPARE(m_fixture->workspace().opened,
             QList<QUrl>(
                 {QUrl(kAddresses.facebook), QUrl(kAddresses.twitter), QUrl(kAddresses.homePage)}));
}

/// The whole way from the pointer: each slice where it lies, the invisible ones at the pie's ends
/// too.
void TestFinalViewController::opensTheLinkThatIsClicked()
{
    appear(qint64{0});
    PieChart &chart = *m_page->pieChart();
    QSignalSpy settled(&chart, &PieChart::animationFinished);
    QVERIFY(settled.wait());
    const ChartPlane plane(chart.height());
    for (int i = 0; i < 5; ++i) {
        const QPointF middle = plane.toWidget(chart.layerOfSlice(i)->infoLayer()->position());
        QTest::mouseClick(&chart, Qt::LeftButton, {}, middle.toPoint());
    }
    QCOMPARE(m_fixture->workspace().opened,
             QList<QUrl>(
                 {QUrl(kAddresses.facebook), QUrl(kAddresses.twitter), QUrl(kAddresses.homePage)}));
}

void TestFinalViewController::showsTheAddressWhenNoBrowserStarts()
{
    m_fixture->workspace().works = false;
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), 3);
    QVERIFY(hasSheet(*m_page->view()));
    QVERIFY(sheetText(*m_page->view()).contains(kAddresses.homePage));
}

void TestFinalViewController::keepsTheButtonDisabledWhileItAppears()
{
    m_page->viewWillAppear(true);
    QVERIFY(!m_page->scanAgainButton()->isEnabled());
    m_page->viewDidAppear(true);
    QVERIFY(m_page->scanAgainButton()->isEnabled());
}

void TestFinalViewController::leadsBackByTheKeyboardAtOnce()
{
    appear(qint64{1000});
    QCOMPARE(m_page->view()->window()->focusWidget(), m_page->scanAgainButton());
}

void TestFinalViewController::goesBackToScanAgain()
{
    appear(qint64{0});
    QTest::mouseClick(m_page->scanAgainButton(), Qt::LeftButton);
    QCOMPARE(m_delegate.moves.size(), 1);
    QVERIFY(!m_delegate.moves[0].isForward);
}

void TestFinalViewController::readsTheSizesAnewAtEachAppearance()
{
    const auto *freeLabel = m_page->view()->findChild<TextField *>(QStringLiteral("freeLabel"));
    QVERIFY(freeLabel);
    m_page->viewWillAppear(true);
    QCOMPARE(freeLabel->text(), QStringLiteral("250 bytes"));
    m_volume = {1000, 900};
    m_page->viewWillAppear(true);
    QCOMPARE(freeLabel->text(), QStringLiteral("900 bytes"));
}

void TestFinalViewController::drawsNoShadow()
{
    m_page->pieChart()->setDrawShadow(true);
    appear(qint64{0});
    QVERIFY(!m_page->pieChart()->drawShadow());
}

void TestFinalViewController::foldsThePieWhenItDisappears()
{
    appear(qint64{0});
    PieChart &chart = *m_page->pieChart();
    QSignalSpy settled(&chart, &PieChart::animationFinished);
    QVERIFY(settled.wait());
    m_page->viewWillDisappear(true);
    QVERIFY(chart.isAnimating());
    for (const auto &layer : chart.sliceLayers())
        QCOMPARE(layer->endAngle(), chart.startPieAngle());
}

void TestFinalViewController::asksForNoSecondMoveOnItsWayOut()
{
    appear(qint64{0});
    m_page->viewWillDisappear(true);
    QTest::mouseClick(m_page->scanAgainButton(), Qt::LeftButton);
    QCOMPARE(m_delegate.moves.size(), 0);
    QVERIFY(!m_page->scanAgainButton()->isEnabled());
}

VANTOR_GUI_TEST_MAIN(TestFinalViewController)
#include "tst_FinalViewController.moc"
