#include "tests/support/run/GuiTestMain.h"
#include "widgets/RoundedFrame.h"

#include <QLineEdit>

class TestRoundedFrame final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsALineAroundItsFill();
    void takesOtherColours();
    void showsTheFocusOfWhatItHolds();
};

namespace {

QImage pictureOf(RoundedFrame &frame)
{
    frame.resize(60, 40);
    QImage image(frame.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    frame.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

} // namespace

void TestRoundedFrame::paintsALineAroundItsFill()
{
    RoundedFrame frame;
    const QImage image = pictureOf(frame);
    QCOMPARE(image.pixelColor(30, 20), QColor(Qt::white));
    QCOMPARE(image.pixelColor(30, 0), frame.lineColor());
    QCOMPARE(image.pixelColor(0, 20), frame.lineColor());
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
}

void TestRoundedFrame::takesOtherColours()
{
    RoundedFrame frame;
    frame.setProperty("fillColor", QColor(Qt::yellow));
    frame.setProperty("lineColor", QColor(Qt::red));
    const QImage image = pictureOf(frame);
    QCOMPARE(image.pixelColor(30, 20), QColor(Qt::yellow));
    QCOMPARE(image.pixelColor(30, 39), QColor(Qt::red));
}

void TestRoundedFrame::showsTheFocusOfWhatItHolds()
{
    QWidget window;
    auto *frame = new RoundedFrame(&window);
    frame->resize(60, 40);
    auto *inside = new QLineEdit(frame);
    auto *outside = new QLineEdit(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    inside->setFocus();
    QCOMPARE(pictureOf(*frame).pixelColor(30, 39), frame->lineColor());
    frame->setShowsFocus(true);
    QCOMPARE(pictureOf(*frame).pixelColor(30, 39), frame->palette().color(QPalette::Highlight));
    outside->setFocus();
    QCOMPARE(pictureOf(*frame).pixelColor(30, 39), frame->lineColor());
}

VANTOR_GUI_TEST_MAIN(TestRoundedFrame)
#include "tst_RoundedFrame.moc"
