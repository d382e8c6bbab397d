#include "app/grant/ResourceManager.h"
#include "app/settings/ExcludedFilesChangedNotification.h"
#include "app/settings/SettingsKeys.h"
#include "chart/PieChart.h"
#include "platform/look/Images.h"
#include "platform/look/ViewAlpha.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/page/FreeSpaceViewController.h"
#include "tests/support/calls/WatchedSystemCalls.h"
#include "tests/support/page/PageFixture.h"
#include "tests/support/page/RecordingPageDelegate.h"
#include "tests/support/page/RunningFade.h"
#include "tests/support/page/SheetDriver.h"
#include "tests/support/run/GuiTestMain.h"
#include "widgets/StartButton.h"
#include "widgets/TextField.h"

#include <QLabel>
#include <QSemaphore>

/// What may happen between the user's consent and the first removal: the slices are still being
/// measured meanwhile, here for as long as the test wants.
class TestFreeSpaceCleaning final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void removesWhatWasConfirmed();
    void asksAsBeforeAGreatDanger();
    void showsOnlyTheButtonWhileItCleans();
    void keepsWhatIsExcludedAfterTheConsent();
    void removesNothingOnceTheExclusionsAreUnknown();
    void removesNothingOnceThePageIsLeft();
    void removesNothingOnceNothingIsSelected();
    void removesOnlyTheChoiceThatWasConfirmed_data();
    void removesOnlyTheChoiceThatWasConfirmed();
    void asksNothingWhileAnExclusionCannotBeRead();
    void freesNothingWhenAnExclusionBecomesUnreadable();
    void ignoresEveryWishWhileItCleans();

private:
    bool consent();
    void goOn(const std::function<void()> &then);
    void letMeasuresEnd() { m_gate.release(100); }
    void exclude(const QByteArray &relativePath, UserDefaults &defaults);
    QString buttonText() const { return m_page->startButton()->mainText().text(); }

    std::unique_ptr<PageFixture> m_fixture;
    std::function<void()> *m_whenGrantIsUsable = nullptr; ///< kept there; at once without
    QSemaphore m_gate;
    WatchedSystemCalls m_calls{[this](int, WatchedCall call, const char *) {
        if (call == WatchedCall::ReadEntries)
            m_gate.acquire();
        return 0;
    }};
    std::unique_ptr<FreeSpaceViewController> m_page;
    RecordingPageDelegate m_delegate;
    ExcludedFilesChangedNotification m_excludedFilesChanged;
};

void TestFreeSpaceCleaning::init()
{
    m_whenGrantIsUsable = nullptr;
    m_delegate.moves.clear();
    m_gate.tryAcquire(m_gate.available());
    m_fixture = std::make_unique<PageFixture>();
    m_fixture->grantHome();
    m_fixture->makeFile(".Trash/keep", 1000);
    m_fixture->makeFile(".Trash/other", 234);
    m_fixture->defaults().setBoolean(VNTHideDemoWindowString, true);
    m_fixture->defaults().setBooleans(VNTSelectedSlicesString,
                                      {true, false, false, false, false, false, false, false});
    m_page = std::make_unique<FreeSpaceViewController>(
        m_fixture->loader(),
        FreeSpaceViewController::Services{
            m_fixture->defaults(), m_calls, ResourceManager::access(), m_fixture->workspace(),
            m_excludedFilesChanged, &ResourceManager::homeFolder,
            [this](const auto &then, const auto &) { goOn(then); }, PageFixture::madeVolume()});
    m_page->setDelegate(&m_delegate);
    m_page->view()->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page->view()));
    m_page->viewWillAppear(true);
    m_page->viewDidAppear(true);
}

void TestFreeSpaceCleaning::cleanup()
{
    letMeasuresEnd();
    m_page.reset();
    awaitBackgroundThreads();
    QCOMPARE(ResourceManager::accessCount(), 0);
    m_fixture.reset();
}

/// Asks for the cleaning and confirms it, while the slices are still being measured.
bool TestFreeSpaceCleaning::consent()
{
    m_page->next();
    return pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")) &&
           m_page->isCleaning();
}

