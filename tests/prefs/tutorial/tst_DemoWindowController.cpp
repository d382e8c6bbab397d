#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/sheet/Sheet.h"
#include "platform/system/HostSystemCalls.h"
#include "prefs/exclusions/InterfaceClasses.h"
#include "prefs/tutorial/DemoWindowController.h"
#include "prefs/tutorial/TextTutorialView.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/ColorView.h"
#include "widgets/InterfaceClasses.h"

#include <QCheckBox>
#include <QTemporaryDir>

/// The tutorial as a sheet on a window, as the slices page shows it.
class TestDemoWindowController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsThePageOnWhite();
    void showsTheSetting_data();
    void showsTheSetting();
    void storesEveryChangeOfTheBoxAtOnce();
    void storesNoAgainInALaterShowing();
    void closesByOk();
    void closesByEscape();
    void scrollsByTheKeysAtOnce();
    void isLoadedOnce();
    void saysEveryControlsName();

private:
    void present();
    void pressOk();
    bool isHidden() const { return m_defaults->boolean(VNTHideDemoWindowString); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<InterfaceLoader> m_loader;
    std::unique_ptr<QWidget> m_host;
    std::unique_ptr<DemoWindowController> m_demo;
};

void TestDemoWindowController::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_defaults = std::make_unique<UserDefaults>(m_folder->path(), hostSystemCalls());
    m_loader = std::make_unique<InterfaceLoader>();
    registerWidgetClasses(*m_loader);
    registerPrefsClasses(*m_loader);
    m_host = std::make_unique<QWidget>();
    m_host->resize(860, 680);
    m_host->show();
    QVERIFY(QTest::qWaitForWindowActive(m_host.get()));
    m_demo = std::make_unique<DemoWindowController>(*m_loader, *m_defaults);
}

void TestDemoWindowController::cleanup()
{
    m_demo.reset();
    m_host.reset();
    m_defaults.reset();
}

void TestDemoWindowController::present()
{
    QVERIFY(presentSheet(*m_host, *m_demo->window()));
    QTRY_VERIFY(m_demo->window()->isVisible());
}

void TestDemoWindowController::pressOk()
{
    outlet<QAbstractButton>(*m_demo->window(), "okButton")->click();
    QTRY_VERIFY(!hasSheet(*m_host));
}

void TestDemoWindowController::showsThePageOnWhite()
{
    present();
    const auto *view = qobject_cast<TextTutorialView *>(m_demo->webview());
    QVERIFY(view->plainText().startsWith(QStringLiteral("How Vantor works")));
    QCOMPARE(outlet<ColorView>(*m_demo->window(), "contentView")->color(), QColor(Qt::white));
}

void TestDemoWindowController::showsTheSetting_data()
{
    QTest::addColumn<bool>("isHidden");
    QTest::addRow("shown again") << false;
    QTest::addRow("not shown again") << true;
}

void TestDemoWindowController::showsTheSetting()
{
    QFETCH(bool, isHidden);
    m_defaults->setBoolean(VNTHideDemoWindowString, isHidden);
    m_demo->window();
    QCOMPARE(m_demo->checkbox()->isChecked(), isHidden);
}

void TestDemoWindowController::storesEveryChangeOfTheBoxAtOnce()
{
    present();
    QVERIFY(!m_defaults->isStored(VNTHideDemoWindowString));
    m_demo->checkbox()->click();
    QVERIFY(isHidden());
    QVERIFY(hasSheet(*m_host));
    m_demo->checkbox()->click();
    QVERIFY(!isHidden());
    QVERIFY(m_defaults->isStored(VNTHideDemoWindowString));
    m_demo->checkbox()->click();
    pressOk();
    QVERIFY(isHidden());
}

void TestDemoWindowController::storesNoAgainInALaterShowing()
{
    present();
    m_demo->checkbox()->click();
    pressOk();
    // The user wants to see it again.
    m_defaults->setBoolean(VNTHideDemoWindowString, false);
    present();
    QVERIFY(!m_demo->checkbox()->isChecked());
    m_demo->checkbox()->click();
    QVERIFY(isHidden());
    m_demo->checkbox()->click();
    QVERIFY(!isHidden());
}

void TestDemoWindowController::closesByOk()
{
    present();
    pressOk();
    QVERIFY(!m_demo->window()->isVisible());
    QVERIFY(!isHidden());
}

void TestDemoWindowController::closesByEscape()
{
    present();
    QTest::keyClick(m_host->windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!hasSheet(*m_host));
}

void TestDemoWindowController::scrollsByTheKeysAtOnce()
{
    present();
    QVERIFY(m_demo->webview()->isAncestorOf(QApplication::focusWidget()));
}

void TestDemoWindowController::isLoadedOnce()
{
    present();
    const QWidget *window = m_demo->window();
    const TutorialView *view = m_demo->webview();
    pressOk();
    present();
    QCOMPARE(m_demo->window(), window);
    QCOMPARE(m_demo->webview(), view);
}

void TestDemoWindowController::saysEveryControlsName()
{
    for (const QAbstractButton *button : m_demo->window()->findChildren<QAbstractButton *>())
        QVERIFY(!button->text().isEmpty());
    QCOMPARE(m_demo->checkbox()->text(), QStringLiteral("Don\u2019t show this again"));
}

VANTOR_GUI_TEST_MAIN(TestDemoWindowController)
#include "tst_DemoWindowController.moc"
