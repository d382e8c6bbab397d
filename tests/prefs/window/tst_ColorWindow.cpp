#include "platform/desktop/InterfaceLoader.h"
#include "platform/sheet/Sheet.h"
#include "prefs/window/ColorWindow.h"
#include "prefs/window/ColorWindowFrameView.h"
#include "prefs/window/EdgeGrip.h"
#include "prefs/window/WindowButton.h"
#include "tests/support/run/GuiTestMain.h"

#include <QLabel>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <utility>

namespace {

constexpr auto kDescription = R"(<ui version="4.0">
 <class>Sample</class>
 <widget class="ColorWindow" name="Sample">
  <property name="geometry"><rect><x>0</x><y>0</y><width>600</width><height>400</height></rect></property>
  <widget class="QWidget" name="page"/>
  <widget class="QMenuBar" name="bar">
   <widget class="QMenu" name="file">
    <property name="title"><string>File</string></property>
    <addaction name="quit"/>
   </widget>
   <addaction name="file"/>
  </widget>
  <action name="quit">
   <property name="text"><string>Quit</string></property>
   <property name="shortcut"><string>Ctrl+Q</string></property>
  </action>
 </widget>
 <customwidgets>
  <customwidget>
   <class>ColorWindow</class>
   <extends>QWidget</extends>
   <header>prefs/window/ColorWindow.h</header>
   <addpagemethod>addFormChild</addpagemethod>
   <container>1</container>
  </customwidget>
 </customwidgets>
</ui>)";

/// Counts how often widgets are painted.
class Paints final : public QObject
{
public:
    int of(const QObject *widget) const { return m_counts.value(widget); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_counts[watched];
        return false;
    }

private:
    QHash<const QObject *, int> m_counts;
};

/// Where the upper edge of a sheet comes to rest.
int topOfSheet(QWidget &host)
{
    QWidget panel;
    panel.resize(200, 100);
    int top = -1000;
    const auto hasComeOut = [&] {
        const int last = std::exchange(top, panel.mapTo(&host, QPoint(0, 0)).y());
        return top >= 0 && last == top;
    };
    presentSheet(host, panel);
    if (!QTest::qWaitFor(hasComeOut))
        QTest::qFail("the sheet did not come out", __FILE__, __LINE__);
    endSheet(panel);
    if (!QTest::qWaitFor([&] { return !hasSheet(host); }))
        QTest::qFail("the sheet did not go", __FILE__, __LINE__);
    return top;
}

} // namespace

class TestColorWindow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isBorderlessWhateverItIsMadeWith_data();
    void isBorderlessWhateverItIsMadeWith();
    void laysItsPartsOut();
    void changesNothingForTheSameContent();
    void swapsTheContent();
    void answersTheContentRectangle();
    void followsItsSize();
    void centresTheTitleInItsFirstSize();
    void letsSheetsOutBelowItsTitle();
    void takesTheKeyboard();
    void isDraggedByItsBackground();
    void staysWhereItIsWhenItMayNotMove();
    void isResizedByItsEdges();
    void isNotResizedWhenItsSizeIsFixed();
    void redrawsItsButtonsWhenItIsNoLongerMain();
    void closesAndMinimises();
    void hasSquareCornersOnTheWholeScreen();
    void showsItsMenuBehindAButton();
    void noticesThatThePointerLeftTheMenusButton();
    void isTheRootOfAnInterfaceDescription();

private:
    /// A window of 600 by 400 with a content view.
    std::unique_ptr<ColorWindow> shown();
};

std::unique_ptr<ColorWindow> TestColorWindow::shown()
{
    auto window = std::make_unique<ColorWindow>();
    window->setGeometry(100, 100, 600, 400);
    window->setContentView(new QWidget);
    window->show();
    if (!QTest::qWaitForWindowActive(window.get()))
        QTest::qFail("the window did not become active", __FILE__, __LINE__);
    return window;
}

void TestColorWindow::isBorderlessWhateverItIsMadeWith_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addRow("none") << Qt::WindowFlags();
    QTest::addRow("titled") << (Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    QTest::addRow("dialog") << Qt::WindowFlags(Qt::Dialog);
    QTest::addRow("widget") << Qt::WindowFlags(Qt::Widget);
}

