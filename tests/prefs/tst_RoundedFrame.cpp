#include "prefs/RoundedFrame.h"
#include "tests/support/GuiTestMain.h"

class TestRoundedFrame final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsALineAroundItsFill();
    void takesOtherColours();
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

VANTOR_GUI_TEST_MAIN(TestRoundedFrame)
#include "tst_RoundedFrame.moc"
