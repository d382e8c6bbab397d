#include "platform/look/Fonts.h"
#include "prefs/popover/TextBlock.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

class TestTextBlock final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void measuresAShortTextByItsOneLine();
    void wrapsBetweenWords();
    void breaksAWordThatIsWiderThanTheLine();
    void startsALineAtEachLineEnd();
    void isEmptyWithoutText();
    void measuresEveryFontOfTheText();
    void paintsWhatItMeasured();
    void paintsRightToLeftTextAtTheRight();
    void answersTheWidthGivenAndTheHeightUsed();

private:
    TextBlock block(const QString &string, double width) const;

    QFont m_font;
    double m_lineHeight = 0;
};

namespace {

/// Where there is ink.
QRect inkOf(const TextBlock &block, QSize size)
{
    QImage image(size, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    block.paint(painter, {0, 0});
    painter.end();
    QRegion ink;
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            if (qGray(image.pixel(x, y)) < 200)
                ink += QRect(x, y, 1, 1);
    return ink.boundingRect();
}

} // namespace

void TestTextBlock::initTestCase()
{
    m_font = interfaceFont(Typeface::Light, 13);
    m_lineHeight = block(QStringLiteral("A"), 200).size().height();
    QVERIFY(std::abs(m_lineHeight - QFontMetricsF(m_font).height()) < 1);
}

TextBlock TestTextBlock::block(const QString &string, double width) const
{
    return {{{string, m_font, Qt::black}}, width};
}

void TestTextBlock::measuresAShortTextByItsOneLine()
{
    const QString text = QStringLiteral("Empty the Trash");
    const QSizeF size = block(text, 200).size();
    QVERIFY(std::abs(size.width() - QFontMetricsF(m_font).horizontalAdvance(text)) < 1);
    QCOMPARE(size.height(), m_lineHeight);
}

void TestTextBlock::wrapsBetweenWords()
{
    const QSizeF size =
        block(QStringLiteral("Delete all items in the downloads folder."), 120).size();
    QVERIFY(size.width() <= 120);
    QVERIFY(size.width() > 60);
    QCOMPARE(size.height(), 3 * m_lineHeight);
}

void TestTextBlock::breaksAWordThatIsWiderThanTheLine()
{
    const QSizeF size = block(QString(60, QLatin1Char('m')), 100).size();
    QVERIFY(size.width() <= 100);
    QVERIFY(size.height() > 2 * m_lineHeight);
}

void TestTextBlock::startsALineAtEachLineEnd()
{
    QCOMPARE(block(QStringLiteral("one\ntwo\nthree"), 200).size().height(), 3 * m_lineHeight);
}

void TestTextBlock::isEmptyWithoutText()
{
    QCOMPARE(block(QString(), 200).size(), QSizeF(0, 0));
}

void TestTextBlock::measuresEveryFontOfTheText()
{
    const QColor grey(148, 148, 148);
    const AttributedText text{{QStringLiteral("1.23 "), m_font, grey},
                              {QStringLiteral("GB"), interfaceFont(Typeface::Thin, 40), grey}};
    const QSizeF size = TextBlock(text, 300).size();
    QVERIFY(size.height() > 40);
    QVERIFY(size.width() > block(text.string(), 300).size().width());
}

void TestTextBlock::paintsWhatItMeasured()
{
    const TextBlock text = block(QStringLiteral("Similar to Cache, some apps make log files"), 140);
    const QRect ink = inkOf(text, {300, 100});
    QVERIFY(ink.isValid());
    QVERIFY(QRectF(QPointF(), text.size()).adjusted(-1, -1, 1, 1).contains(ink));
    QVERIFY(ink.height() > m_lineHeight); // both lines
}

void TestTextBlock::paintsRightToLeftTextAtTheRight()
{
    const QString text = QString::fromUtf8("\u05d0\u05d1\u05d2\u05d3\u05d4\u05d5 \u05d0\u05d1\n"
                                           "\u05d0\u05d1");
    const TextBlock lines = block(text, 200);
    QImage second(200, 60, QImage::Format_Grayscale8);
    second.fill(Qt::white);
    QPainter painter(&second);
    lines.paint(painter, {0, -m_lineHeight});
    painter.end();
    const int half = static_cast<int>(lines.size().width() / 2);
    bool hasInkAtLeft = false;
    for (int y = 0; y < 14; ++y)
        for (int x = 0; x < half - 2; ++x)
            hasInkAtLeft = hasInkAtLeft || qGray(second.pixel(x, y)) < 200;
    QVERIFY(!hasInkAtLeft);
}

void TestTextBlock::answersTheWidthGivenAndTheHeightUsed()
{
    const QSizeF one = sizeWithWidth(QStringLiteral("a"), 200, m_font);
    QCOMPARE(one, QSizeF(200, m_lineHeight));
    const QSizeF more =
        sizeWithWidth(QStringLiteral("Delete all items in the downloads folder."), 120, m_font);
    QCOMPARE(more, QSizeF(120, 3 * m_lineHeight));
    QCOMPARE(sizeWithWidth(QString(), 50, m_font), QSizeF(50, 0));
}

VANTOR_GUI_TEST_MAIN(TestTextBlock)
#include "tst_TextBlock.moc"
