#include "platform/OpenPanelView.h"

#include "platform/PanelButton.h"
#include "tests/support/GuiTestMain.h"
#include "tests/support/SheetHost.h"

#include <QDir>
#include <QPointer>
#include <latch>
#include <thread>

/// The panel of a home whose disk takes its time.
class TestOpenPanelView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsThePlacesBesideTheMainThread();
    void isUpWhileTheDiskDoesNotAnswer();
    void goesWithoutWaitingForTheDisk();
    void startsInTheHomeWhereTheFolderIsNone_data();
    void startsInTheHomeWhereTheFolderIsNone();
    void offersThePlacesThatAreThere();
};

void TestOpenPanelView::findsThePlacesBesideTheMainThread()
{
    std::thread::id asked;
    const OpenPanelView view({}, [&asked](const QByteArray &wanted) {
        asked = std::this_thread::get_id();
        return findChooserPlaces(wanted);
    });
    QTRY_VERIFY(view.findChild<FileChooser *>());
    QVERIFY(asked != std::this_thread::get_id());
}

void TestOpenPanelView::isUpWhileTheDiskDoesNotAnswer()
{
    std::latch gate(1);
    OpenPanel panel;
    panel.title = QStringLiteral("Take");
    OpenPanelView view(panel, [&gate](const QByteArray &wanted) {
        gate.wait();
        return findChooserPlaces(wanted);
    });
    SheetHost host;
    presentSheet(host.window, view, {});
    QTRY_VERIFY(view.isVisible());
    const auto buttons = view.findChildren<PanelButton *>();
    const auto take = std::ranges::find_if(
        buttons, [](const PanelButton *button) { return button->text() == QLatin1String("Take"); });
    QVERIFY(take != buttons.end() && !(*take)->isEnabled());
    QVERIFY(!view.findChild<FileChooser *>());
    gate.count_down();
    QTRY_VERIFY(view.findChild<FileChooser *>());
    QTRY_VERIFY(view.findChild<FileChooser *>()->isVisible());
    QVERIFY((*take)->isEnabled());
    endSheet(view, kSheetCancelled);
    QTRY_VERIFY(!hasSheet(host.window));
}

void TestOpenPanelView::goesWithoutWaitingForTheDisk()
{
    const auto gate = std::make_shared<std::latch>(1);
    const auto isOver = std::make_shared<std::latch>(1);
    {
        const OpenPanelView view({}, [gate, isOver](const QByteArray &) {
            gate->wait();
            isOver->count_down();
            return ChooserPlaces();
        });
    }
    gate->count_down(); // else this would never be reached
    isOver->wait();
    QCoreApplication::processEvents();
}

void TestOpenPanelView::startsInTheHomeWhereTheFolderIsNone_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("start");
    const QString home = QDir::homePath();
    QDir::home().mkpath(QStringLiteral("Movies"));
    QVERIFY(QFile(home + QStringLiteral("/notes.txt")).open(QIODevice::WriteOnly));
    QTest::addRow("nothing wanted") << QString() << home;
    QTest::addRow("a folder") << home + QStringLiteral("/Movies")
                              << home + QStringLiteral("/Movies");
    QTest::addRow("not there") << home + QStringLiteral("/missing") << home;
    QTest::addRow("a file") << home + QStringLiteral("/notes.txt") << home;
}

void TestOpenPanelView::startsInTheHomeWhereTheFolderIsNone()
{
    QFETCH(QString, wanted);
    QTEST(findChooserPlaces(QFile::encodeName(wanted)).start, "start");
}

void TestOpenPanelView::offersThePlacesThatAreThere()
{
    QDir::home().mkpath(QStringLiteral("Music"));
    const QUrl music = QUrl::fromLocalFile(QDir::home().filePath(QStringLiteral("Music")));
    const QUrl pictures = QUrl::fromLocalFile(QDir::home().filePath(QStringLiteral("Pictures")));
    const QList<QUrl> places = findChooserPlaces({}).sidebar;
    QCOMPARE(places.constFirst(), QUrl::fromLocalFile(QDir::homePath()));
    QVERIFY(places.contains(music));
    QVERIFY(!places.contains(pictures));
    QCOMPARE(places.constLast(), QUrl(QStringLiteral("file:")));
}

VANTOR_GUI_TEST_MAIN(TestOpenPanelView)
#include "tst_OpenPanelView.moc"
