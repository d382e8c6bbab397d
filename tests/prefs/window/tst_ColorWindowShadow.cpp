#include "platform/desktop/WindowShadow.h"
#include "platform/sheet/Sheet.h"
#include "prefs/window/ColorWindow.h"
#include "prefs/window/ColorWindowFrameView.h"
#include "prefs/window/WindowButton.h"
#include "tests/support/run/GuiTestMain.h"

/// The window with its shadow around it, as on a desktop that can be told about the shadow.
class TestColorWindowShadow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void leavesTheFrameItsSize();
    void isPaintedAroundTheFrame();
    void keepsAFixedSizeFixed();
    void staysWhenItIsShownAgain();
    void keepsSheetsInsideTheFrame();
    void goesWhenTheWindowFillsTheScreen();
    void isNotDrawnWhereNobodyCanBeTold();

private:
    QPoint frameCorner() const { return m_window->frameView()->geometry().topLeft(); }

    std::unique_ptr<ColorWindow> m_window;
    QWidget *m_page = nullptr;
};

void TestColorWindowShadow::init()
{
    m_window = std::make_unique<ColorWindow>();
    m_window->setHasShadow(true);
    m_page = new QWidget(m_window.get());
    m_window->setContentView(m_page);
    m_window->setFixedSize(600, 400);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TestColorWindowShadow::cleanup()
{
    m_window.reset();
}

void TestColorWindowShadow::leavesTheFrameItsSize()
{
    QCOMPARE(m_window->frameView()->size(), QSize(600, 400));
    ColorWindow plain;
    auto *page = new QWidget(&plain);
    plain.setContentView(page);
    plain.resize(600, 400);
    plain.show();
    // A window that may be resized, too, grows by the room for the shadow.
    ColorWindow free;
    free.setHasShadow(true);
    free.setContentView(new QWidget(&free));
    free.resize(600, 400);
    free.show();
    QCOMPARE(free.frameView()->size(), QSize(600, 400));
    QCOMPARE(m_page->geometry(), page->geometry());
    QCOMPARE(m_window->closeButton()->geometry(), plain.closeButton()->geometry());
    QCOMPARE(m_window->menuButton()->geometry(), plain.menuButton()->geometry());
}

void TestColorWindowShadow::isPaintedAroundTheFrame()
{
    QVERIFY(frameCorner().x() > 10 && frameCorner().y() > 10);
    QImage image(m_window->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    m_window->render(&image, {}, {}, QWidget::DrawChildren);
    const int middle = image.height() / 2;
    QVERIFY(qAlpha(image.pixel(frameCorner().x() - 2, middle)) > 10);
    QVERIFY(qAlpha(image.pixel(frameCorner().x() - 10, middle)) <
            qAlpha(image.pixel(frameCorner().x() - 2, middle)));
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
}

void TestColorWindowShadow::keepsAFixedSizeFixed()
{
    QCOMPARE(m_window->minimumSize(), m_window->maximumSize());
    QCOMPARE(m_window->size(), m_window->minimumSize());
}

void TestColorWindowShadow::staysWhenItIsShownAgain()
{
    const QSize size = m_window->size();
    m_window->hide();
    m_window->show();
    QCOMPARE(m_window->size(), size);
    QCOMPARE(m_window->frameView()->size(), QSize(600, 400));
}

void TestColorWindowShadow::keepsSheetsInsideTheFrame()
{
    QWidget panel;
    panel.resize(2000, 2000);
    presentSheet(*m_window, panel);
    QTRY_VERIFY(panel.isVisible());
    const QRect inWindow(panel.mapTo(m_window.get(), QPoint()), panel.size());
    QVERIFY(m_window->frameView()->geometry().contains(
        QRect(inWindow.left(), m_window->height() / 2, inWindow.width(), 1)));
    endSheet(panel);
    QTRY_VERIFY(!hasSheet(*m_window));
}

void TestColorWindowShadow::goesWhenTheWindowFillsTheScreen()
{
    ColorWindow window;
    window.setHasShadow(true);
    window.setContentView(new QWidget(&window));
    window.resize(600, 400);
    window.show();
    window.showMaximized();
    QTRY_COMPARE(window.frameView()->size(), window.size());
    window.showNormal();
    QTRY_VERIFY(window.frameView()->width() < window.width());
}

void TestColorWindowShadow::isNotDrawnWhereNobodyCanBeTold()
{
    QVERIFY(!canAnnounceShadow()); // this display is not such a desktop
    ColorWindow window;
    window.setContentView(new QWidget(&window));
    window.resize(600, 400);
    window.show();
    QCOMPARE(window.size(), QSize(600, 400));
    QCOMPARE(window.frameView()->geometry(), QRect(0, 0, 600, 400));
}

VANTOR_GUI_TEST_MAIN(TestColorWindowShadow)
#include "tst_ColorWindowShadow.moc"
