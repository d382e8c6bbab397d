#include "chart/SliceSource.h"

#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <cmath>
#include <limits>

class TestSliceSource final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWhatTheDataSourceSays();
    void takesNoUnsoundValue_data();
    void takesNoUnsoundValue();
    void sharesNothingOfNothing();
    void answersForADataSourceThatIsGone();
    void prefersTheGivenColors();
    void picksColorsOfItsOwn_data();
    void picksColorsOfItsOwn();

private:
    PieChart m_chart{QRect(0, 0, 400, 300)};
};

void TestSliceSource::readsWhatTheDataSourceSays()
{
    FakeSlices page;
    page.setValues({1, 3});
    page.slices[1].info = Info::infoWithName(QStringLiteral("Cache"), std::nullopt);
    SliceSource source(m_chart);
    source.set(&page);
    const SliceReading reading = source.read();
    QCOMPARE(reading.values, (std::vector<double>{1, 3}));
    QCOMPARE(reading.sum, 4.0);
    QCOMPARE(reading.share(1), 0.75);
    QVERIFY(!reading.infos[0]);
    QCOMPARE(reading.infos[1], page.slices[1].info);
}

void TestSliceSource::takesNoUnsoundValue_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("below nothing") << -1.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("without end") << std::numeric_limits<double>::infinity();
}

void TestSliceSource::takesNoUnsoundValue()
{
    QFETCH(const double, value);
    FakeSlices page;
    page.setValues({value, 2});
    SliceSource source(m_chart);
    source.set(&page);
    QCOMPARE(source.read().values, (std::vector<double>{0, 2}));
    QCOMPARE(source.read().sum, 2.0);
}

void TestSliceSource::sharesNothingOfNothing()
{
    FakeSlices page;
    page.setValues({0, 0});
    SliceSource source(m_chart);
    source.set(&page);
    QCOMPARE(source.read().share(1), 0.0);
}

void TestSliceSource::answersForADataSourceThatIsGone()
{
    SliceSource source(m_chart);
    {
        FakeSlices page;
        page.setValues({1});
        page.slices[0].color = Qt::red;
        source.set(&page);
    }
    QVERIFY(!source.get());
    QVERIFY(source.read().values.empty());
    QVERIFY(!source.givenColor(0));
    QCOMPARE(source.color(0), SliceSource::defaultColor(0));
    QCOMPARE(source.gradient(3),
             (GradientLayer::Colors{SliceSource::defaultColor(3), SliceSource::defaultColor(3)}));
}

void TestSliceSource::prefersTheGivenColors()
{
    FakeSlices page;
    page.setValues({1, 1});
    page.slices[0].color = Qt::red;
    page.slices[0].secondaryColor = Qt::blue;
    page.slices[1].color = Qt::green;
    SliceSource source(m_chart);
    source.set(&page);
    QCOMPARE(source.givenColor(0), std::optional<QColor>(Qt::red));
    QCOMPARE(source.gradient(0), (GradientLayer::Colors{Qt::red, Qt::blue}));
    QCOMPARE(source.gradient(1), (GradientLayer::Colors{Qt::green, Qt::green}));
}

void TestSliceSource::picksColorsOfItsOwn_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<double>("hue");
    QTest::addColumn<double>("saturation");
    QTest::newRow("0") << 0 << 0.02 << 0.3;
    QTest::newRow("7") << 7 << 0.02 << 1.0;
    QTest::newRow("9") << 9 << 0.07 << 0.4;
    QTest::newRow("159") << 159 << 0.97 << 1.0;
    QTest::newRow("160") << 160 << 0.02 << 0.3;
}

void TestSliceSource::picksColorsOfItsOwn()
{
    QFETCH(int, index);
    QFETCH(double, hue);
    QFETCH(double, saturation);
    const QColor color = SliceSource::defaultColor(index);
    QVERIFY(std::abs(color.hsvHueF() - hue) < 1e-3);
    QVERIFY(std::abs(color.hsvSaturationF() - saturation) < 1e-3);
    QVERIFY(std::abs(color.valueF() - 0.91) < 1e-3);
    QCOMPARE(color.alpha(), 255);
}

VANTOR_GUI_TEST_MAIN(TestSliceSource)
#include "tst_SliceSource.moc"
