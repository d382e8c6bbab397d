#include "platform/sheet/Alert.h"

#include "platform/look/Fonts.h"
#include "platform/look/PanelButton.h"
#include "platform/look/WrappedLabel.h"
#include "platform/sheet/AlertPanel.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>

class TestAlert final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void hasOneButtonUnlessTold();
    void tellsTheButtonThatWasClicked_data();
    void tellsTheButtonThatWasClicked();
    void pressesTheDefaultOnEnterWhereverTheFocusIs();
    void pressesTheFocusedButtonOnSpace();
    void pressesCancelOnEscape();
    void ignoresEscapeWhereNothingCancels();
    void closesTheOnlyButtonOnEscape();
    void neverDestroysOnEnterOrEscape();
    void standsFirstAtTheRight();
    void showsItsStyle();
    void breaksLongWords();
    void keepsLineBreaks();
    void scrollsWhatDoesNotFit();
    void readsItselfToAssistiveTools();
    void takesTextsForWhatTheyAre();
    void waitsItsTurn();
    void diesWithItsWindow();
};

namespace {

AlertPanel *alertIn(const SheetHost &host)
{
    return qobject_cast<AlertPanel *>(sheetPanel(host.window));
}

PanelButton *button(const SheetHost &host, const char *title)
{
    for (PanelButton *made : alertIn(host)->findChildren<PanelButton *>()) {
        if (made->text() == QLatin1String(title))
            return made;
    }
    qFatal("the alert has no button %s", title);
}

void press(SheetHost &host, Qt::Key key)
{
    QTest::keyClick(host.window.windowHandle(), key);
}

Alert deletingFiles()
{
    return {AlertStyle::Critical,
            QStringLiteral("Deleting Files"),
            QStringLiteral("Are you sure?"),
            {{QStringLiteral("Cancel"), AlertButtonRole::Cancel},
             {QStringLiteral("Delete Files"), AlertButtonRole::Destructive}}};
}

QString manyPaths()
{
    QString text;
    for (int i = 0; i < 60; ++i)
        text += QStringLiteral("/home/anna/%1/file\n").arg(QString(80, QLatin1Char('x')));
    return text;
}

/// Presents the alert and returns the pressed button; -1 until one is pressed.
int &presented(SheetHost &host, const Alert &alert)
{
    static int pressed;
    pressed = -1;
    presentAlert(host.window, alert, [](int button) { pressed = button; });
    return pressed;
}

} // namespace

void TestAlert::hasOneButtonUnlessTold()
{
    SheetHost host;
    const int &pressed =
        presented(host, {AlertStyle::Informational, QStringLiteral("Done"), {}, {}});
    QCOMPARE(alertIn(host)->findChildren<PanelButton *>().size(), 1);
    QVERIFY(button(host, "OK")->isDefault());
    press(host, Qt::Key_Return);
    QTRY_COMPARE(pressed, 0);
    QVERIFY(!hasSheet(host.window));
}

void TestAlert::tellsTheButtonThatWasClicked_data()
{
    QTest::addColumn<QByteArray>("title");
    QTest::addColumn<int>("index");
    QTest::addRow("first") << QByteArray("Cancel") << 0;
    QTest::addRow("second") << QByteArray("Delete Files") << 1;
}

void TestAlert::tellsTheButtonThatWasClicked()
{
    QFETCH(QByteArray, title);
    SheetHost host;
    const int &pressed = presented(host, deletingFiles());
    QCoreApplication::processEvents(); // for the layout
    QVERIFY(letSheetBeRead(host.window));
    PanelButton *const target = button(host, title);
    const QPoint place = target->mapTo(&host.window, target->rect().center());
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    QTRY_VERIFY(pressed >= 0);
    QTEST(pressed, "index");
}

void TestAlert::pressesTheDefaultOnEnterWhereverTheFocusIs()
{
    SheetHost host;
    const int &pressed = presented(host, deletingFiles());
    QCOMPARE(QApplication::focusWidget(), button(host, "Cancel"));
    button(host, "Delete Files")->setFocus();
    press(host, Qt::Key_Enter);
    QTRY_COMPARE(pressed, 0);
}

