#include "platform/look/Images.h"
#include "tests/support/run/GuiTestMain.h"

#include <QDir>
#include <QPainter>
#include <QSvgRenderer>
#include <QXmlStreamReader>

namespace {

QImage drawing(const QString &name, qreal scale, QSize size = {})
{
    return imageNamed(name, scale, size).toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The drawings' names, as the resources hold them.
QStringList allNames()
{
    QStringList names;
    for (const QString &file :
         QDir(QStringLiteral(":/images")).entryList({QStringLiteral("*.svg")}))
        names.append(file.chopped(4));
    return names;
}

/// The smallest rectangle around all that is drawn, in points.
QRectF inkOf(const QString &name)
{
    const QImage picture = drawing(name, 2);
    QRect ink;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) > 40)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return {ink.x() / 2.0, ink.y() / 2.0, ink.width() / 2.0, ink.height() / 2.0};
}

} // namespace

class TestImages final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsWhichDrawingsThereAre();
    void hasEveryDrawingThatThePagesShow_data();
    void hasEveryDrawingThatThePagesShow();
    void drawsOnlyWhatTheRendererUnderstands_data();
    void drawsOnlyWhatTheRendererUnderstands();
    void keepsSlicePicturesClearOfTheirNames_data();
    void keepsSlicePicturesClearOfTheirNames();
    void isSharpAtEveryScale_data();
    void isSharpAtEveryScale();
    void fitsIntoASizeWithItsProportions();
    void isDrawnOnce();
    void givesNothingForUnknownNames();
};

void TestImages::knowsWhichDrawingsThereAre()
{
    QVERIFY(hasImageNamed(QStringLiteral("circleButton")));
    QVERIFY(!hasImageNamed(QStringLiteral("circlebutton")));
    QVERIFY(!hasImageNamed(QString()));
}

void TestImages::hasEveryDrawingThatThePagesShow_data()
{
    QTest::addColumn<QSize>("size");
    for (const char *name :
         {"Trash", "Large Files", "Cache", "App Logs", "Old iOS", "Downloads", "Mail Downloads",
          "Browser Data", "image", "socialFacebook", "socialTwitter", "socialAppStoreLink"})
        QTest::newRow(name) << QSize(54, 54);
    for (const char *name :
         {"infoButton", "infoButtonPressed", "showInFinderButton", "showInFinderButtonPressed"})
        QTest::newRow(name) << QSize(25, 25);
    for (const char *name : {"circleButton", "circleButtonPressed"})
        QTest::newRow(name) << QSize(200, 200);
    for (const char *name : {"welcomeHome", "welcomeHomeGreen"})
        QTest::newRow(name) << QSize(160, 160);
    for (const char *name : {"welcomeCheck", "welcomeCheckGreen"})
        QTest::newRow(name) << QSize(48, 48);
    for (const char *name : {"legendSelected", "legendNotSelected"})
        QTest::newRow(name) << QSize(16, 16);
    for (const char *name : {"largeFilesSizeButtonBlue", "largeFilesSizeButtonBlueMouseDown",
                             "largeFilesSizeButtonGreen", "largeFilesSizeButtonGreenMouseDown"})
        QTest::newRow(name) << QSize(100, 28);
    QTest::newRow("shadow") << QSize(440, 60);
    QTest::newRow("vantor") << QSize(128, 128);
}

void TestImages::hasEveryDrawingThatThePagesShow()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QFETCH(QSize, size);
    QCOMPARE(imageSize(name), size);
    QCOMPARE(imageNamed(name, 1).size(), size);
    const QRectF ink = inkOf(name);
    QVERIFY(!ink.isEmpty());
    QVERIFY2(QRectF(QPointF(), size).contains(ink), "drawn over the edge");
}

void TestImages::drawsOnlyWhatTheRendererUnderstands_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : allNames())
        QTest::newRow(qPrintable(name)) << name;
}

