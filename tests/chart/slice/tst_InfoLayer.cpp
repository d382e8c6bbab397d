#include "chart/slice/InfoLayer.h"
#include "slices/record/Info.h"
#include "tests/chart/SlowFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <cmath>

namespace {

const auto kPicture = QStringLiteral("shadow"); // any drawing of the resources

double widthIn(Typeface face, int points, const QString &text)
{
    return QFontMetricsF(interfaceFont(face, points)).horizontalAdvance(text);
}

std::shared_ptr<Info> infoWithText(const QString &name, const QString &text)
{
    return std::make_shared<Info>(name, std::nullopt, kPicture, text);
}

void letSizesArrive()
{
    awaitBackgroundThreads();
    QCoreApplication::sendPostedEvents();
}

QImage painted(InfoLayer &layer, double scale, QPointF middle, double opacity = 1)
{
    QImage image(QSize(300, 300) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::darkGreen);
    QPainter painter(&image);
    layer.paint(painter, middle, opacity);
    return image;
}

/// Whether a pixel between two heights (in points of the image) differs from the background.
bool isPaintedBetween(const QImage &image, int top, int bottom)
{
    for (int y = top; y < bottom; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::darkGreen))
                return true;
        }
    }
    return false;
}

} // namespace

class TestInfoLayer final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsSizeTextsIntoNumberAndUnit_data();
    void splitsSizeTextsIntoNumberAndUnit();
    void showsWhatTheRecordSays();
    void placesItsPartsAroundTheMiddle();
    void setsItsTextsInTheirFonts();
    void centresTheIconOfARecordWithoutName();
    void showsNoTextForARecordWithoutName();
    void isEmptyWithoutRecord();
    void showsNoSizeBeforeItIsMeasured();
    void takesTheSizeOfAnotherRecordAway();
    void dropsALateAnswerForAnotherRecord();
    void survivesAnAnswerThatComesAfterItsEnd();
    void asksOnceForARecordThatIsBeingMeasured();
    void holdsNoFurtherThreadForARecordThatIsBeingMeasured();
    void showsTheTextThatWasSetWhileItWasMeasured();
    void neverCutsItsTextOff();
    void tellsWhenItLooksDifferentByItself();
    void paintsNothingWhenHidden();
    void paintsOnWholePixels_data();
    void paintsOnWholePixels();
    void paintsLightLetters();
};

using Runs = WeightedText;
Q_DECLARE_METATYPE(Runs)

void TestInfoLayer::splitsSizeTextsIntoNumberAndUnit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("unit");
    const auto row = [](const char *text, const char *number, const char *unit) {
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(number)
                            << QString::fromLatin1(unit);
    };
    row("1.24 GB", "1.24", " GB");
    row("310 KB", "310", " KB");
    row("5 MB", "5", " MB");
    row("96 bytes", "96 by", "tes");
    row("Zero KB", "Zero", " KB");
    row("Empty", "", "");
    row("Click to select", "", "");
    row("abc", "", "");
    row("", "", "");
    row("abcd", "a", "bcd");
}

void TestInfoLayer::splitsSizeTextsIntoNumberAndUnit()
{
    QFETCH(QString, text);
    QFETCH(QString, number);
    QFETCH(QString, unit);
    const auto runs = InfoLayer::attributedSizeString(text);
    QCOMPARE(runs.has_value(), !unit.isEmpty());
    if (runs)
        QCOMPARE(*runs, (Runs{{number, Typeface::Regular}, {unit, Typeface::Medium}}));

    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), text));
    letSizesArrive();
    QCOMPARE(layer.sizeString(), text);
    QCOMPARE(layer.sizeText(), runs.value_or(Runs{{text, Typeface::Regular}}));
}

void TestInfoLayer::showsWhatTheRecordSays()
{
    InfoLayer layer;
    QCOMPARE(layer.imageName(), QStringLiteral("image"));
    const auto info = infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB"));
    layer.setInfo(info);
    QCOMPARE(layer.info(), info);
    QCOMPARE(layer.imageName(), kPicture);
    QCOMPARE(layer.nameString(), QStringLiteral("Trash"));
    letSizesArrive();
    QCOMPARE(layer.sizeString(), QStringLiteral("1 GB"));
}