void TestAlert::pressesTheFocusedButtonOnSpace()
{
    SheetHost host;
    const int &pressed = presented(host, deletingFiles());
    press(host, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), button(host, "Delete Files"));
    QVERIFY(letSheetBeRead(host.window));
    press(host, Qt::Key_Space);
    QTRY_COMPARE(pressed, 1);
}

void TestAlert::pressesCancelOnEscape()
{
    SheetHost host;
    Alert alert = deletingFiles();
    alert.buttons.move(0, 1);
    const int &pressed = presented(host, alert);
    press(host, Qt::Key_Escape);
    QTRY_COMPARE(pressed, 1);
}

void TestAlert::ignoresEscapeWhereNothingCancels()
{
    SheetHost host;
    presented(host, {AlertStyle::Warning,
                     QStringLiteral("Which?"),
                     {},
                     {{QStringLiteral("This")}, {QStringLiteral("That")}}});
    press(host, Qt::Key_Escape);
    QCoreApplication::processEvents();
    QVERIFY(hasSheet(host.window));
}

void TestAlert::closesTheOnlyButtonOnEscape()
{
    SheetHost host;
    const int &pressed = presented(
        host, {AlertStyle::Warning, QStringLiteral("So"), {}, {{QStringLiteral("I see")}}});
    press(host, Qt::Key_Escape);
    QTRY_COMPARE(pressed, 0);
}

void TestAlert::neverDestroysOnEnterOrEscape()
{
    SheetHost host;
    Alert alert = deletingFiles();
    alert.buttons.move(0, 1);
    presented(host, alert);
    QVERIFY(!button(host, "Delete Files")->isDefault());
    QVERIFY(button(host, "Cancel")->isDefault());

    SheetHost other;
    alert.buttons = {{QStringLiteral("Delete"), AlertButtonRole::Destructive}};
    const int &pressed = presented(other, alert);
    QVERIFY(letSheetBeRead(other.window));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        press(other, key);
        QCoreApplication::processEvents();
        QCOMPARE(pressed, -1);
    }
}

void TestAlert::standsFirstAtTheRight()
{
    SheetHost host;
    presented(host, deletingFiles());
    QCoreApplication::processEvents();
    QVERIFY(button(host, "Cancel")->x() > button(host, "Delete Files")->geometry().right());
}

void TestAlert::showsItsStyle()
{
    QSet<QRgb> symbols;
    QSet<QRgb> faces;
    for (const auto style :
         {AlertStyle::Informational, AlertStyle::Warning, AlertStyle::Critical}) {
        SheetHost host;
        presented(host, {style, QStringLiteral("A message"), {}, deletingFiles().buttons});
        QCoreApplication::processEvents();
        const QImage picture = alertIn(host)->grab().toImage();
        symbols.insert(picture.pixel(28 + 28, 28 + 46)); // low in the symbol, below its mark
        const QRect face = button(host, "Cancel")->geometry().adjusted(8, 8, -8, -8);
        faces.insert(picture.pixel(face.topLeft()));
    }
    QCOMPARE(symbols.size(), 3);
    QCOMPARE(faces.size(), 1);
    QCOMPARE(QColor(*faces.begin()), QApplication::palette().color(QPalette::Highlight));
}

