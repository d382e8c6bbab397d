#include "platform/look/ViewAlpha.h"
#include "prefs/popover/COICOPopoverView.h"
#include "prefs/popover/Popover.h"
#include "prefs/popover/PopoverFrameView.h"
#include "tests/support/run/GuiTestMain.h"

#include <QPushButton>
#include <QScreen>

/// The window that the popover belongs to is of 400 by 300 points, with one button on a page.
class TestPopover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void opensAtThePreferredEdge();
    void staysInsideTheWindow_data();
    void staysInsideTheWindow();
    void staysOnTheScreen();
    void closesOnEscape();
    void closesOnAClickOutside();
    void staysOpenOnAClickInside();
    void closesWhenTheViewIsDeleted();
    void closesWhenThePageHides();
    void closesWithItsWindow();
    void closesWhenItsWindowMoves();
    void outlivesAButtonThatOnlyHides();
    void closesTheOneThatWasOpen();
    void showsTheArrowInTheColourOfItsEdge();

private:
    Popover *open(Qt::Edge edge = Qt::BottomEdge, const QColor &colour = {});

    std::unique_ptr<QWidget> m_window;
    QWidget *m_page = nullptr;
    QPushButton *m_button = nullptr;
};

void TestPopover::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->setGeometry(100, 100, 400, 300);
    m_page = new QWidget(m_window.get());
    m_page->setGeometry(m_window->rect());
    m_button = new QPushButton(m_page);
    m_button->setGeometry(190, 140, 20, 20);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestPopover::cleanup()
{
    m_window.reset();
    QVERIFY(!QApplication::activePopupWidget());
}

Popover *TestPopover::open(Qt::Edge edge, const QColor &colour)
{
    auto content = std::make_unique<COICOPopoverView>();
    content->setBackgroundColour(colour);
    content->resize(120, 60);
    auto *popover = new Popover(std::move(content), m_window.get());
    popover->showRelativeToRect(m_button->rect(), *m_button, edge);
    return popover;
}

void TestPopover::opensAtThePreferredEdge()
{
    const Popover *popover = open();
    QVERIFY(popover->isVisible());
    QCOMPARE(popover->windowType(), Qt::Popup);
    const QPoint tip = popover->mapToGlobal(popover->placement().tip.toPoint());
    QCOMPARE(tip, m_button->mapToGlobal(QPoint(10, 20)));
    QCOMPARE(popover->content().geometry(), popover->placement().body.toRect());
    QCOMPARE(popover->content().size(), QSize(120, 60));
}

void TestPopover::staysInsideTheWindow_data()
{
    QTest::addColumn<QPoint>("button");
    QTest::addRow("upper left") << QPoint(0, 0);
    QTest::addRow("upper right") << QPoint(380, 0);
    QTest::addRow("lower left") << QPoint(0, 280);
    QTest::addRow("lower right") << QPoint(380, 280);
}

void TestPopover::staysInsideTheWindow()
{
    QFETCH(QPoint, button);
    m_button->move(button);
    for (const Qt::Edge edge : {Qt::TopEdge, Qt::BottomEdge, Qt::LeftEdge, Qt::RightEdge}) {
        const Popover *popover = open(edge);
        const QRect body(popover->content().mapToGlobal(QPoint()), popover->content().size());
        QVERIFY(m_window->geometry().contains(body));
    }
}

void TestPopover::staysOnTheScreen()
{
    const QRect screen = m_window->screen()->availableGeometry();
    m_window->move(screen.bottomRight() - QPoint(230, 170));
    QTRY_COMPARE(m_window->pos(), screen.bottomRight() - QPoint(230, 170));
    const Popover *popover = open(Qt::BottomEdge);
    const QRect body(popover->content().mapToGlobal(QPoint()), popover->content().size());
    QVERIFY(screen.contains(body));
}

void TestPopover::closesOnEscape()
{
    const QPointer<Popover> popover = open();
    QTest::keyClick(popover.data(), Qt::Key_Escape);
    QTRY_VERIFY(!popover);
}

void TestPopover::closesOnAClickOutside()
{
    const QPointer<Popover> popover = open();
    QTest::mouseClick(popover->windowHandle(), Qt::LeftButton, {}, {-50, -50});
    QTRY_VERIFY(!popover);
}

void TestPopover::staysOpenOnAClickInside()
{
    const QPointer<Popover> popover = open();
    QTest::mouseClick(popover->windowHandle(), Qt::LeftButton, {},
                      popover->placement().body.center().toPoint());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(popover && popover->isVisible());
}

void TestPopover::closesWhenTheViewIsDeleted()
{
    const QPointer<Popover> popover = open();
    delete m_button;
    QTRY_VERIFY(!popover);
}

void TestPopover::closesWhenThePageHides()
{
    const QPointer<Popover> popover = open();
    m_page->hide();
    QTRY_VERIFY(!popover);
}

void TestPopover::closesWithItsWindow()
{
    const QPointer<Popover> popover = open();
    m_window->close();
    QTRY_VERIFY(!popover);
}

void TestPopover::closesWhenItsWindowMoves()
{
    const QPointer<Popover> popover = open();
    m_window->move(150, 120);
    QTRY_VERIFY(!popover);
}

void TestPopover::outlivesAButtonThatOnlyHides()
{
    const QPointer<Popover> popover = open();
    m_button->hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(popover && popover->isVisible());
}

void TestPopover::closesTheOneThatWasOpen()
{
    const Popover *first = open();
    const Popover *second = open();
    QVERIFY(!first->isVisible());
    QVERIFY(second->isVisible());
}

void TestPopover::showsTheArrowInTheColourOfItsEdge()
{
    const auto arrowColour = [this](Qt::Edge edge, QColor &colour) {
        Popover *popover = open(edge, Qt::red);
        QTRY_COMPARE(alphaValue(*popover->findChild<PopoverFrameView *>()), 1.0);
        const QPointF tip = popover->placement().tip;
        const QPointF inside = tip + (popover->placement().body.center() - tip) * 0.1;
        colour = popover->grab().toImage().pixelColor(inside.toPoint());
    };
    QColor colour;
    arrowColour(Qt::BottomEdge, colour);
    QCOMPARE(colour, QColor(Qt::red));
    arrowColour(Qt::TopEdge, colour);
    QCOMPARE(colour, QColor(Qt::white));
}

VANTOR_GUI_TEST_MAIN(TestPopover)
#include "tst_Popover.moc"
