#include "prefs/window/WindowButton.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>

/// Each button is alone in a window that the pointer starts outside of.
class TestWindowButton final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void hasItsDrawingsSize();
    void looksPaleWhileAnotherWindowIsActive();
    void showsItsColourUnderThePointer_data();
    void showsItsColourUnderThePointer();
    void losesItsColourWhenThePointerLeavesTheWindow();
    void showsThatItIsPressed();
    void isSharpOnAFineScreen();
    void keepsTheFocusAway();
    void saysItsName_data();
    void saysItsName();

private:
    std::unique_ptr<WindowButton> add(WindowButtonKind kind);
    QColor edgeColour(WindowButton &button) const;

    std::unique_ptr<QWidget> m_window;
};

Q_DECLARE_METATYPE(WindowButtonKind)

void TestWindowButton::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->setGeometry(300, 300, 100, 60);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTest::mouseMove(m_window.get(), {90, 50});
}

void TestWindowButton::cleanup()
{
    m_window.reset();
}

std::unique_ptr<WindowButton> TestWindowButton::add(WindowButtonKind kind)
{
    auto button = std::make_unique<WindowButton>(kind, m_window.get());
    button->move(10, 10);
    button->show();
    return button;
}

/// The disc beside its sign.
QColor TestWindowButton::edgeColour(WindowButton &button) const
{
    return button.grab().toImage().pixelColor(2, 7);
}

void TestWindowButton::hasItsDrawingsSize()
{
    QCOMPARE(WindowButton(WindowButtonKind::Close).size(), QSize(14, 14));
    QCOMPARE(WindowButton(WindowButtonKind::Minimize).sizeHint(), QSize(14, 14));
}

void TestWindowButton::looksPaleWhileAnotherWindowIsActive()
{
    const auto button = add(WindowButtonKind::Close);
    const QImage active = button->grab().toImage();
    QWidget other;
    other.setGeometry(0, 0, 50, 50);
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    const QImage inactive = button->grab().toImage();
    QVERIFY(inactive != active);
    QVERIFY(inactive.pixelColor(7, 7).lightness() > active.pixelColor(7, 7).lightness());
}

void TestWindowButton::showsItsColourUnderThePointer_data()
{
    QTest::addColumn<WindowButtonKind>("kind");
    QTest::addColumn<QColor>("colour");
    QTest::addRow("close") << WindowButtonKind::Close << QColor(0xe8, 0x63, 0x5a);
    QTest::addRow("minimise") << WindowButtonKind::Minimize << QColor(0xf2, 0xaf, 0x25);
    QTest::addRow("menu") << WindowButtonKind::Menu << QColor(0x3e, 0xad, 0xe4);
}

void TestWindowButton::showsItsColourUnderThePointer()
{
    QFETCH(WindowButtonKind, kind);
    QFETCH(QColor, colour);
    const auto button = add(kind);
    QVERIFY(edgeColour(*button).saturation() < 20);
    QTest::mouseMove(m_window.get(), {17, 17});
    QTRY_COMPARE(edgeColour(*button), colour);
    QTest::mouseMove(m_window.get(), {80, 50});
    QTRY_VERIFY(edgeColour(*button).saturation() < 20);
}

void TestWindowButton::losesItsColourWhenThePointerLeavesTheWindow()
{
    const auto button = add(WindowButtonKind::Close);
    const QColor before = edgeColour(*button);
    QTest::mouseMove(m_window.get(), {17, 17});
    QTRY_VERIFY(edgeColour(*button) != before);
    // In one leap, without crossing another part of the window.
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(m_window->windowHandle(), &leave);
    QCOMPARE(edgeColour(*button), before);
}

void TestWindowButton::showsThatItIsPressed()
{
    const auto button = add(WindowButtonKind::Close);
    QTest::mousePress(button.get(), Qt::LeftButton);
    QCOMPARE(edgeColour(*button), QColor(0xcf, 0x4b, 0x43));
    QTest::mouseRelease(button.get(), Qt::LeftButton);
}

void TestWindowButton::isSharpOnAFineScreen()
{
    const auto button = add(WindowButtonKind::Minimize);
    QImage image(button->size() * 2, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(2);
    image.fill(Qt::transparent);
    button->render(&image, {}, {}, QWidget::DrawChildren);
    // The disc, its corners empty.
    QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(image.pixelColor(14, 4).alpha(), 255);
}

void TestWindowButton::keepsTheFocusAway()
{
    QCOMPARE(WindowButton(WindowButtonKind::Close).focusPolicy(), Qt::NoFocus);
}

void TestWindowButton::saysItsName_data()
{
    QTest::addColumn<WindowButtonKind>("kind");
    QTest::addColumn<QString>("name");
    QTest::addRow("close") << WindowButtonKind::Close << QStringLiteral("Close");
    QTest::addRow("minimise") << WindowButtonKind::Minimize << QStringLiteral("Minimize");
    QTest::addRow("menu") << WindowButtonKind::Menu << QStringLiteral("Menu");
}

void TestWindowButton::saysItsName()
{
    QFETCH(WindowButtonKind, kind);
    WindowButton button(kind);
    const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(&button);
    QTEST(spoken->text(QAccessible::Name), "name");
    QCOMPARE(spoken->role(), QAccessible::Button);
}

VANTOR_GUI_TEST_MAIN(TestWindowButton)
#include "tst_WindowButton.moc"
