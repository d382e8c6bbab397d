#include "platform/openpanel/OpenPanelView.h"

#include "platform/look/PanelButton.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/run/GuiTestMain.h"

#include <QDir>
#include <QLabel>
#include <QListView>
#include <QPointer>
#include <QSignalSpy>
#include <atomic>
#include <latch>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

/// The panel of a home on a slow disk.
class TestOpenPanelView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksTheDiskBesideTheMainThread();
    void isUpWhileTheDiskDoesNotAnswer();
    void isNotCancelledByTheKeyThatOpenedIt();
    void goesWithoutWaitingForTheDisk();
    void goesWhileAFolderIsRead();
    void listsAlthoughAPlaceDoesNotAnswer();
    void listsAlthoughNobodyKnowsThePlaces();
    void staysWhereItIsWhenAPlaceComes();
    void startsInTheHomeWhereTheFolderIsNone_data();
    void startsInTheHomeWhereTheFolderIsNone();
    void offersThePlacesThatAreThere();
};

namespace {

/// A folder "dead mount", anywhere; when told so, it answers only the main thread.
class DeadMount final
{
public:
    void hang() { m_hangs = true; }
    void answer()
    {
        m_hangs = false;
        m_hangs.notify_all();
    }
    bool isWaitedFor() const { return m_isWaitedFor; }

    void hear(const char *path)
    {
        if (std::this_thread::get_id() == m_here || !QByteArrayView(path).endsWith("/dead mount"))
            return;
        m_isWaitedFor = m_hangs.load();
        m_hangs.wait(true);
    }

private:
    const std::thread::id m_here = std::this_thread::get_id();
    std::atomic<bool> m_hangs = false;
    std::atomic<bool> m_isWaitedFor = false;
};

DeadMount &deadMount()
{
    static DeadMount mount; // made at the start, see below
    return mount;
}

[[maybe_unused]] const DeadMount &kMadeOnTheMainThread = deadMount();

} // namespace

/// Replaces the C library's function, for the toolkit too.
extern "C" int statx(int parent, const char *path, int flags, unsigned mask, struct statx *status)
{
    deadMount().hear(path);
    return static_cast<int>(::syscall(SYS_statx, parent, path, flags, mask, status));
}

namespace {

QUrl placeNamed(const char *name)
{
    return QUrl::fromLocalFile(QDir::home().filePath(QLatin1String(name)));
}

/// The names beside the list; empty without a list.
QStringList offeredNames(const OpenPanelView &view)
{
    QStringList names;
    if (const auto *const places = view.findChild<QListView *>(QStringLiteral("sidebar"))) {
        for (int row = 0; row < places->model()->rowCount(); ++row)
            names.append(places->model()->index(row, 0).data().toString());
    }
    return names;
}

PanelButton *buttonOf(const OpenPanelView &view, const char *title)
{
    for (PanelButton *made : view.findChildren<PanelButton *>()) {
        if (made->text() == QLatin1String(title))
            return made;
    }
    qFatal("the panel has no button %s", title);
}

/// Music, Movies and Pictures; some of them may not answer until the test lets them.
class MadePlaces final
{
public:
    MadePlaces()
    {
        for (const char *name : {"Music", "Movies", "Pictures"})
            QDir::home().mkpath(QLatin1String(name));
    }

    static ChooserQuestions questions(const QUrl &silent, std::latch &gate)
    {
        ChooserQuestions questions;
        questions.places = [] {
            return QList<QUrl>{placeNamed("Music"), placeNamed("Movies"), placeNamed("Pictures")};
        };
        questions.isThere = [silent, &gate](const QUrl &place) {
            if (place == silent)
                gate.wait();
            return isPlaceThere(place);
        };
        return questions;
    }
};

} // namespace

