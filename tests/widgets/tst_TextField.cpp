#include "platform/look/Fonts.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/widgets/Ink.h"
#include "widgets/TextField.h"

#include <QAccessible>
#include <QSignalSpy>

namespace {

AttributedText sample()
{
    return {TextRun{QStringLiteral("1.23"), interfaceFont(Typeface::Light, 27), Qt::red,
                    Qt::AlignHCenter},
            TextRun{QStringLiteral(" GB"), interfaceFont(Typeface::Thin, 20), Qt::blue}};
}

QImage grabbed(TextField &field)
{
    return field.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

class PaintCounter final : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

class TestTextField final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsPlainTextInItsOwnStyle();
    void showsAttributedText();
    void goesBackToItsOwnStyleWithPlainText();
    void isSetByAnInterfaceDescription();
    void tellsOfEveryChange();
    void asksForTheRoomOfItsText();
    void looksTheSameWhenDisabled();
    void paintsAnewWithItsText();
    void readsItsTextOut();
};

void TestTextField::showsPlainTextInItsOwnStyle()
{
    TextField field;
    field.setFont(interfaceFont(Typeface::Light, 16));
    field.setTextColor(Qt::red);
    field.setAlignment(Qt::AlignCenter);
    field.setText(QStringLiteral("Click <b>to</b> free"));
    const AttributedText shown = field.attributedText();
    QCOMPARE(shown.runs().size(), 1);
    QCOMPARE(shown.string(), QStringLiteral("Click <b>to</b> free"));
    QCOMPARE(shown.firstRun()->font.pixelSize(), 16);
    QCOMPARE(shown.firstRun()->color, QColor(Qt::red));
    QVERIFY(shown.firstRun()->alignment & Qt::AlignHCenter);
}

void TestTextField::showsAttributedText()
{
    TextField field;
    field.setAttributedText(sample());
    QVERIFY(field.attributedText() == sample());
    QCOMPARE(field.text(), QStringLiteral("1.23 GB"));
}

void TestTextField::goesBackToItsOwnStyleWithPlainText()
{
    TextField field;
    field.setFont(interfaceFont(Typeface::UltraLight, 40));
    field.setAttributedText(sample());
    field.setText(QStringLiteral("Clean"));
    const AttributedText shown = field.attributedText();
    QCOMPARE(shown.string(), QStringLiteral("Clean"));
    QCOMPARE(shown.firstRun()->font.pixelSize(), 40);
    field.setText(QString());
    QVERIFY(!field.attributedText().firstRun());
}

void TestTextField::isSetByAnInterfaceDescription()
{
    TextField field;
    field.setAttributedText(sample());
    QVERIFY(field.setProperty("text", QStringLiteral("Free")));
    QCOMPARE(field.attributedText().string(), QStringLiteral("Free"));
    QCOMPARE(field.property("text").toString(), QStringLiteral("Free"));
}

void TestTextField::tellsOfEveryChange()
{
    TextField field;
    const QSignalSpy changes(&field, &TextField::attributedTextChanged);
    field.setText(QStringLiteral("a"));
    field.setAttributedText(sample());
    field.setAttributedText(sample());
    QCOMPARE(changes.count(), 3);
}

void TestTextField::asksForTheRoomOfItsText()
{
    TextField field;
    field.setFont(interfaceFont(Typeface::Light, 16));
    QCOMPARE(field.sizeHint().height(), 20); // one line, though it is empty
    field.setAttributedText(sample());
    const QSizeF size = sample().size();
    QVERIFY(field.sizeHint().width() >= size.width());
    QVERIFY(field.sizeHint().width() < size.width() + 1);
    QVERIFY(field.sizeHint().height() >= size.height());
    QCOMPARE(field.minimumSizeHint().width(), field.sizeHint().width() / 2);
    field.setContentsMargins(5, 0, 7, 0);
    QVERIFY(field.sizeHint().width() >= size.width() + 12);
}

void TestTextField::looksTheSameWhenDisabled()
{
    TextField field;
    field.resize(100, 40);
    field.setTextColor(Qt::black);
    field.setText(QStringLiteral("Start"));
    const QImage enabled = grabbed(field);
    QVERIFY(!inkBetween(enabled,
                        [&field] {
                            field.setText(QString());
                            const QImage blank = grabbed(field);
                            field.setText(QStringLiteral("Start"));
                            return blank;
                        }())
                 .isEmpty());
    field.setEnabled(false);
    QCOMPARE(field.textColor(), QColor(Qt::black));
    QCOMPARE(inkBetween(enabled, grabbed(field)), QRectF(0, 0, 0, 0));

    TextField plain; // in the colours of its window
    QPalette colors;
    colors.setColor(QPalette::Active, QPalette::WindowText, Qt::black);
    colors.setColor(QPalette::Disabled, QPalette::WindowText, Qt::lightGray);
    plain.setPalette(colors);
    plain.setEnabled(false);
    QCOMPARE(plain.textColor(), QColor(Qt::black));
}

void TestTextField::paintsAnewWithItsText()
{
    TextField field;
    field.resize(200, 40);
    field.setAttributedText(sample());
    field.show();
    QVERIFY(QTest::qWaitForWindowExposed(&field));
    // The same letters in other colours make another picture.
    PaintCounter paints;
    field.installEventFilter(&paints);
    field.setAttributedText({TextRun{QStringLiteral("1.23 GB"), field.font(), Qt::darkGray}});
    QTRY_COMPARE(paints.count, 1);
}

void TestTextField::readsItsTextOut()
{
    TextField field;
    field.setAttributedText(sample());
    QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&field);
    QVERIFY(reader);
    QCOMPARE(reader->role(), QAccessible::StaticText);
    QCOMPARE(reader->text(QAccessible::Name), QStringLiteral("1.23 GB"));
}

VANTOR_GUI_TEST_MAIN(TestTextField)
#include "tst_TextField.moc"