/// The renderer ignores filters, masks, clips and styles without a message; it would draw text in
/// any font that it finds.
void TestImages::drawsOnlyWhatTheRendererUnderstands()
{
    QFETCH(QString, name);
    const QSet<QString> known{QStringLiteral("svg"),
                              QStringLiteral("g"),
                              QStringLiteral("defs"),
                              QStringLiteral("path"),
                              QStringLiteral("rect"),
                              QStringLiteral("circle"),
                              QStringLiteral("stop"),
                              QStringLiteral("ellipse"),
                              QStringLiteral("linearGradient"),
                              QStringLiteral("radialGradient"),
                              QStringLiteral("use")};
    QFile file(QStringLiteral(":/images/%1.svg").arg(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement)
            QVERIFY2(known.contains(reader.name().toString()),
                     qPrintable(reader.name().toString()));
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QVERIFY(!imageNamed(name, 3).isNull());
}

void TestImages::keepsSlicePicturesClearOfTheirNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"Trash", "Large Files", "Cache", "App Logs", "Old iOS", "Downloads",
                             "Mail Downloads", "Browser Data"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

/// A slice's label puts the name five points into the picture's square.
void TestImages::keepsSlicePicturesClearOfTheirNames()
{
    QFETCH(QString, name);
    const QRectF ink = inkOf(name);
    QVERIFY2(ink.bottom() <= 47, qPrintable(QString::number(ink.bottom())));
    QVERIFY2(qAbs(ink.center().x() - 27) <= 1, qPrintable(QString::number(ink.center().x())));
}

void TestImages::isSharpAtEveryScale_data()
{
    QTest::addColumn<qreal>("scale");
    QTest::addColumn<QSize>("dots");
    QTest::newRow("1") << 1.0 << QSize(200, 200);
    QTest::newRow("1.5") << 1.5 << QSize(300, 300);
    QTest::newRow("2") << 2.0 << QSize(400, 400);
}

/// The picture is drawn in the screen's pixels, not stretched: it equals the drawing at that size.
void TestImages::isSharpAtEveryScale()
{
    QFETCH(qreal, scale);
    QFETCH(QSize, dots);
    const QString name = QStringLiteral("circleButton");
    const QPixmap picture = imageNamed(name, scale);
    QCOMPARE(picture.size(), dots);
    QCOMPARE(picture.devicePixelRatio(), scale);
    QCOMPARE(picture.deviceIndependentSize(), QSizeF(200, 200));

    QImage expected(dots, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    QSvgRenderer(QStringLiteral(":/images/circleButton.svg")).render(&painter);
    painter.end();
    QCOMPARE(drawing(name, scale)
                 .convertToFormat(QImage::Format_ARGB32_Premultiplied)
                 .pixel(dots.width() / 2, dots.height() / 10),
             expected.pixel(dots.width() / 2, dots.height() / 10));
}

void TestImages::fitsIntoASizeWithItsProportions()
{
    const QPixmap picture = imageNamed(QStringLiteral("welcomeCheckGreen"), 2, QSize(100, 20));
    QCOMPARE(picture.size(), QSize(200, 40));
    const QImage dots = picture.toImage();
    QCOMPARE(qAlpha(dots.pixel(70, 20)), 0);
    QCOMPARE(qAlpha(dots.pixel(86, 20)), 255);
    QCOMPARE(qAlpha(dots.pixel(113, 20)), 255);
    QCOMPARE(qAlpha(dots.pixel(130, 20)), 0);
}

void TestImages::isDrawnOnce()
{
    const QString name = QStringLiteral("Trash");
    QCOMPARE(imageNamed(name, 1).cacheKey(), imageNamed(name, 1).cacheKey());
    QVERIFY(imageNamed(name, 1).cacheKey() != imageNamed(name, 2).cacheKey());
    QVERIFY(imageNamed(name, 1).cacheKey() != imageNamed(name, 1, QSize(20, 20)).cacheKey());
}

void TestImages::givesNothingForUnknownNames()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QVERIFY(imageNamed(QStringLiteral("no such picture"), 1).isNull());
    QVERIFY(imageNamed(QString(), 1).isNull());
    QVERIFY(imageSize(QStringLiteral("no such picture")).isEmpty());
}

VANTOR_GUI_TEST_MAIN(TestImages)
#include "tst_Images.moc"
