#include "platform/look/SoftShadow.h"
#include "tests/support/run/GuiTestMain.h"

namespace {

constexpr SoftShadow kShadow{10, 5, 0.3};
constexpr QRect kBody(30, 30, 140, 90);

QImage painted(qreal scale = 1)
{
    QImage image(QSize(200, 150) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintSoftShadow(painter, kBody, kShadow);
    return image;
}

/// How dark it is at this distance, in points, left of the body's left edge; 0 to 255.
int darkness(const QImage &image, int distance)
{
    const qreal scale = image.devicePixelRatio();
    return qAlpha(image.pixel((QPointF(kBody.left() - distance, 75) * scale).toPoint()));
}

} // namespace

class TestSoftShadow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fadesAwayFromTheBody_data();
    void fadesAwayFromTheBody();
    void endsAtItsReach();
    void isAlikeOnAllSides();
    void differsFromAnotherLook();
};

void TestSoftShadow::fadesAwayFromTheBody_data()
{
    QTest::addColumn<double>("scale");
    QTest::addRow("1x") << 1.0;
    QTest::addRow("2x") << 2.0;
}

void TestSoftShadow::fadesAwayFromTheBody()
{
    QFETCH(double, scale);
    const QImage image = painted(scale);
    QVERIFY(darkness(image, 1) > 40);
    for (int distance = 2; distance < kShadow.reach; ++distance)
        QVERIFY(darkness(image, distance) < darkness(image, distance - 1));
}

void TestSoftShadow::endsAtItsReach()
{
    const QImage image = painted();
    QCOMPARE(darkness(image, kShadow.reach + 1), 0);
    QCOMPARE(qAlpha(image.pixel(75, kBody.top() - kShadow.reach - 1)), 0);
    QCOMPARE(qAlpha(image.pixel(kBody.left() - 9, kBody.top() - 9)), 0); // round at the corners
}

void TestSoftShadow::isAlikeOnAllSides()
{
    const QImage image = painted();
    const QPoint middle = kBody.center();
    const int left = qAlpha(image.pixel(kBody.left() - 3, middle.y()));
    QCOMPARE(qAlpha(image.pixel(kBody.right() + 3, middle.y())), left);
    QCOMPARE(qAlpha(image.pixel(middle.x(), kBody.top() - 3)), left);
    QCOMPARE(qAlpha(image.pixel(middle.x(), kBody.bottom() + 3)), left);
}

void TestSoftShadow::differsFromAnotherLook()
{
    const QImage first = painted();
    QImage other(first.size(), first.format());
    other.fill(Qt::transparent);
    QPainter painter(&other);
    paintSoftShadow(painter, kBody, {kShadow.reach, kShadow.radius, kShadow.strength / 2});
    painter.end();
    QVERIFY(darkness(other, 1) < darkness(first, 1));
}

VANTOR_GUI_TEST_MAIN(TestSoftShadow)
#include "tst_SoftShadow.moc"
