#include "prefs/tutorial/TextTutorialView.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QFile>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBrowser>

class TestTextTutorialView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheTutorial();
    void showsNothingForAMissingPage();
    void namesNoPictureThatIsMissing();
    void showsItsPicturesSharply();
    void scrollsByKeyboard();
    void givesItsScrollBarsNoMenus();
    void isReadByAScreenReader();
    void fetchesNothingFromTheNetwork();
    void leavesTheStylesOfTheWebViewOut();
    void hasAStyleSheetThatNamesNothingThatIsMissing();
};

namespace {

const QUrl kPage(QStringLiteral("qrc:/tutorialVantor.html"));

QByteArray sourceOf(const QString &resource)
{
    QFile page(QStringLiteral(":/") + resource);
    return page.open(QIODevice::ReadOnly) ? page.readAll() : QByteArray();
}

QByteArray pageSource()
{
    return sourceOf(QStringLiteral("tutorialVantor.html"));
}

} // namespace

void TestTextTutorialView::showsTheTutorial()
{
    TextTutorialView view;
    view.load(kPage);
    for (const char *heading : {"How Vantor works", "Your home folder", "Your disk", "The slices",
                                "What was freed", "Large files", "What must stay"})
        QVERIFY2(view.plainText().contains(QLatin1String(heading)), heading);
}

void TestTextTutorialView::showsNothingForAMissingPage()
{
    TextTutorialView view;
    view.load(kPage);
    view.load(QUrl(QStringLiteral("qrc:/missing.html")));
    QCOMPARE(view.plainText(), QString());
}

void TestTextTutorialView::namesNoPictureThatIsMissing()
{
    static const QRegularExpression picture(QStringLiteral("src=\"([^\"]+)\""));
    auto found = picture.globalMatch(QString::fromUtf8(pageSource()));
    int count = 0;
    for (; found.hasNext(); ++count) {
        const QString name = found.next().captured(1);
        QVERIFY2(QFile::exists(QStringLiteral(":/") + name), qPrintable(name));
    }
    QCOMPARE(count, 6);
}

void TestTextTutorialView::showsItsPicturesSharply()
{
    TextTutorialView view;
    view.resize(680, 500);
    view.load(kPage);
    const auto *browser = view.findChild<QTextBrowser *>();
    const QVariant picture = browser->document()->resource(
        QTextDocument::ImageResource, QUrl(QStringLiteral("images/tutorialDisk.svg")));
    QCOMPARE(picture.value<QPixmap>().deviceIndependentSize(), QSizeF(120, 108));
    // The first picture, a blue folder, stands at the left of the first step.
    const QImage image = view.grab().toImage();
    int blue = 0;
    for (int y = 0; y < image.height(); ++y)
        blue += image.pixelColor(100, y).blue() > image.pixelColor(100, y).red() + 60;
    QVERIFY(blue > 40);
}

void TestTextTutorialView::scrollsByKeyboard()
{
    TextTutorialView view;
    view.resize(680, 300);
    view.load(kPage);
    view.show();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    const QImage before = view.grab().toImage();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
    QTRY_VERIFY(view.grab().toImage() != before);
}

/// Their menus would run an event loop of their own.
void TestTextTutorialView::givesItsScrollBarsNoMenus()
{
    const TextTutorialView view;
    for (const QScrollBar *bar : view.findChildren<QScrollBar *>())
        QCOMPARE(bar->contextMenuPolicy(), Qt::PreventContextMenu);
}

void TestTextTutorialView::isReadByAScreenReader()
{
    TextTutorialView view;
    view.load(kPage);
    QAccessibleInterface *spoken =
        QAccessible::queryAccessibleInterface(view.findChild<QTextBrowser *>());
    QVERIFY(spoken->textInterface());
    QCOMPARE(spoken->text(QAccessible::Name), QStringLiteral("Tutorial"));
    const QString text =
        spoken->textInterface()->text(0, spoken->textInterface()->characterCount());
    QVERIFY(text.contains(QStringLiteral("Click the slice Large Files")));
}

void TestTextTutorialView::fetchesNothingFromTheNetwork()
{
    const QByteArray source = pageSource();
    QVERIFY(!source.isEmpty());
    QVERIFY(!source.contains("http"));
    QVERIFY(!source.contains("<script"));
    const QByteArray styles = sourceOf(QStringLiteral("tutorialVantor.css"));
    QVERIFY(!styles.isEmpty());
    QVERIFY(!styles.contains("http"));
}

void TestTextTutorialView::leavesTheStylesOfTheWebViewOut()
{
    TextTutorialView view;
    view.load(kPage);
    const QTextDocument *document = view.findChild<QTextBrowser *>()->document();
    QVERIFY(pageSource().contains("tutorialVantor.css"));
    QCOMPARE(document->resource(QTextDocument::StyleSheetResource,
                                QUrl(QStringLiteral("tutorialVantor.css"))),
             QVariant());
}

void TestTextTutorialView::hasAStyleSheetThatNamesNothingThatIsMissing()
{
    static const QRegularExpression named(QStringLiteral("url\\(\"([^\"]+)\"\\)"));
    auto found =
        named.globalMatch(QString::fromUtf8(sourceOf(QStringLiteral("tutorialVantor.css"))));
    int count = 0;
    for (; found.hasNext(); ++count) {
        const QString name = found.next().captured(1);
        QVERIFY2(QFile::exists(QStringLiteral(":/") + name), qPrintable(name));
    }
    QCOMPARE(count, 7);
}

VANTOR_GUI_TEST_MAIN(TestTextTutorialView)
#include "tst_TextTutorialView.moc"