void TestAlert::breaksLongWords()
{
    WrappedLabel label(QString(400, QLatin1Char('x')), interfaceFont(Typeface::Regular, 13));
    const int lines = label.heightForWidth(300) / label.heightForWidth(1'000'000);
    QVERIFY2(lines >= 8, qPrintable(QString::number(lines)));
    label.resize(300, label.heightForWidth(300));
    QImage picture(label.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    label.render(&picture, {}, {}, QWidget::DrawChildren);
    int darkRows = 0;
    for (int y = 0; y < picture.height(); ++y) {
        bool isDark = false;
        for (int x = 0; x < picture.width(); ++x)
            isDark = isDark || qGray(picture.pixel(x, y)) < 100;
        darkRows += isDark;
    }
    QVERIFY2(darkRows > lines * 5, qPrintable(QString::number(darkRows))); // text in every line
}

void TestAlert::keepsLineBreaks()
{
    const QFont font = interfaceFont(Typeface::Regular, 13);
    const int one = WrappedLabel(QStringLiteral("one"), font).heightForWidth(300);
    const int three = WrappedLabel(QStringLiteral("one\ntwo\nthree"), font).heightForWidth(300);
    QCOMPARE(three / one, 3);
}

void TestAlert::scrollsWhatDoesNotFit()
{
    SheetHost host;
    presented(host, {AlertStyle::Critical, QStringLiteral("Too much"), manyPaths(), {}});
    QCoreApplication::processEvents();
    QVERIFY(host.window.rect().contains(
        QRect(alertIn(host)->mapTo(&host.window, QPoint()), alertIn(host)->size())));
    auto *const area = alertIn(host)->findChild<QScrollArea *>();
    QVERIFY(area->verticalScrollBar()->maximum() > 0);
    QCOMPARE(area->verticalScrollBar()->contextMenuPolicy(), Qt::PreventContextMenu);
    QCOMPARE(area->horizontalScrollBar()->maximum(), 0);
    press(host, Qt::Key_Tab); // from the button to the text
    QCOMPARE(QApplication::focusWidget(), area);
    press(host, Qt::Key_PageDown);
    QVERIFY(area->verticalScrollBar()->value() > 0);

    SheetHost other;
    presented(other, deletingFiles());
    QCoreApplication::processEvents();
    auto *const still = alertIn(other)->findChild<QScrollArea *>();
    QCOMPARE(still->verticalScrollBar()->maximum(), 0);
    QCOMPARE(still->focusPolicy(), Qt::NoFocus);
}

void TestAlert::readsItselfToAssistiveTools()
{
    SheetHost host;
    presented(host, deletingFiles());
    QAccessibleInterface *const dialog =
        QAccessible::queryAccessibleInterface(alertIn(host)->parentWidget());
    QCOMPARE(dialog->role(), QAccessible::Dialog);
    QCOMPARE(dialog->text(QAccessible::Name), QStringLiteral("Deleting Files"));
    QCOMPARE(dialog->text(QAccessible::Description), QStringLiteral("Are you sure?"));
    QStringList texts;
    for (WrappedLabel *label : alertIn(host)->findChildren<WrappedLabel *>()) {
        QAccessibleInterface *const text = QAccessible::queryAccessibleInterface(label);
        QCOMPARE(text->role(), QAccessible::StaticText);
        texts.append(text->text(QAccessible::Name));
    }
    QCOMPARE(texts,
             (QStringList{QStringLiteral("Deleting Files"), QStringLiteral("Are you sure?")}));
}

/// A file may have any name.
void TestAlert::takesTextsForWhatTheyAre()
{
    SheetHost host;
    const QString text = QStringLiteral("<b>bold</b> & <img src=x>");
    presented(host, {AlertStyle::Warning, text, text, {}});
    for (const WrappedLabel *label : alertIn(host)->findChildren<WrappedLabel *>()) {
        QCOMPARE(label->text(), text);
        QCOMPARE(label->textFormat(), Qt::PlainText);
    }
}

void TestAlert::waitsItsTurn()
{
    SheetHost host;
    QStringList order;
    presentAlert(host.window, {AlertStyle::Warning, QStringLiteral("one"), {}, {}},
                 [&](int) { order.append(QStringLiteral("one")); });
    presentAlert(*host.behind, {AlertStyle::Warning, QStringLiteral("two"), {}, {}},
                 [&](int) { order.append(QStringLiteral("two")); });
    press(host, Qt::Key_Return);
    QTRY_COMPARE(order.size(), 1);
    QTRY_VERIFY(hasSheet(host.window));
    press(host, Qt::Key_Return);
    QTRY_COMPARE(order, (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
}

void TestAlert::diesWithItsWindow()
{
    auto host = std::make_unique<SheetHost>();
    presented(*host, deletingFiles());
    const QPointer<AlertPanel> panel = alertIn(*host);
    QVERIFY(panel);
    host.reset();
    QTRY_VERIFY(!panel);
}

VANTOR_GUI_TEST_MAIN(TestAlert)
#include "tst_Alert.moc"
