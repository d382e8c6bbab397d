#include "platform/look/OwnThreadPainting.h"

#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/HeldPool.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

using Paint = std::function<void(QPainter &)>;
Q_DECLARE_METATYPE(Paint)

class TestOwnThreadPainting final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doesNotWaitForThePool_data();
    void doesNotWaitForThePool();
    void paintsWhatThePlainColorPaints();
    void paintsEachRectangleOnce();
    void copiesPixelsAtAnyScale_data();
    void copiesPixelsAtAnyScale();
};

namespace {

constexpr QColor kGlass(255, 255, 255, 60);
constexpr int kSide = 600; // more rows than are filled in one step

QImage canvas()
{
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(40, 90, 160));
    return image;
}

QPainterPath disc()
{
    QPainterPath path;
    path.addEllipse(10, 10, kSide - 20, kSide - 20);
    return path;
}

/// Each column another shade, so that a shift by a pixel shows.
QPixmap stripes(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, QColor(x % 256, y % 256, (x + y) % 256));
    }
    return QPixmap::fromImage(image);
}

void fillGlass(QPainter &painter)
{
    painter.fillPath(disc(), rowByRowBrush(kGlass));
}

void coverAsAVeil(QPainter &painter)
{
    painter.setOpacity(0.4);
    painter.fillRect(QRect(0, 0, kSide, kSide), rowByRowBrush(Qt::white));
}

void strokeInAClip(QPainter &painter)
{
    painter.setClipPath(disc());
    painter.strokePath(disc(), QPen(rowByRowBrush(kGlass), 20));
}

void copyIntoManyRectangles(QPainter &painter)
{
    const QRegion region = QRegion(0, 0, kSide, kSide / 2) + QRegion(0, kSide / 2, 200, 200) +
                           QRegion(400, kSide / 2, 100, 300);
    painter.setClipRegion(region);
    const QPixmap picture = stripes({kSide, kSide});
    paintByRectangles(painter, region, [&](const QRect &) { copyToPixels(painter, {}, picture); });
}

void copyIntoAMask(QPainter &painter)
{
    painter.setClipRegion(QRegion(0, 0, kSide, kSide, QRegion::Ellipse));
    copyToPixels(painter, {}, stripes({kSide, kSide}));
}

} // namespace

void TestOwnThreadPainting::doesNotWaitForThePool_data()
{
    QTest::addColumn<Paint>("paint");
    QTest::newRow("a translucent shape") << Paint(fillGlass);
    QTest::newRow("a veil") << Paint(coverAsAVeil);
    QTest::newRow("a stroke in a clip") << Paint(strokeInAClip);
    QTest::newRow("a picture below many rectangles") << Paint(copyIntoManyRectangles);
    QTest::newRow("a picture below a mask") << Paint(copyIntoAMask);
}

void TestOwnThreadPainting::doesNotWaitForThePool()
{
    QFETCH(const Paint, paint);
    QImage image = canvas();
    const HeldPool pool;
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        paint(painter);
    }
    QVERIFY(!pool.wasWaitedFor());
    QVERIFY(image != canvas());
}

void TestOwnThreadPainting::paintsWhatThePlainColorPaints()
{
    const auto painted = [](const QBrush &brush) {
        QImage image = canvas();
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(disc(), brush);
        return image;
    };
    QCOMPARE(painted(rowByRowBrush(kGlass)), painted(kGlass));
}

void TestOwnThreadPainting::paintsEachRectangleOnce()
{
    const QRegion region = QRegion(0, 0, 50, 20) + QRegion(10, 20, 20, 30);
    QImage image = canvas();
    const QImage before = image;
    QRegion seen;
    {
        QPainter painter(&image);
        paintByRectangles(painter, region, [&](const QRect &part) {
            QVERIFY(!seen.intersects(part));
            seen += part;
            painter.fillRect(image.rect(), Qt::red);
        });
    }
    QCOMPARE(seen, region);
    for (const QPoint point : {QPoint(0, 0), QPoint(49, 19), QPoint(10, 49), QPoint(29, 20)})
        QCOMPARE(image.pixelColor(point), QColor(Qt::red));
    for (const QPoint point : {QPoint(9, 20), QPoint(30, 20), QPoint(50, 0), QPoint(10, 50)})
        QCOMPARE(image.pixel(point), before.pixel(point));
}

void TestOwnThreadPainting::copiesPixelsAtAnyScale_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0})
        QTest::addRow("%g", scale) << scale;
}

void TestOwnThreadPainting::copiesPixelsAtAnyScale()
{
    QFETCH(const double, scale);
    QPixmap picture = stripes({90, 60});
    const QImage expected = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    picture.setDevicePixelRatio(scale);
    QImage image = canvas();
    image.setDevicePixelRatio(scale);
    const QPoint corner(40, 30);
    {
        QPainter painter(&image);
        painter.translate(7, 3);
        copyToPixels(painter, corner - QPoint(7, 3), picture);
        QCOMPARE(painter.transform(), QTransform::fromTranslate(7, 3)); // left as it was
    }
    image.setDevicePixelRatio(1);
    const QPoint pixel = (QPointF(corner) * scale).toPoint();
    QCOMPARE(image.copy(QRect(pixel, expected.size())).convertToFormat(QImage::Format_ARGB32),
             expected);
}

VANTOR_GUI_TEST_MAIN(TestOwnThreadPainting)
#include "tst_OwnThreadPainting.moc"
