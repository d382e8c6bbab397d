#include "platform/sheet/SheetSlide.h"

#include "platform/sheet/SheetOverlay.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSignalSpy>
#include <QVariantAnimation>

/// How a sheet moves and what is painted during the movement.
class TestSheetSlide final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slidesInAndOut();
    void endsWithThePictureOfTheLivingSheet();
    void dimsTheWindowAndNotItsSurroundings();
    void hasARoundedLowerEdge();
    void swallowsTheMouseWhileItMoves();
    void takesKeysWhileItComesIn();
    void turnsBackFromWhereItIs();
    void stopsMovingWhenTheWindowIsResized();
    void standsStillWhereAnimationsAreOff();
};

namespace {

SheetSlide *slideOf(const SheetHost &host)
{
    return host.window.findChild<SheetSlide *>();
}

QColor colorAt(SheetHost &host, QPoint place)
{
    return host.window.grab().toImage().pixelColor(place);
}

/// The slide's movement, paused at its middle, so that even a slow machine cannot miss the middle.
QVariantAnimation *heldHalfway(const SheetHost &host)
{
    auto *const movement = slideOf(host)->findChild<QVariantAnimation *>();
    if (!QTest::qWaitFor([movement] { return movement->state() == QVariantAnimation::Running; }))
        qFatal("the sheet does not begin to move");
    movement->pause();
    movement->setCurrentTime(movement->duration() / 2);
    return movement;
}

void waitForRest(const SheetHost &host)
{
    QTRY_VERIFY(!slideOf(host));
}

constexpr QPoint kPageCorner(5, 480); // of the window, far from any sheet

} // namespace

void TestSheetSlide::slidesInAndOut()
{
    SheetHost host;
    SheetPanel sheet;
    bool isGone = false;
    presentSheet(host.window, sheet.panel, [&isGone](int) { isGone = true; });
    QPointer<SheetSlide> in = slideOf(host);
    QVERIFY(in);
    QCOMPARE(in->shown(), 0.0);
    QSignalSpy arrived(in, &SheetSlide::finished);
    QVERIFY(arrived.wait());
    QCOMPARE(in->shown(), 1.0);
    QTRY_VERIFY(!in);

    endSheet(sheet.panel);
    QPointer<SheetSlide> out = slideOf(host);
    QVERIFY(out);
    QCOMPARE(out->shown(), 1.0);
    QTRY_VERIFY(isGone);
    QVERIFY(!hasSheet(host.window));
}

void TestSheetSlide::endsWithThePictureOfTheLivingSheet()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    SheetSlide *const slide = slideOf(host);
    QImage last;
    connect(slide, &SheetSlide::finished, this, [&] { last = host.window.grab().toImage(); });
    sheet.panel.setFocusPolicy(Qt::StrongFocus);
    sheet.panel.setFocus(); // no blinking cursor
    waitForRest(host);
    const QImage living = host.window.grab().toImage();
    QVERIFY(!last.isNull());
    QCOMPARE(living, last);
}

void TestSheetSlide::dimsTheWindowAndNotItsSurroundings()
{
    SheetHost host;
    const QColor plain = colorAt(host, kPageCorner);
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    waitForRest(host);
    const QColor dimmed = colorAt(host, kPageCorner);
    QVERIFY2(dimmed.lightness() < plain.lightness() * 0.85, qPrintable(dimmed.name()));
    QVERIFY(dimmed.lightness() > plain.lightness() * 0.6);

    QWidget shaped;
    shaped.setAttribute(Qt::WA_TranslucentBackground);
    shaped.resize(400, 400);
    shaped.show();
    SheetPanel other;
    presentSheet(shaped, other.panel);
    QTRY_VERIFY(!shaped.findChild<SheetSlide *>());
    QPixmap picture(shaped.size());
    picture.fill(Qt::transparent);
    shaped.render(&picture, {}, {}, QWidget::DrawChildren);
    QCOMPARE(picture.toImage().pixelColor(5, 390).alpha(), 0);
}

void TestSheetSlide::hasARoundedLowerEdge()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    waitForRest(host);
    const SheetFrame &frame = host.window.findChild<SheetOverlay *>()->frame();
    const QRect body = frame.geometry().adjusted(SheetFrame::kShadow, 0, -SheetFrame::kShadow,
                                                 -SheetFrame::kShadow);
    const QColor face = sheet.panel.palette().color(QPalette::Window);
    QCOMPARE(colorAt(host, {body.left() + 5, body.center().y()}), face);
    QCOMPARE(colorAt(host, {body.center().x(), body.bottom() - 3}), face);
    QVERIFY(colorAt(host, body.bottomLeft() + QPoint(1, -1)).lightness() < face.lightness() * 0.9);
    QVERIFY(colorAt(host, body.bottomRight() + QPoint(-1, -1)).lightness() <
            face.lightness() * 0.9);
    // and a shadow under it, darker than the dimmed window
    QVERIFY(colorAt(host, {body.center().x(), body.bottom() + 3}).lightness() <
            colorAt(host, kPageCorner).lightness());
}

void TestSheetSlide::swallowsTheMouseWhileItMoves()
{
    SheetHost host;
    SheetPanel sheet;
    QSignalSpy plain(sheet.plain, &QPushButton::clicked);
    presentSheet(host.window, sheet.panel);
    QVariantAnimation *const movement = heldHalfway(host);
    const QPoint place = sheet.plain->mapTo(&host.window, sheet.plain->rect().center());
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(plain.isEmpty());
    movement->resume();
    waitForRest(host);
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(plain.size(), 1);
}

void TestSheetSlide::takesKeysWhileItComesIn()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    heldHalfway(host);
    for (const char key : {'a', 'n', 'n', 'a'})
        QTest::keyClick(host.window.windowHandle(), key);
    QCOMPARE(sheet.first->text(), QStringLiteral("anna"));
}

void TestSheetSlide::turnsBackFromWhereItIs()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    heldHalfway(host);
    const double reached = slideOf(host)->shown();
    QVERIFY(reached > 0 && reached < 1);
    endSheet(sheet.panel);
    QCOMPARE(slideOf(host)->shown(), reached);
    QTRY_VERIFY(!hasSheet(host.window));
}

void TestSheetSlide::stopsMovingWhenTheWindowIsResized()
{
    SheetHost host;
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    const QPointer<SheetSlide> slide = slideOf(host);
    host.window.resize(700, 600);
    QVERIFY(slide->isHidden()); // its pictures are of the former size
    QCOMPARE(sheet.panel.mapTo(&host.window, QPoint()), QPoint(200, 0));
    QTRY_VERIFY(!slide);
}

void TestSheetSlide::standsStillWhereAnimationsAreOff()
{
    SheetHost host;
    const StillStyle still;
    host.window.setStyle(const_cast<StillStyle *>(&still));
    SheetPanel sheet;
    presentSheet(host.window, sheet.panel);
    QVERIFY(!slideOf(host));
    endSheet(sheet.panel);
    QVERIFY(!slideOf(host));
    QTRY_VERIFY(!hasSheet(host.window));
}

VANTOR_GUI_TEST_MAIN(TestSheetSlide)
#include "tst_SheetSlide.moc"
