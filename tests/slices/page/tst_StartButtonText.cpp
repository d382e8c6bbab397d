#include "slices/page/StartButtonText.h"

#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"

class TestStartButtonText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setsNumberAndUnitInTwoFonts();
    void shortensBytes_data();
    void shortensBytes();
    void asksToSelect();
};

void TestStartButtonText::setsNumberAndUnitInTwoFonts()
{
    const AttributedText text = startButtonSizeText(QStringLiteral("1.23 GB"));
    QCOMPARE(text.runs().size(), 2);
    const TextRun &number = text.runs()[0];
    const TextRun &unit = text.runs()[1];
    QCOMPARE(number.text, QStringLiteral("1.23"));
    QCOMPARE(number.font, interfaceFont(Typeface::Light, 40));
    QCOMPARE(number.color, QColor(148, 148, 148));
    QCOMPARE(number.alignment, Qt::Alignment(Qt::AlignHCenter));
    QCOMPARE(unit.text, QStringLiteral(" GB"));
    QCOMPARE(unit.font, interfaceFont(Typeface::Thin, 30));
    QCOMPARE(unit.color, QColor(173, 173, 173));
    QCOMPARE(unit.alignment, Qt::Alignment());
}

void TestStartButtonText::shortensBytes_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("text");
    QTest::addRow("bytes") << QStringLiteral("999 bytes") << QStringLiteral("999 B");
    QTest::addRow("zero") << QStringLiteral("Zero KB") << QStringLiteral("Zero KB");
    QTest::addRow("MB") << QStringLiteral("12.3 MB") << QStringLiteral("12.3 MB");
}

void TestStartButtonText::shortensBytes()
{
    QFETCH(QString, size);
    QTEST(startButtonSizeText(size).string(), "text");
}

void TestStartButtonText::asksToSelect()
{
    const AttributedText text = selectSlicesText();
    QCOMPARE(text.string(), QStringLiteral("Select Slices"));
    QCOMPARE(text.runs()[0].font, interfaceFont(Typeface::Light, 20));
    QCOMPARE(text.runs()[0].color, QColor(148, 148, 148));
}

VANTOR_GUI_TEST_MAIN(TestStartButtonText)
#include "tst_StartButtonText.moc"