void TestOpenPanelView::asksTheDiskBesideTheMainThread()
{
    std::mutex mutex;
    QList<QString> asked;
    bool isAskedHere = false;
    const auto note = [&, here = std::this_thread::get_id()](const char *question) {
        const std::scoped_lock lock(mutex);
        asked.append(QLatin1String(question));
        isAskedHere = isAskedHere || std::this_thread::get_id() == here;
    };
    const OpenPanelView view({}, {.start =
                                      [&](const QByteArray &wanted) {
                                          note("start");
                                          return chooserStart(wanted);
                                      },
                                  .places =
                                      [&] {
                                          note("places");
                                          return QList<QUrl>{placeNamed("Music")};
                                      },
                                  .isThere =
                                      [&](const QUrl &) {
                                          note("is there");
                                          return true;
                                      }});
    QTRY_VERIFY(view.findChild<FileChooser *>());
    QTRY_VERIFY(offeredNames(view).contains(QStringLiteral("Music")));
    QVERIFY(!isAskedHere);
    QCOMPARE(asked.size(), 3);
}

void TestOpenPanelView::isUpWhileTheDiskDoesNotAnswer()
{
    std::latch gate(1);
    OpenPanel panel;
    panel.title = QStringLiteral("Take");
    ChooserQuestions questions;
    questions.start = [&gate](const QByteArray &wanted) {
        gate.wait();
        return chooserStart(wanted);
    };
    OpenPanelView view(panel, questions);
    SheetHost host;
    presentSheet(host.window, view, {});
    QTRY_VERIFY(view.isVisible());
    QVERIFY(!buttonOf(view, "Take")->isEnabled());
    QVERIFY(!view.findChild<FileChooser *>());
    const auto says = [&view](const QString &text) {
        return std::ranges::any_of(view.findChildren<QLabel *>(), [&text](const QLabel *label) {
            return label->isVisible() && label->text() == text;
        });
    };
    QTRY_VERIFY(says(QStringLiteral("Looking…")));
    gate.count_down();
    QTRY_VERIFY(view.findChild<FileChooser *>());
    QTRY_VERIFY(view.findChild<FileChooser *>()->isVisible());
    QVERIFY(buttonOf(view, "Take")->isEnabled());
    QVERIFY(!says(QStringLiteral("Looking…")));
    QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("treeView"));
    endSheet(view, kSheetCancelled);
    QTRY_VERIFY(!hasSheet(host.window));
}

/// A second press of the space bar may come before the list does.
void TestOpenPanelView::isNotCancelledByTheKeyThatOpenedIt()
{
    std::latch gate(1);
    ChooserQuestions questions;
    questions.start = [&gate](const QByteArray &wanted) {
        gate.wait();
        return chooserStart(wanted);
    };
    OpenPanelView view({}, questions);
    SheetHost host;
    presentSheet(host.window, view, {});
    QTRY_VERIFY(view.isVisible());
    QSignalSpy cancelled(buttonOf(view, "Cancel"), &QPushButton::clicked);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return})
        QTest::keyClick(host.window.windowHandle(), key);
    QVERIFY(cancelled.isEmpty());
    QTest::keyClick(host.window.windowHandle(), Qt::Key_Tab);
    QTest::keyClick(host.window.windowHandle(), Qt::Key_Space);
    QCOMPARE(cancelled.size(), 1);
    QTRY_VERIFY(!hasSheet(host.window));
    gate.count_down();
    awaitBackgroundThreads();
}

void TestOpenPanelView::goesWithoutWaitingForTheDisk()
{
    std::latch gate(1);
    {
        const OpenPanelView view({}, {.start =
                                          [&gate](const QByteArray &) {
                                              gate.wait();
                                              return QString();
                                          },
                                      .places =
                                          [&gate] {
                                              gate.wait();
                                              return QList<QUrl>();
                                          }});
    }
    gate.count_down(); // else this would never be reached
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
}

