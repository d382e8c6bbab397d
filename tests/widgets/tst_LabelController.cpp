#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/LabelController.h"
#include "widgets/TextField.h"

#include <QStorageInfo>
#include <memory>

namespace {

/// A controller of a made-up volume with its three labels.
struct Scene
{
    Scene()
    {
        controller.setFreeLabel(&freeLabel);
        controller.setUsedLabel(&usedLabel);
        controller.setTotalLabel(&totalLabel);
    }

    VolumeSizes volume;
    int readings = 0;
    TextField freeLabel;
    TextField usedLabel;
    TextField totalLabel;
    LabelController controller{nullptr, [this] {
                                   ++readings;
                                   return volume;
                               }};
};

} // namespace

class TestLabelController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsFreeUsedAndTotal_data();
    void showsFreeUsedAndTotal();
    void showsZeroWhereNothingCouldBeRead();
    void readsOnlyWhenReloaded();
    void showsSizesThatWereSet();
    void doesWithoutLabels();
    void splitsNumberFromUnit();
    void splitsByPositionAlone_data();
    void splitsByPositionAlone();
    void readsTheStartUpVolume();
};

void TestLabelController::showsFreeUsedAndTotal_data()
{
    QTest::addColumn<qint64>("entire");
    QTest::addColumn<qint64>("free");
    QTest::addColumn<QString>("freeText");
    QTest::addColumn<QString>("usedText");
    QTest::addColumn<QString>("totalText");
    QTest::newRow("half full") << qint64(500107862016) << qint64(249417862016) << "249.42 GB"
                               << "250.69 GB"
                               << "500.11 GB";
    QTest::newRow("full") << qint64(1000000000000) << qint64(0) << "Zero KB"
                          << "1 TB"
                          << "1 TB";
    QTest::newRow("empty") << qint64(64000000) << qint64(64000000) << "64 MB"
                           << "Zero KB"
                           << "64 MB";
}

void TestLabelController::showsFreeUsedAndTotal()
{
    QFETCH(qint64, entire);
    QFETCH(qint64, free);
    Scene scene;
    scene.volume = {entire, free};
    scene.controller.reloadData();
    QCOMPARE(scene.controller.entireSize(), entire);
    QCOMPARE(scene.controller.freeSize(), free);
    QTEST(scene.freeLabel.text(), "freeText");
    QTEST(scene.usedLabel.text(), "usedText");
    QTEST(scene.totalLabel.text(), "totalText");
    QVERIFY(scene.usedLabel.attributedText() ==
            LabelController::attributedSizeString(scene.usedLabel.text()));
}

void TestLabelController::showsZeroWhereNothingCouldBeRead()
{
    Scene scene;
    scene.volume = {100, 50};
    scene.controller.reloadData();
    scene.volume = {};
    scene.controller.reloadData();
    QCOMPARE(scene.controller.entireSize(), 0);
    QCOMPARE(scene.controller.freeSize(), 0);
    for (const TextField *label : {&scene.freeLabel, &scene.usedLabel, &scene.totalLabel})
        QCOMPARE(label->text(), QStringLiteral("Zero KB"));
}

void TestLabelController::readsOnlyWhenReloaded()
{
    Scene scene;
    scene.volume = {2000, 1000};
    scene.controller.updateLabels();
    QCOMPARE(scene.readings, 0);
    QCOMPARE(scene.totalLabel.text(), QStringLiteral("Zero KB"));
    scene.controller.reloadData();
    QCOMPARE(scene.readings, 1);
    scene.volume = {3000, 1000};
    scene.controller.updateLabels();
    QCOMPARE(scene.readings, 1);
    QCOMPARE(scene.totalLabel.text(), QStringLiteral("2 KB"));
    scene.controller.reloadData();
    QCOMPARE(scene.totalLabel.text(), QStringLiteral("3 KB"));
}

void TestLabelController::showsSizesThatWereSet()
{
    Scene scene;
    scene.controller.setEntireSize(9000);
    scene.controller.setFreeSize(4000);
    scene.controller.updateLabels();
    QCOMPARE(scene.freeLabel.text(), QStringLiteral("4 KB"));
    QCOMPARE(scene.usedLabel.text(), QStringLiteral("5 KB"));
    QCOMPARE(scene.totalLabel.text(), QStringLiteral("9 KB"));
}

void TestLabelController::doesWithoutLabels()
{
    Scene scene;
    auto label = std::make_unique<TextField>();
    scene.controller.setUsedLabel(label.get());
    QCOMPARE(scene.controller.usedLabel(), label.get());
    label.reset();
    QVERIFY(!scene.controller.usedLabel());
    scene.controller.setTotalLabel(nullptr);
    scene.volume = {2000, 1000};
    scene.controller.reloadData();
    QCOMPARE(scene.freeLabel.text(), QStringLiteral("1 KB"));
}

void TestLabelController::splitsNumberFromUnit()
{
    const AttributedText text = LabelController::attributedSizeString(QStringLiteral("250,69 GB"));
    QCOMPARE(text.runs().size(), 2);
    const TextRun &number = text.runs()[0];
    QCOMPARE(number.text, QStringLiteral("250,69 "));
    QVERIFY(number.font == interfaceFont(Typeface::Light, 27));
    QCOMPARE(number.color, QColor(27, 27, 27));
    QCOMPARE(number.alignment, Qt::Alignment(Qt::AlignHCenter));
    const TextRun &unit = text.runs()[1];
    QCOMPARE(unit.text, QStringLiteral("GB"));
    QVERIFY(unit.font == interfaceFont(Typeface::Light, 20));
    QCOMPARE(unit.color, QColor(141, 141, 141));
    QCOMPARE(unit.alignment, Qt::Alignment());
}

void TestLabelController::splitsByPositionAlone_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("unit");
    QTest::newRow("Zero KB") << "Zero "
                             << "KB";
    QTest::newRow("1 byte") << "1 by"
                            << "te";
    QTest::newRow("GB") << ""
                        << "GB";
    QTest::newRow("B") << ""
                       << "B";
    QTest::newRow("") << ""
                      << "";
}

void TestLabelController::splitsByPositionAlone()
{
    const AttributedText text =
        LabelController::attributedSizeString(QString::fromLatin1(QTest::currentDataTag()));
    QTEST(text.runs()[0].text, "number");
    QTEST(text.runs()[1].text, "unit");
}

void TestLabelController::readsTheStartUpVolume()
{
    constexpr qint64 kOthersMayWrite = 500'000'000;
    const QStorageInfo root = QStorageInfo::root();
    Scene scene;
    LabelController controller;
    controller.setTotalLabel(&scene.totalLabel);
    controller.reloadData();
    QVERIFY(controller.entireSize() > 0);
    QCOMPARE(controller.entireSize(), root.bytesTotal());
    QVERIFY(qAbs(controller.freeSize() - root.bytesAvailable()) < kOthersMayWrite);
    QVERIFY(scene.totalLabel.text() != QStringLiteral("Zero KB"));
}

VANTOR_GUI_TEST_MAIN(TestLabelController)
#include "tst_LabelController.moc"
