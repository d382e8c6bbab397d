#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace {

/// How much ink the letters leave, in whole pixels.
double inkOf(const QFont &font)
{
    QImage picture(600, 160, QImage::Format_Grayscale8);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setFont(font);
    painter.drawText(QPointF(10, 120), QStringLiteral("Start 123"));
    painter.end();
    double ink = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ink += (255 - qGray(picture.pixel(x, y))) / 255.0;
    }
    return ink;
}

/// Width of a letter's upright stroke in the drawn outline, in points.
double stemOf(const QFont &font)
{
    QPainterPath outline;
    outline.addText(QPointF(), font, QStringLiteral("l"));
    return outline.boundingRect().width();
}

constexpr Typeface kFaces[] = {Typeface::UltraLight, Typeface::Thin, Typeface::Light,
                               Typeface::Regular, Typeface::Medium};

} // namespace

class TestFonts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheProgramsOwnFamily();
    void usesDisplayCutsFromTwentyFourPoints();
    void hasFiveWeightsOfOneFamily_data();
    void hasFiveWeightsOfOneFamily();
    void givesTheSizeInPoints();
    void spacesLettersByFractionsOfADot();
};

void TestFonts::givesTheProgramsOwnFamily()
{
    QCOMPARE(QFontInfo(interfaceFont(Typeface::Light, 16)).family(), QStringLiteral("Inter"));
}

void TestFonts::usesDisplayCutsFromTwentyFourPoints()
{
    QCOMPARE(QFontInfo(interfaceFont(Typeface::Light, 23)).family(), QStringLiteral("Inter"));
    QCOMPARE(QFontInfo(interfaceFont(Typeface::Light, 24)).family(),
             QStringLiteral("Inter Display"));
}

void TestFonts::hasFiveWeightsOfOneFamily_data()
{
    QTest::addColumn<int>("size");
    QTest::addRow("text") << 20;
    QTest::addRow("display") << 100;
}

/// A weight that the painter imitates would have the outline of another weight.
void TestFonts::hasFiveWeightsOfOneFamily()
{
    QFETCH(int, size);
    const QString family = QFontInfo(interfaceFont(Typeface::UltraLight, size)).family();
    double stem = 0;
    double ink = 0;
    for (const Typeface face : kFaces) {
        const QFont font = interfaceFont(face, size);
        QCOMPARE(QFontInfo(font).family(), family);
        QCOMPARE(QFontInfo(font).weight(), static_cast<int>(font.weight()));
        QVERIFY2(stemOf(font) > stem * 1.15, qPrintable(font.toString()));
        QVERIFY2(inkOf(font) > ink * 1.1, qPrintable(font.toString()));
        stem = stemOf(font);
        ink = inkOf(font);
    }
}

void TestFonts::givesTheSizeInPoints()
{
    QCOMPARE(QFontInfo(interfaceFont(Typeface::UltraLight, 40)).pixelSize(), 40);
    // A line has the same height in every weight, so a field does not move when its weight changes.
    for (const Typeface face : kFaces)
        QCOMPARE(QFontMetricsF(interfaceFont(face, 40)).height(),
                 QFontMetricsF(interfaceFont(Typeface::UltraLight, 40)).height());
}

void TestFonts::spacesLettersByFractionsOfADot()
{
    const QString letters(100, u'i');
    const double small =
        QFontMetricsF(interfaceFont(Typeface::Light, 10)).horizontalAdvance(letters);
    const double large =
        QFontMetricsF(interfaceFont(Typeface::Light, 20)).horizontalAdvance(letters);
    QVERIFY2(qAbs(large / small - 2) < 0.02, qPrintable(QString::number(large / small)));
}

VANTOR_GUI_TEST_MAIN(TestFonts)
#include "tst_Fonts.moc"
