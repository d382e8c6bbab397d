#include "slices/page/SlicesDataSource.h"

#include "app/grant/ResourceManager.h"
#include "chart/PieChart.h"
#include "slices/page/SliceSelection.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/run/GuiTestMain.h"

class TestSlicesDataSource final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoSlicesBeforeThereAreRecords();
    void suppliesEachRecordAsASliceOfTheSameSize();
    void drawsASliceInItsColoursOnlyWhileItIsOn();

private:
    PageFixture m_fixture;
    SliceSelection m_selection{m_fixture.defaults(), ResourceManager::access()};
    SlicesDataSource m_source{m_selection};
    PieChart m_chart{QRect(0, 0, 400, 400)};
};

void TestSlicesDataSource::hasNoSlicesBeforeThereAreRecords()
{
    QCOMPARE(m_source.numberOfSlicesInPieChart(m_chart), 0);
}

void TestSlicesDataSource::suppliesEachRecordAsASliceOfTheSameSize()
{
    m_selection.rebuild(HomeLayout(), {});
    QCOMPARE(m_source.numberOfSlicesInPieChart(m_chart), 8);
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(m_source.valueForSliceAtIndex(m_chart, i), 1.0);
        QCOMPARE(m_source.infoForSliceAtIndex(m_chart, i), m_selection.records().at(i));
    }
}

void TestSlicesDataSource::drawsASliceInItsColoursOnlyWhileItIsOn()
{
    m_selection.rebuild(HomeLayout(), {});
    Info &trash = m_selection.record(SliceKind::Trash);
    trash.setIsOn(true);
    QCOMPARE(m_source.colorForSliceAtIndex(m_chart, 0), QColor(93, 183, 26));
    QCOMPARE(m_source.secondaryColorForSliceAtIndex(m_chart, 0), QColor(103, 166, 56));
    trash.setIsOn(false);
    QCOMPARE(m_source.colorForSliceAtIndex(m_chart, 0), QColor(134, 134, 134));
    QCOMPARE(m_source.secondaryColorForSliceAtIndex(m_chart, 0), QColor(110, 110, 110));
}

VANTOR_GUI_TEST_MAIN(TestSlicesDataSource)
#include "tst_SlicesDataSource.moc"
