#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/widgets/Ink.h"
#include "widgets/AttributedText.h"

#include <QPainter>

namespace {

constexpr QSize kPaper(300, 100);

QImage blankPaper()
{
    const double scale = qApp->devicePixelRatio();
    QImage paper(kPaper * scale, QImage::Format_RGB32);
    paper.setDevicePixelRatio(scale);
    paper.fill(Qt::white);
    return paper;
}

QRectF inkOf(const AttributedText &text, const QRectF &rectangle)
{
    QImage paper = blankPaper();
    QPainter painter(&paper);
    text.draw(painter, rectangle);
    painter.end();
    return inkBetween(paper, blankPaper());
}

TextRun run(const QString &text, int size, Qt::Alignment alignment = {},
            Typeface face = Typeface::Medium)
{
    return {text, interfaceFont(face, size), Qt::black, alignment};
}

} // namespace

class TestAttributedText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsItsRuns();
    void takesItsStyleFromTheFirstCharacter();
    void takesTheRoomOfAllRuns();
    void standsOnOneBaseline();
    void standsWhereTheFirstRunAsks_data();
    void standsWhereTheFirstRunAsks();
    void standsInTheMiddleOfTheHeight();
    void shrinksRatherThanBeingCut_data();
    void shrinksRatherThanBeingCut();
    void drawsEachRunInItsColor();
    void drawsNothingWithoutCharacters();
    void leavesThePainterAsItWas();
};

void TestAttributedText::joinsItsRuns()
{
    AttributedText text{run(QStringLiteral("1.23"), 40), run(QStringLiteral(" GB"), 30)};
    QCOMPARE(text.string(), QStringLiteral("1.23 GB"));
    QVERIFY(text == AttributedText(text));
    const AttributedText before = text;
    text.append(run(QStringLiteral("!"), 30));
    QCOMPARE(text.string(), QStringLiteral("1.23 GB!"));
    QVERIFY(!(text == before));
}

void TestAttributedText::takesItsStyleFromTheFirstCharacter()
{
    const AttributedText text{run(QString(), 11), run(QStringLiteral("a"), 22),
                              run(QStringLiteral("b"), 33)};
    QVERIFY(text.firstRun());
    QCOMPARE(text.firstRun()->font.pixelSize(), 22);
    const AttributedText empty{run(QString(), 11)};
    QVERIFY(!empty.firstRun());
    QVERIFY(!AttributedText().firstRun());
}

void TestAttributedText::takesTheRoomOfAllRuns()
{
    const AttributedText number{run(QStringLiteral("1.23"), 40)};
    const AttributedText unit{run(QStringLiteral(" GB"), 30)};
    const AttributedText both{number.runs().first(), unit.runs().first()};
    QVERIFY(qAbs(both.size().width() - number.size().width() - unit.size().width()) < 1);
    QCOMPARE(both.size().height(), number.size().height());
    QCOMPARE(AttributedText().size(), QSizeF(0, 0));
}

void TestAttributedText::standsOnOneBaseline()
{
    const QRectF rectangle(0, 0, 300, 100);
    const QRectF large = inkOf({run(QStringLiteral("H"), 40)}, rectangle);
    const QRectF both =
        inkOf({run(QStringLiteral("H"), 40), run(QStringLiteral("H"), 20)}, rectangle);
    QCOMPARE(both.bottom(), large.bottom());
    QCOMPARE(both.top(), large.top());
    QVERIFY(both.width() > large.width());
    // The small letter by itself stands on the baseline too, not in the middle of the large one.
    const QRectF small =
        inkOf({TextRun{QStringLiteral("H"), interfaceFont(Typeface::Medium, 40), Qt::white},
               run(QStringLiteral("H"), 20)},
              rectangle);
    QCOMPARE(small.bottom(), large.bottom());
    QVERIFY(small.height() < large.height() * 0.6);
}

void TestAttributedText::standsWhereTheFirstRunAsks_data()
{
    QTest::addColumn<Qt::Alignment>("alignment");
    QTest::addColumn<double>("distance"); // of the ink's middle from the rectangle's middle
    QTest::newRow("no alignment") << Qt::Alignment() << -1.0;
    QTest::newRow("left") << Qt::Alignment(Qt::AlignLeft) << -1.0;
    QTest::newRow("centre") << Qt::Alignment(Qt::AlignHCenter) << 0.0;
    QTest::newRow("right") << Qt::Alignment(Qt::AlignRight) << 1.0;
}

