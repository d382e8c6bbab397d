#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/widgets/Ink.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QFontMetricsF>

namespace {

constexpr double kRing = 0.84; // of the button's width: the disc's inner ring

AttributedText sizeText(const QString &number, const QString &unit)
{
    return {TextRun{number, interfaceFont(Typeface::Light, 40), QColor(148, 148, 148),
                    Qt::AlignHCenter},
            TextRun{unit, interfaceFont(Typeface::Thin, 30), QColor(173, 173, 173)}};
}

/// Rectangle of one line, measured with the word for which the captions are made.
QRect expectedFrame(const StartButton &button, const QFont &font, double middle)
{
    const double height =
        QFontMetricsF(font).boundingRect(QRectF(), Qt::AlignLeft, QStringLiteral("Start")).height();
    return {10, static_cast<int>(middle - height * 0.5), button.width() - 20,
            static_cast<int>(height)};
}

QImage grabbed(StartButton &button)
{
    return button.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// The area of the disc in which the captions leave ink.
QRectF captionInk(StartButton &button, const AttributedText &main, const QString &detail)
{
    button.mainText().setText(QString());
    button.detailText().setText(QString());
    const QImage blank = grabbed(button);
    button.mainText().setAttributedText(main);
    button.detailText().setText(detail);
    return inkBetween(grabbed(button), blank);
}

} // namespace

class TestStartButtonTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areStyledAsCaptions();
    void standInTheMiddleAndBelowIt_data();
    void standInTheMiddleAndBelowIt();
    void recentreWithTheFontOfTheMainText();
    void keepTheirPlaceWithoutAText();
    void followTheDetailFont();
    void stayWithinTheRing_data();
    void stayWithinTheRing();
    void keepTheirSizeWhereTheyFit();
};

void TestStartButtonTexts::areStyledAsCaptions()
{
    StartButton button;
    QVERIFY(button.mainText().font() == interfaceFont(Typeface::UltraLight, 40));
    QVERIFY(button.detailText().font() == interfaceFont(Typeface::Light, 16));
    for (const TextField *field : {&button.mainText(), &button.detailText()}) {
        QCOMPARE(field->textColor(), QColor(77, 77, 77));
        QVERIFY(field->alignment() & Qt::AlignHCenter);
        QCOMPARE(field->parentWidget(), &button);
    }
}

void TestStartButtonTexts::standInTheMiddleAndBelowIt_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {120, 160, 200, 201, 333})
        QTest::addRow("%d", size) << size;
}

void TestStartButtonTexts::standInTheMiddleAndBelowIt()
{
    QFETCH(int, size);
    StartButton button;
    button.resize(size, size);
    const QRect main = expectedFrame(button, button.mainText().font(), size * 0.5);
    const QRect detail = expectedFrame(button, button.detailText().font(), size * 0.25 * 3.0);
    button.grab(); // lets the button get its size
    QCOMPARE(button.mainText().geometry(), main);
    QCOMPARE(button.detailText().geometry(), detail);
    QVERIFY(detail.center().y() > main.center().y());
}

void TestStartButtonTexts::recentreWithTheFontOfTheMainText()
{
    StartButton button;
    button.grab();
    const QRect large = button.mainText().geometry();
    const QFont font = interfaceFont(Typeface::Light, 20);
    button.mainText().setAttributedText(
        {TextRun{QStringLiteral("Select Slices"), font, QColor(148, 148, 148), Qt::AlignHCenter},
         TextRun{QStringLiteral("!"), interfaceFont(Typeface::Light, 60), Qt::black}});
    QCOMPARE(button.mainText().geometry(), expectedFrame(button, font, 100));
    QVERIFY(button.mainText().height() < large.height());
    // A plain text has the field's own font again.
    button.mainText().setText(QStringLiteral("Cleaning"));
    QCOMPARE(button.mainText().geometry(), large);
}

void TestStartButtonTexts::keepTheirPlaceWithoutAText()
{
    StartButton button;
    button.grab();
    const QRect frame = button.mainText().geometry();
    button.mainText().setText(QString());
    QCOMPARE(button.mainText().geometry(), frame);
}

void TestStartButtonTexts::followTheDetailFont()
{
    StartButton button;
    button.grab();
    const QFont font = interfaceFont(Typeface::Light, 24);
    button.detailText().setFont(font);
    QCOMPARE(button.detailText().geometry(), expectedFrame(button, font, 150));
}

void TestStartButtonTexts::stayWithinTheRing_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<AttributedText>("main");
    const AttributedText plain{TextRun{QStringLiteral("Start"), interfaceFont(Typeface::Medium, 40),
                                       Qt::black, Qt::AlignHCenter}};
    const AttributedText large = sizeText(QStringLiteral("123.45"), QStringLiteral(" GB"));
    const AttributedText huge = sizeText(QStringLiteral("-8888.88"), QStringLiteral(" bytes"));
    for (const int size : {100, 160, 200, 300}) {
        QTest::addRow("word, %d", size) << size << plain;
        QTest::addRow("size, %d", size) << size << large;
        QTest::addRow("huge size, %d", size) << size << huge;
    }
}

void TestStartButtonTexts::stayWithinTheRing()
{
    QFETCH(int, size);
    QFETCH(AttributedText, main);
    StartButton button;
    button.resize(size, size);
    const QRectF ink = captionInk(button, main, QStringLiteral("Click to free"));
    QVERIFY(!ink.isEmpty());
    QVERIFY2(ink.width() <= size * kRing, qPrintable(QString::number(ink.width())));
    QVERIFY2(qAbs(ink.center().x() - size / 2.0) <= 3,
             qPrintable(QString::number(ink.center().x())));
    // Shrunk, not cut: the line reaches the whole width that it was given.
    if (main.size().width() > size)
        QVERIFY2(ink.width() > size * 0.7, qPrintable(QString::number(ink.width())));
}

void TestStartButtonTexts::keepTheirSizeWhereTheyFit()
{
    const AttributedText text = sizeText(QStringLiteral("12.3"), QStringLiteral(" MB"));
    StartButton button;
    button.resize(300, 300);
    const QRectF wide = captionInk(button, text, QString());
    QVERIFY2(wide.width() > text.size().width() - 8, qPrintable(QString::number(wide.width())));
}

VANTOR_GUI_TEST_MAIN(TestStartButtonTexts)
#include "tst_StartButtonTexts.moc"