void TestColorWindow::isBorderlessWhateverItIsMadeWith()
{
    QFETCH(Qt::WindowFlags, flags);
    const ColorWindow window(nullptr, flags);
    QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(!(window.windowFlags() & Qt::WindowTitleHint));
    QCOMPARE(window.windowType(), Qt::Window);
    QVERIFY(window.testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(window.canMove());
}

void TestColorWindow::laysItsPartsOut()
{
    const auto window = shown();
    QCOMPARE(window->contentView()->geometry(), QRect(5, 20, 590, 375));
    QCOMPARE(window->titleField()->geometry(), QRect(50, 5, 500, 22));
    QCOMPARE(window->closeButton()->geometry(), QRect(9, 5, 14, 14));
    QCOMPARE(window->minimizeButton()->geometry(), QRect(29, 5, 14, 14));
    QCOMPARE(window->frameView()->geometry(), window->rect());
    QCOMPARE(window->contentView()->parentWidget(), window->frameView());
    QCOMPARE(window->titleField()->text(), QStringLiteral("Vantor"));
    QCOMPARE(window->titleField()->palette().color(QPalette::WindowText).rgb(),
             QColor(89, 89, 89).rgb());
}

void TestColorWindow::changesNothingForTheSameContent()
{
    const auto window = shown();
    QWidget *content = window->contentView();
    auto *field = new QLabel(content);
    field->setFocusPolicy(Qt::StrongFocus);
    field->show();
    field->setFocus();
    QVERIFY(field->hasFocus());
    const QObjectList before = window->frameView()->children();
    window->setContentView(content);
    QVERIFY(field->hasFocus()); // not even taken out and put in again
    QCOMPARE(window->frameView()->children(), before);
    QCOMPARE(window->contentView(), content);
}

void TestColorWindow::swapsTheContent()
{
    const auto window = shown();
    const std::unique_ptr<QWidget> former(window->contentView());
    const auto *next = new QLabel;
    const WindowButton *button = window->closeButton();
    window->setContentView(const_cast<QLabel *>(next));
    QCOMPARE(former->parentWidget(), nullptr);
    QCOMPARE(window->contentView(), next);
    QVERIFY(next->isVisible());
    QCOMPARE(next->geometry(), QRect(5, 20, 590, 375));
    QCOMPARE(window->closeButton(), button); // the chrome was not built again
    QCOMPARE(window->frameView()->findChildren<WindowButton *>().size(), 3);
}

void TestColorWindow::answersTheContentRectangle()
{
    QCOMPARE(ColorWindow::contentRectForFrameRect({0, 0, 600, 400}), QRectF(5, 5, 590, 375));
    QCOMPARE(ColorWindow::contentRectForFrameRect({70, 80, 600, 400}), QRectF(5, 5, 590, 375));
}

void TestColorWindow::followsItsSize()
{
    const auto window = shown();
    window->resize(800, 500);
    QTRY_COMPARE(window->contentView()->geometry(), QRect(5, 20, 790, 475));
    QCOMPARE(window->frameView()->size(), QSize(800, 500));
    // Pinned to the upper left, the title with its width.
    QCOMPARE(window->closeButton()->pos(), QPoint(9, 5));
    QCOMPARE(window->titleField()->geometry(), QRect(50, 5, 500, 22));
}

void TestColorWindow::centresTheTitleInItsFirstSize()
{
    ColorWindow window;
    window.setContentView(new QWidget);
    window.setFixedSize(870, 705); // as a description's reader does, after the content came
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(window.titleField()->geometry(), QRect(50, 5, 770, 22));
    QCOMPARE(window.contentView()->geometry(), QRect(5, 20, 860, 680));
}

void TestColorWindow::letsSheetsOutBelowItsTitle()
{
    const auto window = shown();
    QWidget plain;
    plain.setGeometry(window->geometry());
    plain.show();
    QCOMPARE(topOfSheet(*window), topOfSheet(plain) + 30);
}

void TestColorWindow::takesTheKeyboard()
{
    const auto window = shown();
    QVERIFY(window->isActiveWindow());
    auto *field = new QLabel(window->contentView());
    field->setFocusPolicy(Qt::StrongFocus);
    field->show();
    field->setFocus();
    QVERIFY(field->hasFocus());
}

void TestColorWindow::isDraggedByItsBackground()
{
    const auto window = shown();
    // On the title, in the middle of the content, and just above it.
    for (const QPoint &place : {QPoint(300, 12), QPoint(300, 200), QPoint(300, 19)}) {
        const QPoint before = window->pos();
        QWindow *handle = window->windowHandle();
        QTest::mousePress(handle, Qt::LeftButton, {}, place);
        QTest::mouseMove(handle, place + QPoint(40, 30));
        QTRY_COMPARE(window->pos(), before + QPoint(40, 30));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, place);
    }
}

void TestColorWindow::staysWhereItIsWhenItMayNotMove()
{
    const auto window = shown();
    window->setCanMove(false);
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, {300, 200});
    QTest::mouseMove(window->windowHandle(), {340, 230});
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, {340, 230});
    QCoreApplication::processEvents();
    QCOMPARE(window->pos(), QPoint(100, 100));
}

void TestColorWindow::isResizedByItsEdges()
{
    const auto window = shown();
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, {598, 200});
    QTest::mouseMove(window->windowHandle(), {638, 200});
    QTRY_COMPARE(window->geometry(), QRect(100, 100, 640, 400));
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, {638, 200});
    const auto grips = window->findChildren<EdgeGrip *>();
    QCOMPARE(grips.size(), 8);
    for (const EdgeGrip *grip : grips)
        QVERIFY(!grip->geometry().intersects(window->closeButton()->geometry()));
}

