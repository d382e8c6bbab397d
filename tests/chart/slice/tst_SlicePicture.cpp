#include "chart/slice/SlicePicture.h"

#include "tests/support/run/GuiTestMain.h"

#include <QPainter>

class TestSlicePicture final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDrawnTwiceAndCopiedFromThenOn();
    void showsWhatIsDrawn_data();
    void showsWhatIsDrawn();
    void isRenewedWithItsLook_data();
    void isRenewedWithItsLook();
    void isRenewedWithTheScaleAndThePlaceBetweenPixels();
    void isNoneForALookThatChangesEachTime();
    void takesTheMemoryOfItsExtent();
    void isFreedWhenForgotten();
};

namespace {

const SliceLook kLook{{{100, 100}, 80, 0.2, 1.4}, QBrush(Qt::red), true, false};
constexpr QRectF kExtent(20, 20, 160, 160);

void draw(QPainter &painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(200, 30, 40));
    painter.drawEllipse(QRectF(40.3, 40.3, 99.5, 77.7));
}

/// A picture on white that is painted again and again.
class Stage final
{
public:
    explicit Stage(double scale = 1)
        : m_image(QSizeF(200 * scale, 200 * scale).toSize(), QImage::Format_ARGB32_Premultiplied)
    {
        m_image.setDevicePixelRatio(scale);
    }

    QImage paint(SlicePicture &picture, const SliceLook &look = kLook, QPointF offset = {})
    {
        m_image.fill(Qt::white);
        QPainter painter(&m_image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(offset);
        picture.paint(painter, look, kExtent, draw);
        return m_image.copy();
    }

private:
    QImage m_image;
};

int largestDifference(const QImage &first, const QImage &second)
{
    int largest = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QColor a = first.pixelColor(x, y);
            const QColor b = second.pixelColor(x, y);
            largest = std::max({largest, std::abs(a.red() - b.red()),
                                std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
        }
    }
    return largest;
}

} // namespace

void TestSlicePicture::isDrawnTwiceAndCopiedFromThenOn()
{
    Stage stage;
    SlicePicture picture;
    stage.paint(picture);
    QCOMPARE(picture.drawings(), 1);
    QCOMPARE(picture.bytes(), 0);
    for (int i = 0; i < 5; ++i)
        stage.paint(picture);
    QCOMPARE(picture.drawings(), 2);
    QVERIFY(picture.bytes() > 0);
}

void TestSlicePicture::showsWhatIsDrawn_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPointF>("offset");
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        QTest::addRow("at %g", scale) << scale << QPointF();
        QTest::addRow("at %g, between two pixels", scale) << scale << QPointF(3.4, 5.3);
        QTest::addRow("at %g, cut by the edge", scale) << scale << QPointF(-50, -47);
    }
}

void TestSlicePicture::showsWhatIsDrawn()
{
    QFETCH(const double, scale);
    QFETCH(const QPointF, offset);
    Stage stage(scale);
    SlicePicture picture;
    const QImage drawn = stage.paint(picture, kLook, offset);
    stage.paint(picture, kLook, offset);
    const QImage copied = stage.paint(picture, kLook, offset);
    QCOMPARE(picture.drawings(), 2);
    QVERIFY(largestDifference(drawn, copied) <= 2);
}

void TestSlicePicture::isRenewedWithItsLook_data()
{
    QTest::addColumn<SliceLook>("look");
    SliceLook other = kLook;
    other.brush = QBrush(Qt::blue);
    QTest::newRow("its colours") << other;
    other = kLook;
    other.geometry.end += 0.001;
    QTest::newRow("its arc") << other;
    other = kLook;
    other.geometry.radius += 1;
    QTest::newRow("its radius") << other;
    other = kLook;
    other.reachesBelowStart = false;
    QTest::newRow("its neighbour before") << other;
    other = kLook;
    other.reachesBelowEnd = true;
    QTest::newRow("its neighbour behind") << other;
}

void TestSlicePicture::isRenewedWithItsLook()
{
    QFETCH(const SliceLook, look);
    Stage stage;
    SlicePicture picture;
    stage.paint(picture);
    stage.paint(picture);
    QCOMPARE(picture.drawings(), 2);
    stage.paint(picture, look);
    QCOMPARE(picture.drawings(), 3);
    QCOMPARE(picture.bytes(), 0); // the old one is no use any more
}

void TestSlicePicture::isRenewedWithTheScaleAndThePlaceBetweenPixels()
{
    Stage once;
    Stage twice(2);
    SlicePicture picture;
    once.paint(picture);
    once.paint(picture);
    once.paint(picture, kLook, {3, 4}); // by whole pixels
    QCOMPARE(picture.drawings(), 2);
    once.paint(picture, kLook, {3.5, 4});
    QCOMPARE(picture.drawings(), 3);
    twice.paint(picture, kLook, {3.5, 4});
    QCOMPARE(picture.drawings(), 4);
}

void TestSlicePicture::isNoneForALookThatChangesEachTime()
{
    Stage stage;
    SlicePicture picture;
    SliceLook look = kLook;
    for (int i = 0; i < 5; ++i) {
        look.geometry.end += 0.01;
        stage.paint(picture, look);
        QCOMPARE(picture.bytes(), 0);
    }
    QCOMPARE(picture.drawings(), 5);
}

void TestSlicePicture::takesTheMemoryOfItsExtent()
{
    Stage stage(2);
    SlicePicture picture;
    stage.paint(picture);
    stage.paint(picture);
    QCOMPARE(picture.bytes(), qsizetype{320 * 320 * 4});
}

void TestSlicePicture::isFreedWhenForgotten()
{
    Stage stage;
    SlicePicture picture;
    stage.paint(picture);
    stage.paint(picture);
    picture.forget();
    QCOMPARE(picture.bytes(), 0);
    stage.paint(picture);
    QCOMPARE(picture.drawings(), 3);
}

VANTOR_GUI_TEST_MAIN(TestSlicePicture)
#include "tst_SlicePicture.moc"
