#include "platform/look/Fonts.h"
#include "prefs/popover/COICOPopoverView.h"
#include "prefs/popover/MessageField.h"
#include "prefs/popover/MessagePopover.h"
#include "prefs/popover/Popover.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>

class TestMessagePopover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void showsAShortTextInOneLine();
    void wrapsALongTextAtTheWidth();
    void isEmptyWithoutAString();
    void usesTheControlColoursAndFontUnlessTold();
    void usesTheColoursAndTheFontOfTheCaller();
    void showsATextWithItsOwnAttributes();
    void isReadByAScreenReader();

private:
    static const MessageField &fieldOf(const Popover &popover);
    static QImage pictureOf(const Popover &popover);

    std::unique_ptr<QWidget> m_window;
};

namespace {

const QString kLongText =
    QStringLiteral("Delete all items in the downloads folder. Please make sure to view and check "
                   "your downloads folder before deleting all files from there.");

double widened(double width)
{
    return width * (1 + 25 / (2 + width));
}

} // namespace

void TestMessagePopover::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(700, 560);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

const MessageField &TestMessagePopover::fieldOf(const Popover &popover)
{
    return *popover.content().findChild<MessageField *>();
}

QImage TestMessagePopover::pictureOf(const Popover &popover)
{
    return popover.content().grab().toImage();
}

void TestMessagePopover::showsAShortTextInOneLine()
{
    const Popover *popover = MessagePopover::showRelativeToRect(
        QRect(300, 200, 25, 25), *m_window, Qt::BottomEdge, QStringLiteral("OK"), 200);
    const QSizeF text = fieldOf(*popover).textSize();
    QVERIFY(text.width() > 10 && text.width() < 30);
    QCOMPARE(popover->content().width(), std::ceil(widened(text.width()) + 30));
    QCOMPARE(popover->content().height(), std::ceil(text.height() + 30));
    QCOMPARE(fieldOf(*popover).pos(), QPoint(15, 15));
    QCOMPARE(popover->placement().edge, Qt::BottomEdge);
}

void TestMessagePopover::wrapsALongTextAtTheWidth()
{
    const Popover *popover = MessagePopover::showRelativeToRect(QRect(300, 200, 25, 25), *m_window,
                                                                Qt::BottomEdge, kLongText, 200);
    const QSizeF text = fieldOf(*popover).textSize();
    QVERIFY(text.width() > 170 && text.width() <= 200);
    QVERIFY(text.height() > 3 * 13);
    QVERIFY(popover->content().width() > 200 + 20);
    QVERIFY(popover->content().width() <= 255);
    QCOMPARE(fieldOf(*popover).width(), std::ceil(widened(text.width())));
}

void TestMessagePopover::isEmptyWithoutAString()
{
    const Popover *popover = MessagePopover::showRelativeToRect(
        QRect(300, 200, 25, 25), *m_window, Qt::BottomEdge, std::nullopt, Qt::white, 200);
    QCOMPARE(popover->content().size(), QSize(30, 30));
    QVERIFY(popover->isVisible());
}

void TestMessagePopover::usesTheControlColoursAndFontUnlessTold()
{
    const Popover *popover =
        MessagePopover::showRelativeToRect(QRect(), *m_window, Qt::BottomEdge, kLongText, 200);
    QCOMPARE(popover->content().backgroundColour(), m_window->palette().color(QPalette::Base));
    const AttributedText text{{kLongText, interfaceFont(Typeface::Light, 13), Qt::black}};
    QCOMPARE(fieldOf(*popover).textSize(), TextBlock(text, 200).size());
    const QImage image = pictureOf(*popover);
    int darkest = 255;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            darkest = std::min(darkest, qGray(image.pixel(x, y)));
    QVERIFY(darkest < 100);
}

void TestMessagePopover::usesTheColoursAndTheFontOfTheCaller()
{
    const QFont large = interfaceFont(Typeface::Thin, 40);
    const Popover *popover = MessagePopover::showRelativeToRect(
        QRect(), *m_window, Qt::BottomEdge, QStringLiteral("HH"), Qt::yellow, Qt::blue, large, 200);
    QVERIFY(fieldOf(*popover).textSize().height() > 40);
    const QImage image = pictureOf(*popover);
    QVERIFY(image.pixelColor(image.width() / 2, 0).blue() < 4);
    bool hasBlue = false;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            hasBlue = hasBlue || image.pixelColor(x, y).green() < 60;
    QVERIFY(hasBlue);
}

void TestMessagePopover::showsATextWithItsOwnAttributes()
{
    const AttributedText text{
        {QStringLiteral("Hi"), interfaceFont(Typeface::Regular, 20), Qt::darkGreen}};
    const Popover *popover = MessagePopover::showRelativeToRect(QRect(), *m_window, Qt::BottomEdge,
                                                                text, Qt::white, 200);
    QCOMPARE(fieldOf(*popover).textSize(), TextBlock(text, 200).size());
}

void TestMessagePopover::isReadByAScreenReader()
{
    Popover *popover =
        MessagePopover::showRelativeToRect(QRect(), *m_window, Qt::BottomEdge, kLongText, 200);
    QCOMPARE(QAccessible::queryAccessibleInterface(popover)->text(QAccessible::Name), kLongText);
    auto *field = popover->content().findChild<MessageField *>();
    const QAccessibleInterface *label = QAccessible::queryAccessibleInterface(field);
    QCOMPARE(label->role(), QAccessible::StaticText);
    QCOMPARE(label->text(QAccessible::Name), kLongText);
}

VANTOR_GUI_TEST_MAIN(TestMessagePopover)
#include "tst_MessagePopover.moc"
