#include "app/navigation/WindowController.h"
#include "platform/desktop/InterfaceLoader.h"
#include "tests/support/run/GuiTestMain.h"

#include <QTemporaryDir>

/// Counts how often it was told that its window was loaded.
class SampleWindowController final : public WindowController
{
    Q_OBJECT

public:
    using WindowController::WindowController;

    int loads = 0;

protected:
    void windowDidLoad() override { ++loads; }
};

class TestWindowController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadsTheDescriptionOfItsClassOnFirstUse();
    void keepsTheWindowWhenItCloses();
    void makesANewWindowAfterTheOldOneDied();
    void comesUpInTheMiddleOfTheActiveWindow();
    void takesTheWindowWithIt();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<InterfaceLoader> m_loader;
};

void TestWindowController::initTestCase()
{
    QFile description(m_folder.filePath(QStringLiteral("SampleWindowController.ui")));
    QVERIFY(description.open(QIODevice::WriteOnly));
    description.write("<ui version=\"4.0\"><class>S</class>"
                      "<widget class=\"QWidget\" name=\"sample\"><property name=\"geometry\">"
                      "<rect><x>0</x><y>0</y><width>200</width><height>100</height></rect>"
                      "</property></widget></ui>");
    m_loader = std::make_unique<InterfaceLoader>(m_folder.path());
}

void TestWindowController::loadsTheDescriptionOfItsClassOnFirstUse()
{
    SampleWindowController controller(*m_loader);
    QVERIFY(!controller.isWindowLoaded());
    QCOMPARE(controller.window()->objectName(), QStringLiteral("sample"));
    QVERIFY(controller.isWindowLoaded());
    QVERIFY(!controller.window()->isVisible());
    QCOMPARE(controller.loads, 1);
}

void TestWindowController::keepsTheWindowWhenItCloses()
{
    SampleWindowController controller(*m_loader);
    controller.showWindow();
    QVERIFY(QTest::qWaitForWindowActive(controller.window()));
    const QPointer<QWidget> window = controller.window();
    window->close();
    controller.showWindow();
    QCOMPARE(controller.window(), window.data());
    QVERIFY(window->isVisible());
    QCOMPARE(controller.loads, 1);
}

void TestWindowController::makesANewWindowAfterTheOldOneDied()
{
    SampleWindowController controller(*m_loader);
    delete controller.window();
    QVERIFY(controller.window());
    QCOMPARE(controller.loads, 2);
}

void TestWindowController::comesUpInTheMiddleOfTheActiveWindow()
{
    QWidget active;
    active.setGeometry(200, 100, 400, 300);
    active.show();
    QVERIFY(QTest::qWaitForWindowActive(&active));
    SampleWindowController controller(*m_loader);
    controller.showWindow();
    const QRect window = controller.window()->geometry();
    const QPoint away = window.center() - active.geometry().center();
    QVERIFY(away.manhattanLength() <= 4); // as wide as the frame that the desktop may add
    // The user's choice of a position is kept.
    controller.window()->move(10, 20);
    controller.window()->close();
    active.activateWindow();
    controller.showWindow();
    QCOMPARE(controller.window()->pos(), QPoint(10, 20));
}

void TestWindowController::takesTheWindowWithIt()
{
    auto controller = std::make_unique<SampleWindowController>(*m_loader);
    const QPointer<QWidget> window = controller->window();
    controller.reset();
    QVERIFY(!window);
}

VANTOR_GUI_TEST_MAIN(TestWindowController)
#include "tst_WindowController.moc"