void TestInfoLayer::placesItsPartsAroundTheMiddle()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    letSizesArrive();
    QCOMPARE(layer.imageFrame(), QRectF(-27, -10, 54, 54));
    QCOMPARE(layer.nameFrame().top(), -25.0); // the smaller y
    QCOMPARE(layer.nameFrame().bottom(), -5.0);
    QCOMPARE(layer.nameFrame().center().x(), 0.0);
    QVERIFY(layer.nameFrame().width() > 20);
    QCOMPARE(layer.sizeFrame().top(), -43.0);
    QVERIFY(layer.sizeFrame().bottom() < -20 && layer.sizeFrame().bottom() > -30);
    QCOMPARE(layer.sizeFrame().center().x(), 0.0);
    QVERIFY(layer.bounds().contains(layer.sizeFrame()));
}

/// The frames are as wide as the letters that are painted in them.
void TestInfoLayer::setsItsTextsInTheirFonts()
{
    InfoLayer layer;
    const QString name = QStringLiteral("Application Caches and more");
    layer.setInfo(infoWithText(name, QStringLiteral("1234567890.24 GB")));
    letSizesArrive();
    QCOMPARE(layer.nameFrame().width(), std::ceil(widthIn(Typeface::Light, 16, name)));
    QCOMPARE(layer.sizeFrame().width(),
             std::ceil(widthIn(Typeface::Regular, 15, QStringLiteral("1234567890.24")) +
                       widthIn(Typeface::Medium, 15, QStringLiteral(" GB"))));
    QCOMPARE(layer.sizeFrame().height(),
             QFontMetricsF(interfaceFont(Typeface::Regular, 15)).height());
}

void TestInfoLayer::centresTheIconOfARecordWithoutName()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    layer.setInfo(infoWithText({}, QStringLiteral("0")));
    QCOMPARE(layer.imageFrame(), QRectF(-27, -27, 54, 54));
    QCOMPARE(layer.nameString(), QStringLiteral("Trash")); // not changed
    layer.setInfo(infoWithText(QStringLiteral("Cache"), QStringLiteral("1 GB")));
    QCOMPARE(layer.imageFrame(), QRectF(-27, -10, 54, 54));
}

void TestInfoLayer::showsNoTextForARecordWithoutName()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    letSizesArrive();
    QVERIFY(isPaintedBetween(painted(layer, 1, {150, 150}), 178, 200));
    layer.setInfo(infoWithText({}, QStringLiteral("1 GB")));
    letSizesArrive();
    const QImage image = painted(layer, 1, {150, 150});
    QVERIFY(isPaintedBetween(image, 150 - 27, 150 + 27));
    QVERIFY(!isPaintedBetween(image, 150 + 27 + 2, 300)); // except its shade
}

void TestInfoLayer::isEmptyWithoutRecord()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    letSizesArrive();
    layer.setInfo(nullptr);
    letSizesArrive();
    QVERIFY(!layer.info());
    QCOMPARE(layer.nameString(), QString());
    QCOMPARE(layer.sizeString(), QString());
    QVERIFY(!isPaintedBetween(painted(layer, 1, {150, 150}), 0, 300));
}

void TestInfoLayer::showsNoSizeBeforeItIsMeasured()
{
    SlowFolder folder;
    InfoLayer layer;
    layer.setInfo(folder.info(QStringLiteral("Cache")));
    folder.awaitStart();
    QCOMPARE(layer.sizeString(), QString());
    folder.allow();
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("1.24 GB"));
}

void TestInfoLayer::takesTheSizeOfAnotherRecordAway()
{
    SlowFolder folder;
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("7 GB")));
    letSizesArrive();
    layer.setInfo(folder.info(QStringLiteral("Cache")));
    QCOMPARE(layer.sizeString(), QString());
    folder.allow();
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("1.24 GB"));
}

void TestInfoLayer::dropsALateAnswerForAnotherRecord()
{
    SlowFolder folder;
    InfoLayer layer;
    layer.setInfo(folder.info(QStringLiteral("Cache")));
    folder.awaitStart();
    layer.setInfo(infoWithText(QStringLiteral("Cache"), QStringLiteral("Empty")));
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("Empty"));
    folder.allow();
    letSizesArrive();
    QCOMPARE(layer.sizeString(), QStringLiteral("Empty"));
}

