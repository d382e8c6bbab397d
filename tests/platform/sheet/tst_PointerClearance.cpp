#include "platform/sheet/PointerClearance.h"

#include "platform/sheet/Alert.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

class TestPointerClearance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void cleanup() { QCursor::setPos({}); }
    void comesUpBesideThePointer_data();
    void comesUpBesideThePointer();
    void leavesTheSheetAsItIs_data();
    void leavesTheSheetAsItIs();
    void changesNothingElse();
};

namespace {

/// Asks in the window and returns the sheet's panel, laid out.
QWidget &asked(SheetHost &host, const QString &text)
{
    presentAlert(host.window, {AlertStyle::Critical,
                               QStringLiteral("Deleting Files"),
                               text,
                               {{QStringLiteral("Cancel"), AlertButtonRole::Cancel},
                                {QStringLiteral("Delete Files"), AlertButtonRole::Destructive}}});
    QCoreApplication::processEvents();
    return *sheetPanel(host.window);
}

QString shortText()
{
    return QStringLiteral("Are you sure?");
}

QString endlessText()
{
    return QStringLiteral("A line of many.\n").repeated(80);
}

QRect placeIn(const SheetHost &host, const char *title)
{
    const QAbstractButton &button = *sheetButton(host.window, QLatin1String(title));
    return {button.mapTo(&host.window, QPoint()), button.size()};
}

QList<QPoint> placesOfTexts(const SheetHost &host)
{
    QList<QPoint> places;
    for (const QLabel *label : sheetPanel(host.window)->findChildren<QLabel *>())
        places.append(label->mapTo(&host.window, QPoint()));
    return places;
}

void endAndWait(SheetHost &host)
{
    endSheet(*sheetPanel(host.window));
    QTRY_VERIFY(!hasSheet(host.window));
}

} // namespace

void TestPointerClearance::comesUpBesideThePointer_data()
{
    QTest::addColumn<QString>("text");
    QTest::addRow("in a taller sheet") << shortText();
    QTest::addRow("in a shorter sheet") << endlessText(); // the window has no room for a taller one
}

void TestPointerClearance::comesUpBesideThePointer()
{
    QFETCH(const QString, text);
    SheetHost host;
    asked(host, text);
    const QRect usual = placeIn(host, "Delete Files");
    int checked = 0;
    for (int y = usual.top() - 14; y <= usual.bottom() + 14; y += 7) {
        for (int x = usual.left() - 14; x <= usual.right() + 14; x += 28) {
            endAndWait(host);
            QCursor::setPos(host.window.mapToGlobal(QPoint(x, y)));
            QWidget &panel = asked(host, text);
            QVERIFY(!placeIn(host, "Delete Files").adjusted(-8, -8, 8, 8).contains(x, y));
            QVERIFY(host.window.rect().contains(
                QRect(panel.mapTo(&host.window, QPoint()), panel.size())));
            ++checked;
        }
    }
    QVERIFY(checked > 40);
}

void TestPointerClearance::leavesTheSheetAsItIs_data()
{
    QTest::addColumn<QString>("title"); // over which the pointer is
    QTest::addRow("Cancel") << QStringLiteral("Cancel");
    QTest::addRow("nothing") << QString();
}

void TestPointerClearance::leavesTheSheetAsItIs()
{
    QFETCH(const QString, title);
    SheetHost host;
    QWidget &panel = asked(host, shortText());
    const QSize usual = panel.size();
    const QPoint pointer = title.isEmpty() ? QPoint(40, 40) : placeIn(host, "Cancel").center();
    endAndWait(host);
    QCursor::setPos(host.window.mapToGlobal(pointer));
    QCOMPARE(asked(host, shortText()).size(), usual);
}

/// The buttons keep their order, and the text stays beside the symbol.
void TestPointerClearance::changesNothingElse()
{
    SheetHost host;
    asked(host, shortText());
    const QRect usual = placeIn(host, "Delete Files");
    const QRect usualCancel = placeIn(host, "Cancel");
    const QList<QPoint> usualTexts = placesOfTexts(host);
    endAndWait(host);
    QCursor::setPos(host.window.mapToGlobal(usual.center()));
    asked(host, shortText());
    const QRect moved = placeIn(host, "Delete Files");
    QVERIFY(moved.top() > usual.center().y());
    QCOMPARE(moved.left(), usual.left());
    QCOMPARE(placeIn(host, "Cancel"), usualCancel.translated(0, moved.top() - usual.top()));
    QCOMPARE(placesOfTexts(host), usualTexts);
}

VANTOR_GUI_TEST_MAIN(TestPointerClearance)
#include "tst_PointerClearance.moc"