/// The toolkit's thread hangs while it reads the list's folder, and the toolkit would wait for this
/// thread.
void TestOpenPanelView::goesWhileAFolderIsRead()
{
    QVERIFY(QDir::home().mkpath(QStringLiteral("around/dead mount")));
    OpenPanel panel;
    panel.startFolder = QFile::encodeName(QDir::home().filePath(QStringLiteral("around")));
    deadMount().hang();
    QPointer<FileChooser> chooser;
    {
        const OpenPanelView view(panel);
        QTRY_VERIFY((chooser = view.findChild<FileChooser *>()));
        QTRY_VERIFY(deadMount().isWaitedFor());
    }
    QVERIFY(chooser && !chooser->isVisible());
    deadMount().answer(); // else this would never be reached
    QTRY_VERIFY(!chooser);
}

void TestOpenPanelView::listsAlthoughAPlaceDoesNotAnswer()
{
    const MadePlaces made;
    std::latch gate(1);
    OpenPanelView view({}, MadePlaces::questions(placeNamed("Movies"), gate));
    SheetHost host;
    presentSheet(host.window, view, {});
    QTRY_VERIFY(view.findChild<FileChooser *>());
    QVERIFY(buttonOf(view, "Open")->isEnabled());
    QTRY_COMPARE(offeredNames(view).size(), 3);
    QCOMPARE(offeredNames(view).mid(0, 2), QStringLiteral("Music Pictures").split(u' '));
    gate.count_down();
    QTRY_COMPARE(offeredNames(view).size(), 4);
    QCOMPARE(offeredNames(view).mid(0, 3), QStringLiteral("Music Movies Pictures").split(u' '));
    endSheet(view, kSheetCancelled);
    QTRY_VERIFY(!hasSheet(host.window));
}

void TestOpenPanelView::listsAlthoughNobodyKnowsThePlaces()
{
    std::latch gate(1);
    ChooserQuestions questions;
    questions.places = [&gate] {
        gate.wait();
        return QList<QUrl>();
    };
    {
        const OpenPanelView view({}, questions);
        QTRY_VERIFY(view.findChild<FileChooser *>());
        QCOMPARE(offeredNames(view).size(), 1); // the computer
    }
    gate.count_down();
    awaitBackgroundThreads();
}

void TestOpenPanelView::staysWhereItIsWhenAPlaceComes()
{
    const MadePlaces made;
    std::latch gate(1);
    OpenPanelView view({}, MadePlaces::questions(placeNamed("Music"), gate));
    SheetHost host;
    presentSheet(host.window, view, {});
    QTRY_COMPARE(offeredNames(view).size(), 3);
    auto *const places = view.findChild<QListView *>(QStringLiteral("sidebar"));
    auto *const chooser = view.findChild<FileChooser *>();
    places->setCurrentIndex(places->model()->index(1, 0)); // as the keys do
    QTRY_COMPARE(chooser->directory().dirName(), QStringLiteral("Pictures"));
    QSignalSpy entered(chooser, &QFileDialog::directoryEntered);
    gate.count_down();
    QTRY_COMPARE(offeredNames(view).size(), 4);
    QCOMPARE(chooser->directory().dirName(), QStringLiteral("Pictures"));
    QVERIFY(entered.isEmpty());
    endSheet(view, kSheetCancelled);
    QTRY_VERIFY(!hasSheet(host.window));
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
    QTEST(chooserStart(QFile::encodeName(wanted)), "start");
}

void TestOpenPanelView::offersThePlacesThatAreThere()
{
    QDir::home().mkpath(QStringLiteral("Music"));
    QDir::home().mkpath(QStringLiteral("Desktop"));
    QDir::home().rmdir(QStringLiteral("Pictures"));
    OpenPanel panel;
    panel.startFolder = "/";
    const OpenPanelView view(panel);
    const QStringList expected{QDir::home().dirName(), QStringLiteral("Desktop"),
                               QStringLiteral("Music")};
    QTRY_VERIFY(offeredNames(view).size() > expected.size());
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QStringList names = offeredNames(view);
    names.removeLast(); // the computer
    names.removeAll(QStringLiteral("Movies"));
    QCOMPARE(names, expected);
}

VANTOR_GUI_TEST_MAIN(TestOpenPanelView)
#include "tst_OpenPanelView.moc"