void TestColorWindow::isNotResizedWhenItsSizeIsFixed()
{
    const auto window = shown();
    window->setFixedSize(600, 400);
    window->hide();
    window->show();
    for (const EdgeGrip *grip : window->findChildren<EdgeGrip *>())
        QVERIFY(!grip->isVisible());
}

void TestColorWindow::redrawsItsButtonsWhenItIsNoLongerMain()
{
    const auto window = shown();
    QTest::mouseMove(window.get(), {300, 300});
    QTRY_VERIFY(!window->closeButton()->underMouse());
    const QImage before = window->minimizeButton()->grab().toImage();
    Paints paints;
    for (QWidget *button : {window->closeButton(), window->minimizeButton(), window->menuButton()})
        button->installEventFilter(&paints);
    window->menuButton()->show();
    QTRY_COMPARE(paints.of(window->menuButton()), 1);
    QWidget other;
    other.setGeometry(0, 0, 50, 50);
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    for (QWidget *button : {window->closeButton(), window->minimizeButton(), window->menuButton()})
        QTRY_VERIFY(paints.of(button) > (button == window->menuButton() ? 1 : 0));
    QVERIFY(window->minimizeButton()->grab().toImage() != before);
}

void TestColorWindow::closesAndMinimises()
{
    const auto window = shown();
    window->minimizeButton()->click();
    QTRY_VERIFY(window->isMinimized());
    window->showNormal();
    window->closeButton()->click();
    QTRY_VERIFY(!window->isVisible());
}

void TestColorWindow::hasSquareCornersOnTheWholeScreen()
{
    const auto window = shown();
    const QPointF corner(0.5, 0.5);
    QVERIFY(!window->frameView()->shape().contains(corner));
    window->showMaximized();
    QTRY_VERIFY(window->frameView()->shape().contains(corner));
    window->showNormal();
    QTRY_VERIFY(!window->frameView()->shape().contains(corner));
}

void TestColorWindow::showsItsMenuBehindAButton()
{
    const auto window = shown();
    QVERIFY(!window->menuButton()->isVisible());
    auto *bar = new QMenuBar;
    const QAction *quit = bar->addMenu(QStringLiteral("File"))->addAction(QStringLiteral("Quit"));
    window->setMenuBar(bar);
    QVERIFY(window->menuButton()->isVisible());
    QCOMPARE(window->menuButton()->geometry(), QRect(600 - 9 - 14, 5, 14, 14));
    QCOMPARE(window->contentView()->geometry(), QRect(5, 20, 590, 375));
    for (const auto &open : {+[](ColorWindow &w) { w.menuButton()->click(); },
                             +[](ColorWindow &w) { QTest::keyClick(&w, Qt::Key_F10); }}) {
        open(*window);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QVERIFY(menu->actions().contains(quit));
        menu->close();
    }
}

void TestColorWindow::noticesThatThePointerLeftTheMenusButton()
{
    const auto window = shown();
    auto *bar = new QMenuBar;
    bar->addMenu(QStringLiteral("File"))->addAction(QStringLiteral("Quit"));
    window->setMenuBar(bar);
    WindowButton &button = *window->menuButton();
    for (const bool stays : {true, false}) {
        QTest::mouseMove(&button, button.rect().center());
        QTRY_VERIFY(button.underMouse());
        QTest::mouseClick(&button, Qt::LeftButton);
        QWidget *menu = QApplication::activePopupWidget();
        QVERIFY(menu);
        if (!stays)
            QTest::mouseMove(menu, {5, 100}); // while the menu has the pointer
        menu->close();
        QCOMPARE(button.underMouse(), stays);
    }
}

void TestColorWindow::isTheRootOfAnInterfaceDescription()
{
    const QTemporaryDir folder;
    QFile description(folder.filePath(QStringLiteral("Sample.ui")));
    QVERIFY(description.open(QIODevice::WriteOnly));
    description.write(kDescription);
    description.close();
    InterfaceLoader loader(folder.path());
    loader.registerClass<ColorWindow>();
    const LoadedInterface loaded = loader.load(QStringLiteral("Sample"));
    QVERIFY2(loaded, loaded ? "" : qPrintable(loaded.error().text));
    auto &window = *qobject_cast<ColorWindow *>(loaded->get());
    QCOMPARE(window.contentView()->objectName(), QStringLiteral("page"));
    QCOMPARE(window.contentView()->geometry(), QRect(5, 20, 590, 375));
    QVERIFY(!window.menuButton()->isHidden());
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QSignalSpy quit(outlet<QAction>(window, "quit"), &QAction::triggered);
    QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(quit.count(), 1);
}

VANTOR_GUI_TEST_MAIN(TestColorWindow)
#include "tst_ColorWindow.moc"
