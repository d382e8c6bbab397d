#include "platform/system/HostSystemCalls.h"
#include "prefs/tutorial/WebTutorialView.h"

#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/sheet/Sheet.h"
#include "prefs/exclusions/InterfaceClasses.h"
#include "prefs/tutorial/DemoWindowController.h"
#include "prefs/tutorial/TextTutorialView.h"
#include "prefs/tutorial/WebTutorial.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/RecordingServer.h"
#include "widgets/InterfaceClasses.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWebEngineScript>
#include <QWebEngineView>
#include <csignal>

namespace {

/// The engine's first start reads much from the disk.
constexpr int kPatience = 20000;
const QUrl kPage(QStringLiteral("qrc:/tutorialVantor.html"));

} // namespace

/// The tutorial shown by the web engine itself, loaded as the program loads it.
class TestWebTutorialView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsThePage();
    void movesItsPictures();
    void standsStillWhereTheDesktopDoes();
    void showsTheTypefaceAndThePicturesOfTheProgram();
    void asksNothingOfTheNetwork();
    void leadsNowhere();
    void showsNothingForAMissingPage();
    void letsItsProcessGoWhileHidden();
    void goesOnAsRichTextWhenItsProcessDies();
    void isRichTextForAScreenReader();
    void givesTheKeysToTheSheet_data();
    void givesTheKeysToTheSheet();
    void reachesTheControlsByTab();
    void isNotUsedWhereItMayNotStart();

private:
    WebTutorialView &load(const QUrl &page = kPage, QStyle *style = nullptr);
    void present();
    QWebEnginePage &page() const { return *m_view->findChild<QWebEngineView *>()->page(); }
    QVariant ask(const QString &script) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<WebTutorial> m_tutorial;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<InterfaceLoader> m_loader;
    std::unique_ptr<QWidget> m_host;
    std::unique_ptr<DemoWindowController> m_demo;
    QPointer<WebTutorialView> m_view;
};

void TestWebTutorialView::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_tutorial = std::make_unique<WebTutorial>(
        WebTutorialFiles{.plugin = QStringLiteral(VANTOR_TUTORIAL_PLUGIN),
                         .probe = QStringLiteral(VANTOR_TUTORIAL_PROBE)});
    QSignalSpy probed(m_tutorial.get(), &WebTutorial::probed);
    m_tutorial->probe();
    QTRY_COMPARE_WITH_TIMEOUT(probed.count(), 1, kPatience);
    QVERIFY(m_tutorial->isUsable());
    m_host = std::make_unique<QWidget>();
    m_host->resize(860, 680);
    m_host->show();
    QVERIFY(QTest::qWaitForWindowActive(m_host.get()));
}

void TestWebTutorialView::cleanup()
{
    m_demo.reset();
    m_host.reset();
    m_tutorial.reset();
    m_defaults.reset();
}

WebTutorialView &TestWebTutorialView::load(const QUrl &page, QStyle *style)
{
    m_view = new WebTutorialView(*m_tutorial, m_host.get());
    QSignalSpy loaded(m_view, &WebTutorialView::loaded);
    m_view->resize(680, 500);
    m_view->show();
    m_view->setStyle(style);
    m_view->load(page);
    if (loaded.isEmpty())
        loaded.wait(kPatience);
    return *m_view;
}

/// The tutorial as a sheet, loaded.
void TestWebTutorialView::present()
{
    m_defaults = std::make_unique<UserDefaults>(m_folder->path(), hostSystemCalls());
    m_loader = std::make_unique<InterfaceLoader>();
    registerWidgetClasses(*m_loader);
    registerPrefsClasses(*m_loader);
    m_loader->registerClass(QStringLiteral("TutorialView"), [this](QWidget *parent) -> QWidget * {
        return new WebTutorialView(*m_tutorial, parent);
    });
    m_demo = std::make_unique<DemoWindowController>(*m_loader, *m_defaults);
    m_demo->window();
    m_view = qobject_cast<WebTutorialView *>(m_demo->webview());
    QSignalSpy loaded(m_view, &WebTutorialView::loaded);
    QVERIFY(presentSheet(*m_host, *m_demo->window()));
    QTRY_COMPARE_WITH_TIMEOUT(loaded.count(), 1, kPatience);
    QVERIFY(m_view->isWeb());
}

