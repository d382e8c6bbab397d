#include "platform/desktop/Activation.h"
#include "tests/support/run/GuiTestMain.h"

#include <QWidget>

class TestActivation final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void readsThePermissionOfTheStart_data();
    void readsThePermissionOfTheStart();
    void bringsAWindowToTheFront_data();
    void bringsAWindowToTheFront();
    void leavesNoPermissionBehind();
};

void TestActivation::cleanup()
{
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
}

void TestActivation::readsThePermissionOfTheStart_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<QByteArray>("startupId");
    QTest::addColumn<QByteArray>("expected");
    QTest::addRow("none") << QByteArray() << QByteArray() << QByteArray();
    QTest::addRow("token") << QByteArray("a") << QByteArray() << QByteArray("a");
    QTest::addRow("start-up id") << QByteArray() << QByteArray("b") << QByteArray("b");
    QTest::addRow("both") << QByteArray("a") << QByteArray("b") << QByteArray("a");
}

void TestActivation::readsThePermissionOfTheStart()
{
    QFETCH(QByteArray, token);
    QFETCH(QByteArray, startupId);
    QFETCH(QByteArray, expected);
    qputenv("XDG_ACTIVATION_TOKEN", token);
    qputenv("DESKTOP_STARTUP_ID", startupId);
    QCOMPARE(givenActivation(), expected);
}

void TestActivation::bringsAWindowToTheFront_data()
{
    QTest::addColumn<Qt::WindowStates>("before");
    QTest::addColumn<Qt::WindowStates>("after");
    QTest::addRow("behind another") << Qt::WindowStates() << Qt::WindowStates();
    QTest::addRow("minimised") << Qt::WindowStates(Qt::WindowMinimized) << Qt::WindowStates();
    QTest::addRow("minimised and maximised")
        << Qt::WindowStates(Qt::WindowMinimized | Qt::WindowMaximized)
        << Qt::WindowStates(Qt::WindowMaximized);
}

void TestActivation::bringsAWindowToTheFront()
{
    QFETCH(Qt::WindowStates, before);
    QFETCH(Qt::WindowStates, after);
    QWidget window;
    window.show();
    window.setWindowState(before);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    bringToFront(window, "token");
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(window.windowState() & ~Qt::WindowActive, after);
}

/// A program that is started later would inherit it.
void TestActivation::leavesNoPermissionBehind()
{
    QWidget window;
    bringToFront(window, "token");
    QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
}

VANTOR_GUI_TEST_MAIN(TestActivation)
#include "tst_Activation.moc"