void TestFreeSpaceCleaning::goOn(const std::function<void()> &then)
{
    if (m_whenGrantIsUsable)
        *m_whenGrantIsUsable = then;
    else
        then();
}

void TestFreeSpaceCleaning::exclude(const QByteArray &relativePath, UserDefaults &defaults)
{
    const FileUrl url = m_fixture->homeUrl().appending(relativePath, FileUrlKind::File);
    defaults.setStrings(VNTExcludedPathsString, {QString::fromLatin1(url.absoluteString())});
}

void TestFreeSpaceCleaning::removesWhatWasConfirmed()
{
    QVERIFY(consent());
    QCOMPARE(buttonText(), QStringLiteral("Cleaning"));
    QVERIFY(m_fixture->exists(".Trash/keep"));
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{1234}));
    QVERIFY(!m_fixture->exists(".Trash/keep") && !m_fixture->exists(".Trash/other"));
    QVERIFY(m_fixture->exists(".Trash"));
    QCOMPARE(m_page->startButton()->detailText().text(), QString()); // it goes out as it is
}

void TestFreeSpaceCleaning::asksAsBeforeAGreatDanger()
{
    m_page->next();
    QTRY_VERIFY(sheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QImage symbol;
    for (const QLabel *label : sheetPanel(*m_page->view())->findChildren<QLabel *>()) {
        if (!label->pixmap(Qt::ReturnByValue).isNull())
            symbol = label->pixmap(Qt::ReturnByValue).toImage();
    }
    QCOMPARE(symbol, imageNamed(QStringLiteral("alertCritical"), symbol.devicePixelRatio(),
                                symbol.deviceIndependentSize().toSize())
                         .toImage());
}

void TestFreeSpaceCleaning::showsOnlyTheButtonWhileItCleans()
{
    QVERIFY(consent());
    StartButton &button = *m_page->startButton();
    QCOMPARE(button.detailText().text(), QString());
    QVERIFY(!button.isEnabled());
    QCOMPARE(alphaValue(button), 1.0);
    QVERIFY(!m_page->pieChart()->drawShadow());
    for (const auto &layer : m_page->pieChart()->sliceLayers())
        QCOMPARE(layer->endAngle(), m_page->pieChart()->startPieAngle()); // it folds
    for (const char *name : {"legendImageView", "freeLabel", "usedLabel", "totalLabel"}) {
        const auto *subview = m_page->view()->findChild<QWidget *>(QLatin1String(name));
        QVERIFY(subview && isFading(*subview, 0, std::chrono::milliseconds(250)));
    }
    QCOMPARE(alphaValue(*m_page->pieChart()), 1.0);
    QVERIFY(!isFading(*m_page->pieChart(), 0, std::chrono::milliseconds(250)));
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    m_page->viewWillDisappear(true);
    m_page->viewWillAppear(true); // the user scans again
    for (const QWidget *subview :
         m_page->view()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
        QCOMPARE(alphaValue(*subview), 1.0);
}

void TestFreeSpaceCleaning::keepsWhatIsExcludedAfterTheConsent()
{
    QVERIFY(consent());
    exclude(".Trash/keep", m_fixture->defaults());
    m_excludedFilesChanged.post();
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QVERIFY(m_fixture->exists(".Trash/keep"));
    QVERIFY(!m_fixture->exists(".Trash/other"));
}

void TestFreeSpaceCleaning::removesNothingOnceTheExclusionsAreUnknown()
{
    QVERIFY(consent());
    // Another program spoils the settings, and this one finds out.
    QVERIFY(m_fixture->defaults().synchronize());
    QFile file(QFile::decodeName(m_fixture->folder().path("settings/settings.json")));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("damaged") > 0);
    file.close();
    m_fixture->defaults().setInteger(VNTTotalCleanedSize, 1);
    QVERIFY(!m_fixture->defaults().synchronize());
    QTRY_VERIFY(!m_fixture->defaults().exclusionsAreKnown());
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{0}));
    QVERIFY(m_fixture->exists(".Trash/keep") && m_fixture->exists(".Trash/other"));
}

