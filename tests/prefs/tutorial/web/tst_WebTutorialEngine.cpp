#include "prefs/tutorial/WebTutorial.h"
#include "prefs/tutorial/WebTutorialView.h"
#include "tests/support/run/GuiTestMain.h"

#include <QOpenGLContext>
#include <QRegularExpression>
#include <QSignalSpy>

namespace {

/// The engine's first start reads much from the disk.
constexpr int kPatience = 20000;

/// How much of the first picture, a blue folder, is to be seen.
int bluePixels(WebTutorialView &view)
{
    const QImage image = view.grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        count += image.pixelColor(100, y).blue() > image.pixelColor(100, y).red() + 60;
    return count;
}

} // namespace

/// The engine in an application that was not made for it, as the program: this test links no
/// engine, because with one linked the toolkit prepares the application by itself.
class TestWebTutorialEngine final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void showsThePageInAnApplicationNotMadeForIt();

private:
    std::unique_ptr<WebTutorial> m_tutorial;
};

void TestWebTutorialEngine::init()
{
    m_tutorial = std::make_unique<WebTutorial>(
        WebTutorialFiles{.plugin = QStringLiteral(VANTOR_TUTORIAL_PLUGIN),
                         .probe = QStringLiteral(VANTOR_TUTORIAL_PROBE)});
    QSignalSpy probed(m_tutorial.get(), &WebTutorial::probed);
    m_tutorial->probe();
    QTRY_COMPARE_WITH_TIMEOUT(probed.count(), 1, kPatience);
    QVERIFY(m_tutorial->isUsable());
}

void TestWebTutorialEngine::showsThePageInAnApplicationNotMadeForIt()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("before constructing")));
    WebTutorialView view(*m_tutorial);
    view.resize(680, 500);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(!QOpenGLContext::globalShareContext()); // the first window did without

    QSignalSpy loaded(&view, &WebTutorialView::loaded);
    view.load(QUrl(QStringLiteral("qrc:/tutorialVantor.html")));
    QTRY_COMPARE_WITH_TIMEOUT(loaded.count(), 1, kPatience);
    QVERIFY(view.isWeb());
    QTRY_VERIFY_WITH_TIMEOUT(bluePixels(view) > 40, kPatience);
    const QOpenGLContext *const shared = QOpenGLContext::globalShareContext();
    QVERIFY(shared && !shared->isValid()); // no driver was loaded for it
    QVERIFY(!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"));
    const QString picture = qEnvironmentVariable("VANTOR_TUTORIAL_PICTURE");
    QVERIFY(picture.isEmpty() || view.grab().save(picture));
}

VANTOR_GUI_TEST_MAIN(TestWebTutorialEngine)
#include "tst_WebTutorialEngine.moc"