/// What a script of the test finds on the page. The page's own scripts may not run.
QVariant TestWebTutorialView::ask(const QString &script) const
{
    QVariant answer;
    bool hasAnswer = false;
    page().runJavaScript(script, QWebEngineScript::ApplicationWorld, [&](const QVariant &result) {
        answer = result;
        hasAnswer = true;
    });
    return QTest::qWaitFor([&] { return hasAnswer; }, kPatience) ? answer : QVariant();
}

void TestWebTutorialView::showsThePage()
{
    QVERIFY(load().isWeb());
    QCOMPARE(page().title(), QStringLiteral("How Vantor works"));
    // The picture of the first step, a blue folder, comes in with the step.
    const auto blue = [this] {
        const QImage image = m_view->grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            count += image.pixelColor(100, y).blue() > image.pixelColor(100, y).red() + 60;
        return count;
    };
    QTRY_VERIFY_WITH_TIMEOUT(blue() > 40, kPatience);
    QVERIFY(m_view->grab().toImage().pixelColor(4, 250) == QColor(Qt::white));
}

void TestWebTutorialView::movesItsPictures()
{
    load();
    // When the steps have come in, only what moves within the pictures is left.
    const QString haveArrived =
        QStringLiteral("document.getAnimations().every(a => a.playState == 'finished')");
    QTRY_COMPARE_WITH_TIMEOUT(ask(haveArrived), QVariant(true), kPatience);
    ask(QStringLiteral("document.images[2].scrollIntoView(); 0"));
    const QRect picture(36, 0, 140, 130);
    const QImage before = m_view->grab(picture).toImage();
    QTRY_VERIFY_WITH_TIMEOUT(m_view->grab(picture).toImage() != before, kPatience);
    const QImage scrolled = m_view->grab(picture).toImage();
    QTRY_VERIFY_WITH_TIMEOUT(m_view->grab(picture).toImage() != scrolled, kPatience);
}

void TestWebTutorialView::standsStillWhereTheDesktopDoes()
{
    const QString moving = QStringLiteral("document.getAnimations().length > 0");
    load();
    QCOMPARE(ask(moving), QVariant(true));
    delete m_view;
    StillStyle still;
    load(kPage, &still);
    QVERIFY(m_view->isWeb());
    QCOMPARE(ask(moving), QVariant(false));
    delete m_view;
}

void TestWebTutorialView::showsTheTypefaceAndThePicturesOfTheProgram()
{
    load();
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("document.fonts.status")),
                              QVariant(QStringLiteral("loaded")), kPatience);
    QCOMPARE(ask(QStringLiteral("[...document.fonts].filter(f => f.status == 'error').length")),
             QVariant(0));
    QVERIFY(ask(QStringLiteral("[...document.fonts].filter(f => f.status == 'loaded').length"))
                .toInt() >= 3);
    QTRY_COMPARE_WITH_TIMEOUT(
        ask(QStringLiteral("[...document.images].filter(i => i.naturalWidth > 0).length")),
        QVariant(6), kPatience);
}

void TestWebTutorialView::asksNothingOfTheNetwork()
{
    RecordingServer server;
    load();
    ask(QStringLiteral("window.ended = 0; const end = () => { ++window.ended; };"
                       "const image = new Image(); image.onload = end; image.onerror = end;"
                       "image.src = '%1'; fetch('%1').then(end, end);"
                       "const sheet = document.createElement('link'); sheet.rel = 'stylesheet';"
                       "sheet.onload = end; sheet.onerror = end; sheet.href = '%1';"
                       "document.head.append(sheet); 0")
            .arg(server.address(QStringLiteral("/asked"))));
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("window.ended")), QVariant(3), kPatience);
    QCOMPARE(server.requests(), QStringList());
}

void TestWebTutorialView::leadsNowhere()
{
    RecordingServer server;
    server.servePage(QStringLiteral("/there"), "<title>There</title>");
    load();
    QSignalSpy changed(&page(), &QWebEnginePage::urlChanged);
    ask(QStringLiteral("location.href = '%1'; 0").arg(server.address(QStringLiteral("/there"))));
    page().load(QUrl(server.address(QStringLiteral("/there"))));
    page().load(QUrl(QStringLiteral("file:///etc/hostname")));
    QCOMPARE(ask(QStringLiteral("document.title")), QVariant(QStringLiteral("How Vantor works")));
    QCOMPARE(server.requests(), QStringList());
}