void TestFreeSpaceCleaning::removesNothingOnceThePageIsLeft()
{
    m_page->next();
    QTRY_VERIFY(sheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    m_page->viewWillDisappear(true);
    if (hasSheet(*m_page->view()))
        QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QVERIFY(!m_page->isCleaning());
    letMeasuresEnd();
    awaitBackgroundThreads();
    QVERIFY(m_fixture->exists(".Trash/keep") && m_fixture->exists(".Trash/other"));
}

void TestFreeSpaceCleaning::removesNothingOnceNothingIsSelected()
{
    m_page->next();
    QTRY_VERIFY(sheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    const FileUrl trash = m_fixture->homeUrl().appending(".Trash", FileUrlKind::Folder);
    m_fixture->defaults().setStrings(VNTExcludedPathsString,
                                     {QString::fromLatin1(trash.absoluteString())});
    m_excludedFilesChanged.post(); // takes the only slice out
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QVERIFY(!m_page->isCleaning());
    QCOMPARE(m_delegate.moves.size(), 0);
}

void TestFreeSpaceCleaning::removesOnlyTheChoiceThatWasConfirmed_data()
{
    using Meanwhile = std::function<void(FreeSpaceViewController &)>;
    QTest::addColumn<Meanwhile>("meanwhile");
    QTest::addColumn<bool>("isCleaned");
    QTest::addRow("the same") << Meanwhile([](auto &) {}) << true;
    QTest::addRow("one more") << Meanwhile([](auto &page) {
        page.didSelectSliceAtIndex(*page.pieChart(), indexOf(SliceKind::Downloads));
    }) << false;
    QTest::addRow("none") << Meanwhile([](auto &page) {
        page.didSelectSliceAtIndex(*page.pieChart(), indexOf(SliceKind::Trash));
    }) << false;
    QTest::addRow("the page is left")
        << Meanwhile([](auto &page) { page.viewWillDisappear(true); }) << false;
}

/// While the disk is asked whether it still is the granted folder, the page is there to be used.
void TestFreeSpaceCleaning::removesOnlyTheChoiceThatWasConfirmed()
{
    QFETCH(std::function<void(FreeSpaceViewController &)>, meanwhile);
    m_page->next();
    std::function<void()> then;
    m_whenGrantIsUsable = &then;
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QVERIFY(then && !m_page->isCleaning());
    meanwhile(*m_page);
    then();
    QTEST(m_page->isCleaning(), "isCleaned");
}

void TestFreeSpaceCleaning::asksNothingWhileAnExclusionCannotBeRead()
{
    m_fixture->defaults().setStrings(VNTExcludedPathsString, {QStringLiteral("nonsense")});
    m_page->next();
    QTRY_VERIFY(sheetButton(*m_page->view(), QStringLiteral("OK")));
    QVERIFY(sheetText(*m_page->view()).contains(QStringLiteral("nonsense")));
    QVERIFY(!sheetButton(*m_page->view(), QStringLiteral("Delete Files")));
    QVERIFY(pressSheetButton(*m_page->view(), QStringLiteral("OK")));
    QVERIFY(m_fixture->exists(".Trash/keep"));
}

void TestFreeSpaceCleaning::freesNothingWhenAnExclusionBecomesUnreadable()
{
    QVERIFY(consent());
    m_fixture->defaults().setStrings(VNTExcludedPathsString, {QStringLiteral("nonsense")});
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
    QCOMPARE(m_delegate.moves[0].data, QVariant(qint64{0}));
    QVERIFY(m_fixture->exists(".Trash/keep"));
}

void TestFreeSpaceCleaning::ignoresEveryWishWhileItCleans()
{
    QVERIFY(consent());
    m_page->next();
    QVERIFY(!hasSheet(*m_page->view()));
    m_page->didSelectSliceAtIndex(*m_page->pieChart(), indexOf(SliceKind::Downloads));
    QVERIFY(!m_page->selection().record(SliceKind::Downloads).isOn());
    m_page->updateButtonText();
    QCOMPARE(buttonText(), QStringLiteral("Cleaning"));
    letMeasuresEnd();
    QTRY_COMPARE(m_delegate.moves.size(), 1);
}

VANTOR_GUI_TEST_MAIN(TestFreeSpaceCleaning)
#include "tst_FreeSpaceCleaning.moc"