void TestInfoLayer::survivesAnAnswerThatComesAfterItsEnd()
{
    SlowFolder folder;
    bool isTold = false;
    auto layer = std::make_unique<InfoLayer>([&isTold] { isTold = true; });
    layer->setInfo(folder.info(QStringLiteral("Cache")));
    folder.awaitStart();
    layer.reset();
    isTold = false;
    folder.allow();
    letSizesArrive();
    QVERIFY(!isTold);
    QCOMPARE(folder.measured.load(), 1);
}

void TestInfoLayer::asksOnceForARecordThatIsBeingMeasured()
{
    SlowFolder folder;
    InfoLayer layer;
    const auto info = folder.info(QStringLiteral("Cache"));
    for (int i = 0; i < 5; ++i)
        layer.setInfo(info);
    folder.awaitStart();
    folder.allow();
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("1.24 GB"));
    letSizesArrive();
    QCOMPARE(folder.measured.load(), 1);
}

/// The asker holds the record. The record itself would measure only once, but let all askers wait.
void TestInfoLayer::holdsNoFurtherThreadForARecordThatIsBeingMeasured()
{
    SlowFolder folder;
    InfoLayer layer;
    const auto info = folder.info(QStringLiteral("Cache"));
    layer.setInfo(info);
    folder.awaitStart();
    const auto holders = info.use_count();
    for (int i = 0; i < 5; ++i)
        layer.setInfo(info);
    QCOMPARE(info.use_count(), holders);
    folder.allow();
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("1.24 GB"));
}

void TestInfoLayer::showsTheTextThatWasSetWhileItWasMeasured()
{
    SlowFolder folder;
    InfoLayer layer;
    const auto info = folder.info(QStringLiteral("Large Files"));
    layer.setInfo(info);
    folder.awaitStart();
    folder.allow();
    awaitBackgroundThreads(); // the answer is on its way
    info->setFileSizeString(QStringLiteral("9 GB"));
    layer.setInfo(info);
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("9 GB"));
}

void TestInfoLayer::neverCutsItsTextOff()
{
    InfoLayer layer;
    const QString name = QStringLiteral("A name that is much wider than any slice of the pie");
    layer.setInfo(infoWithText(name, QStringLiteral("1 GB")));
    QVERIFY(layer.nameFrame().width() > 300);
    QVERIFY(layer.bounds().width() > layer.nameFrame().width());
}

void TestInfoLayer::tellsWhenItLooksDifferentByItself()
{
    int changes = 0;
    SlowFolder folder;
    InfoLayer layer([&changes] { ++changes; });
    layer.setInfo(folder.info(QStringLiteral("Cache")));
    folder.awaitStart();
    changes = 0;
    folder.allow();
    QTRY_COMPARE(layer.sizeString(), QStringLiteral("1.24 GB"));
    QVERIFY(changes > 0);
}

void TestInfoLayer::paintsNothingWhenHidden()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    QVERIFY(isPaintedBetween(painted(layer, 1, {150, 150}), 0, 300));
    QVERIFY(!isPaintedBetween(painted(layer, 1, {150, 150}, 0), 0, 300));
    layer.setHidden(true);
    QVERIFY(!isPaintedBetween(painted(layer, 1, {150, 150}), 0, 300));
}

void TestInfoLayer::paintsOnWholePixels_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("1") << 1.0;
    QTest::newRow("1.25") << 1.25;
    QTest::newRow("1.5") << 1.5;
    QTest::newRow("2") << 2.0;
}

void TestInfoLayer::paintsOnWholePixels()
{
    QFETCH(double, scale);
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("Trash"), QStringLiteral("1 GB")));
    letSizesArrive();
    // The letters are the same wherever the corner lies between two pixels.
    const QPointF offset(-layer.bounds().left(), layer.bounds().bottom());
    const QImage there = painted(layer, scale, offset + QPointF(60, 60) / scale);
    const QImage beside = painted(layer, scale, offset + QPointF(60.3, 59.8) / scale);
    QCOMPARE(there, beside);
}

void TestInfoLayer::paintsLightLetters()
{
    InfoLayer layer;
    layer.setInfo(infoWithText(QStringLiteral("HHHHHH"), QStringLiteral("1 GB")));
    const QImage image = painted(layer, 2, {150, 150});
    int white = 0;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 2 * 155; y < 2 * 175; ++y)
            white += image.pixelColor(x, y) == QColor(Qt::white) ? 1 : 0;
    }
    QVERIFY(white > 50);
}

VANTOR_GUI_TEST_MAIN(TestInfoLayer)
#include "tst_InfoLayer.moc"