void TestWebTutorialView::showsNothingForAMissingPage()
{
    const LogRecorder log;
    load(QUrl(QStringLiteral("qrc:/missing.html")));
    QVERIFY(!m_view->isWeb());
    QCOMPARE(m_view->findChild<TextTutorialView *>()->plainText(), QString());
}

void TestWebTutorialView::letsItsProcessGoWhileHidden()
{
    load();
    QVERIFY(page().renderProcessPid() > 0);
    m_view->hide();
    QTRY_COMPARE_WITH_TIMEOUT(page().lifecycleState(), QWebEnginePage::LifecycleState::Discarded,
                              kPatience);
    m_view->show();
    QTRY_VERIFY_WITH_TIMEOUT(page().renderProcessPid() > 0, kPatience);
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("document.title")),
                              QVariant(QStringLiteral("How Vantor works")), kPatience);
    QVERIFY(m_view->isWeb());
}

void TestWebTutorialView::goesOnAsRichTextWhenItsProcessDies()
{
    const LogRecorder log;
    load();
    m_view->setFocus();
    QCOMPARE(::kill(pid_t(page().renderProcessPid()), SIGKILL), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!m_view->isWeb(), kPatience);
    const auto *text = m_view->findChild<TextTutorialView *>();
    QVERIFY(text->plainText().startsWith(QStringLiteral("How Vantor works")));
    QVERIFY(text->isVisible());
    QVERIFY(text->isAncestorOf(QApplication::focusWidget()));
    QCOMPARE(log.lines(), QStringList{QStringLiteral("The web engine gave the tutorial up.")});
}

void TestWebTutorialView::isRichTextForAScreenReader()
{
    load();
    QVERIFY(m_view->isWeb());
    QAccessible::setActive(true); // it is switched on while the page is shown
    QVERIFY(!m_view->isWeb());
    load(); // and is on already
    QVERIFY(!m_view->isWeb());
    QAccessible::setActive(false);
    load();
    QVERIFY(m_view->isWeb());
}

void TestWebTutorialView::givesTheKeysToTheSheet_data()
{
    QTest::addColumn<int>("key");
    QTest::addRow("Escape") << int(Qt::Key_Escape);
    QTest::addRow("Return") << int(Qt::Key_Return);
    QTest::addRow("Enter") << int(Qt::Key_Enter);
}

void TestWebTutorialView::givesTheKeysToTheSheet()
{
    QFETCH(int, key);
    present();
    QVERIFY(m_view->isAncestorOf(QApplication::focusWidget()));
    QTest::keyClick(m_host->windowHandle(), Qt::Key(key));
    QTRY_VERIFY(!hasSheet(*m_host));
}

void TestWebTutorialView::reachesTheControlsByTab()
{
    present();
    const auto press = [this](Qt::Key key) {
        QTest::keyClick(m_host->windowHandle(), key,
                        key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    };
    const auto *ok = outlet<QAbstractButton>(*m_demo->window(), "okButton");
    QVERIFY(m_view->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_Tab);
    QTRY_COMPARE(QApplication::focusWidget(), m_demo->checkbox());
    press(Qt::Key_Tab);
    QTRY_COMPARE(QApplication::focusWidget(), ok);
    press(Qt::Key_Tab);
    QTRY_VERIFY(m_view->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_Backtab);
    QTRY_COMPARE(QApplication::focusWidget(), ok);
    press(Qt::Key_Backtab);
    QTRY_COMPARE(QApplication::focusWidget(), m_demo->checkbox());
}

void TestWebTutorialView::isNotUsedWhereItMayNotStart()
{
    const LogRecorder log;
    // The engine looks for its own processes' program there, and ends without it.
    qputenv("QTWEBENGINEPROCESS_PATH", QFile::encodeName(m_folder->filePath(QStringLiteral("no"))));
    WebTutorial tutorial({.plugin = QStringLiteral(VANTOR_TUTORIAL_PLUGIN),
                          .probe = QStringLiteral(VANTOR_TUTORIAL_PROBE)});
    QSignalSpy probed(&tutorial, &WebTutorial::probed);
    tutorial.probe();
    const bool isProbed = probed.wait(kPatience);
    qunsetenv("QTWEBENGINEPROCESS_PATH");
    QVERIFY(isProbed);
    QVERIFY(!tutorial.isUsable());
}

VANTOR_GUI_TEST_MAIN(TestWebTutorialView)
#include "tst_WebTutorialView.moc"