void TestAttributedText::standsWhereTheFirstRunAsks()
{
    QFETCH(Qt::Alignment, alignment);
    QFETCH(double, distance);
    const AttributedText text{run(QStringLiteral("HH"), 30, alignment),
                              run(QStringLiteral("HH"), 20, Qt::AlignRight)};
    const QRectF rectangle(20, 10, 240, 80);
    const double room = rectangle.width() - text.size().width();
    const QRectF ink = inkOf(text, rectangle);
    const double wanted = rectangle.center().x() + distance * room / 2;
    QVERIFY2(qAbs(ink.center().x() - wanted) < 2, qPrintable(QString::number(ink.center().x())));
}

void TestAttributedText::standsInTheMiddleOfTheHeight()
{
    const AttributedText text{run(QStringLiteral("H"), 40)};
    const QRectF high = inkOf(text, QRectF(0, 0, 300, 60));
    const QRectF low = inkOf(text, QRectF(0, 40, 300, 60));
    QCOMPARE(low.top() - high.top(), 40.0);
    QVERIFY(high.top() > 5 && high.bottom() < 55);
}

void TestAttributedText::shrinksRatherThanBeingCut_data()
{
    QTest::addColumn<double>("width");
    for (const double width : {200.0, 120.0, 60.0, 20.0})
        QTest::addRow("%g", width) << width;
}

void TestAttributedText::shrinksRatherThanBeingCut()
{
    QFETCH(double, width);
    const AttributedText text{run(QStringLiteral("H12345.67"), 40, Qt::AlignHCenter),
                              run(QStringLiteral(" GH"), 30)};
    QVERIFY(text.size().width() > 200);
    const QRectF rectangle(50, 10, width, 80);
    const QRectF ink = inkOf(text, rectangle);
    QVERIFY(rectangle.adjusted(-0.5, 0, 0.5, 0).contains(ink));
    // Both outermost letters are drawn: the line fills its room except for the side bearings.
    QVERIFY2(ink.width() > width * 0.9 - 1, qPrintable(QString::number(ink.width())));
    QVERIFY(qAbs(ink.center().y() - rectangle.center().y()) < 6);
}

void TestAttributedText::drawsEachRunInItsColor()
{
    QImage paper = blankPaper();
    QPainter painter(&paper);
    AttributedText{TextRun{QStringLiteral("█"), interfaceFont(Typeface::Medium, 40), Qt::red},
                   TextRun{QStringLiteral("█"), interfaceFont(Typeface::Medium, 40), Qt::blue}}
        .draw(painter, QRectF(0, 0, 300, 100));
    painter.end();
    int red = 0;
    int blue = 0;
    int firstBlue = paper.width();
    int lastRed = 0;
    for (int x = 0; x < paper.width(); ++x) {
        const QRgb dot = paper.pixel(x, paper.height() / 2);
        if (dot == QColor(Qt::red).rgb()) {
            ++red;
            lastRed = x;
        } else if (dot == QColor(Qt::blue).rgb()) {
            ++blue;
            firstBlue = std::min(firstBlue, x);
        }
    }
    QVERIFY(red > 5 && blue > 5);
    QVERIFY(lastRed < firstBlue);
}

void TestAttributedText::drawsNothingWithoutCharacters()
{
    QVERIFY(inkOf({}, QRectF(0, 0, 300, 100)).isEmpty());
    QVERIFY(inkOf({run(QString(), 40)}, QRectF(0, 0, 300, 100)).isEmpty());
    QVERIFY(inkOf({run(QStringLiteral("H"), 40)}, QRectF()).isEmpty());
}

void TestAttributedText::leavesThePainterAsItWas()
{
    QImage paper = blankPaper();
    QPainter painter(&paper);
    painter.setPen(Qt::green);
    const QTransform transform = painter.transform();
    AttributedText{run(QStringLiteral("wide enough to shrink"), 40)}.draw(painter,
                                                                          QRectF(0, 0, 50, 50));
    QCOMPARE(painter.transform(), transform);
    QCOMPARE(painter.pen().color(), QColor(Qt::green));
}

VANTOR_GUI_TEST_MAIN(TestAttributedText)
#include "tst_AttributedText.moc"
