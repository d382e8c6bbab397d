#include "platform/system/HostSystemCalls.h"
#include "prefs/exclusions/ExcludedFilesModel.h"
#include "prefs/exclusions/ExcludedFilesView.h"
#include "tests/prefs/exclusions/ScratchAccess.h"
#include "tests/support/run/GuiTestMain.h"

#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>

/// The table in a window, with a rule that allows only what lies in /home/anna.
class TestExcludedFilesView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readsListsOfUrls_data();
    void readsListsOfUrls();
    void takesWhatFollowsTheRule_data();
    void takesWhatFollowsTheRule();
    void handsOverEveryDroppedPath();
    void marksItselfWhileSomethingHoversOverIt();
    void asksForRemovalByKey_data();
    void asksForRemovalByKey();
    void selectsWholeRows();
    void copiesNothingWhileNoRowIsCurrent();
    void saysWhatItIsForWhileItIsEmpty();
    void paintsRows();
    void paintsASelectedRowOnAPalePatch();
    void paintsWhatIsGoneFaintly();

private:
    bool dragEnters(const QByteArray &uriList);
    QImage picture() const;
    static int darkest(const QImage &image, const QRect &part);

    std::unique_ptr<FileToView> m_toView;
    std::unique_ptr<ExcludedFilesModel> m_model;
    std::unique_ptr<ExcludedFilesView> m_view;
};

void TestExcludedFilesView::init()
{
    m_view.reset();
    m_model.reset();
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [] { return nullptr; });
    m_model = std::make_unique<ExcludedFilesModel>(*m_toView);
    m_view = std::make_unique<ExcludedFilesView>();
    m_view->resize(500, 300);
    m_view->setModel(m_model.get());
    m_view->setRule([](const QByteArray &path) { return path.startsWith("/home/anna/"); });
    m_view->show();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

bool TestExcludedFilesView::dragEnters(const QByteArray &uriList)
{
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), uriList);
    QDragEnterEvent enter({100, 100}, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(m_view->viewport(), &enter);
    return enter.isAccepted();
}

QImage TestExcludedFilesView::picture() const
{
    return m_view->viewport()->grab().toImage();
}

int TestExcludedFilesView::darkest(const QImage &image, const QRect &part)
{
    int value = 255;
    for (int y = part.top(); y <= part.bottom(); ++y)
        for (int x = part.left(); x <= part.right(); ++x)
            value = std::min(value, qGray(image.pixel(x, y)));
    return value;
}

void TestExcludedFilesView::readsListsOfUrls_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QList<QByteArray>>("paths");
    const auto add = [](const char *what, const char *list, const QList<QByteArray> &paths) {
        QTest::addRow("%s", what) << QByteArray(list) << paths;
    };
    add("nothing", "", {});
    add("one", "file:///home/anna/a\r\n", {"/home/anna/a"});
    add("no last line end", "file:///home/anna/a", {"/home/anna/a"});
    add("two and a remark", "# two\r\nfile:///a\r\nfile:///b/\r\n", {"/a", "/b"});
    add("this host", "file://localhost/home/anna/a", {"/home/anna/a"});
    add("another host", "file://server/home/anna/a", {});
    add("another scheme", "https://example.invalid/a", {});
    add("no UTF-8", "file:///home/anna/%FF%fe", {"/home/anna/\xff\xfe"});
    add("percent", "file:///home/anna/100%25", {"/home/anna/100%"});
    add("line end in a name", "file:///home/anna/two%0Alines", {"/home/anna/two\nlines"});
    add("letters as they are", "file:///home/anna/M\xc3\xbcsik", {"/home/anna/M\xc3\xbcsik"});
    add("upwards", "file:///home/anna/../otto", {});
}

void TestExcludedFilesView::readsListsOfUrls()
{
    QFETCH(QByteArray, list);
    QTEST(pathsOfUriList(list), "paths");
}

void TestExcludedFilesView::takesWhatFollowsTheRule_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("isTaken");
    QTest::addRow("allowed") << QByteArray("file:///home/anna/a") << true;
    QTest::addRow("refused") << QByteArray("file:///home/otto/a") << false;
    QTest::addRow("one of both") << QByteArray("file:///home/otto/a\r\nfile:///home/anna/a\r\n")
                                 << true;
    QTest::addRow("no file") << QByteArray("https://example.invalid/home/anna/a") << false;
}

void TestExcludedFilesView::takesWhatFollowsTheRule()
{
    QFETCH(QByteArray, list);
    QFETCH(bool, isTaken);
    QCOMPARE(dragEnters(list), isTaken);
}

void TestExcludedFilesView::handsOverEveryDroppedPath()
{
    QSignalSpy dropped(m_view.get(), &ExcludedFilesView::pathsDropped);
    QVERIFY(dragEnters("file:///home/anna/a"));
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
                 "file:///home/otto/a\r\nfile:///home/anna/%FF\r\n");
    QDropEvent drop({100, 100}, Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_view->viewport(), &drop);
    QCOMPARE(dropped.count(), 1);
    QCOMPARE(dropped[0][0].value<QList<QByteArray>>(),
             (QList<QByteArray>{"/home/otto/a", "/home/anna/\xff"}));
    QCOMPARE(drop.dropAction(), Qt::LinkAction); // the file stays where it is
}

void TestExcludedFilesView::marksItselfWhileSomethingHoversOverIt()
{
    const QImage before = picture();
    QVERIFY(dragEnters("file:///home/anna/a"));
    const QImage during = picture();
    QVERIFY(during.pixelColor(1, 150).saturation() > before.pixelColor(1, 150).saturation() + 50);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(m_view->viewport(), &leave);
    QCOMPARE(picture(), before);
}

void TestExcludedFilesView::asksForRemovalByKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("requests");
    QTest::addRow("delete") << int(Qt::Key_Delete) << 1;
    QTest::addRow("backspace") << int(Qt::Key_Backspace) << 1;
    QTest::addRow("another") << int(Qt::Key_D) << 0;
}

void TestExcludedFilesView::asksForRemovalByKey()
{
    QFETCH(int, key);
    QFETCH(int, requests);
    const QSignalSpy requested(m_view.get(), &ExcludedFilesView::removalRequested);
    QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key));
    QCOMPARE(requested.count(), requests);
}

void TestExcludedFilesView::selectsWholeRows()
{
    m_model->setStoredStrings({QStringLiteral("file:///a"), QStringLiteral("file:///b")});
    const QRect size = m_view->visualRect(m_model->index(1, ExcludedFilesModel::SizeColumn));
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, size.center());
    QCOMPARE(m_view->selectedRows(), QList<int>{1});
    QTest::keyClick(m_view.get(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_view->selectedRows().size(), 2);
}

void TestExcludedFilesView::copiesNothingWhileNoRowIsCurrent()
{
    m_model->setStoredStrings({QStringLiteral("file:///home/anna/a")});
    QVERIFY(!m_view->currentIndex().isValid());
    QTest::keySequence(m_view.get(), QKeySequence::Copy);
    QVERIFY(m_view->selectedRows().isEmpty());
}

void TestExcludedFilesView::saysWhatItIsForWhileItIsEmpty()
{
    const QRect middle = m_view->viewport()->rect().adjusted(60, 120, -60, -120);
    QVERIFY(darkest(picture(), middle) < 220);
    m_model->setStoredStrings({QStringLiteral("file:///a")});
    QCOMPARE(darkest(picture(), middle), 255);
}

void TestExcludedFilesView::paintsRows()
{
    m_model->setStoredStrings({QStringLiteral("file:///home/anna/Movies/")});
    QTRY_COMPARE(m_model->index(0, 1).data().toString(), QStringLiteral("Not found"));
    QCOMPARE(m_view->rowHeight(0), 48);
    const QImage image = picture();
    const auto isBlue = [&image](int x, int y) {
        return image.pixelColor(x, y).blue() > image.pixelColor(x, y).red() + 15;
    };
    QVERIFY(isBlue(28, 26));                              // the folder
    QVERIFY(darkest(image, QRect(54, 8, 60, 16)) < 200);  // its name
    QVERIFY(darkest(image, QRect(54, 27, 60, 16)) < 230); // its place
    const int right = image.width();
    QVERIFY(darkest(image, QRect(right - 60, 14, 46, 20)) < 200); // its size
    QCOMPARE(darkest(image, QRect(right - 10, 4, 10, 40)), 255);  // the margin
    QVERIFY(darkest(image, QRect(100, 47, 100, 1)) < 245);        // the line
}

void TestExcludedFilesView::paintsASelectedRowOnAPalePatch()
{
    m_model->setStoredStrings({QStringLiteral("file:///a"), QStringLiteral("file:///b")});
    m_view->selectRow(0);
    const QImage image = picture();
    const int right = image.width() - 1;
    for (const QPoint &place : {QPoint(8, 24), QPoint(right / 2, 24), QPoint(right - 6, 24)}) {
        const QColor colour = image.pixelColor(place);
        QVERIFY(colour.lightness() > 200 && colour.lightness() < 254);
        QVERIFY(colour.blue() > colour.red());
    }
    // Round at the row's ends, not where the columns meet.
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::white));
    QCOMPARE(image.pixelColor(right, 0), QColor(Qt::white));
    const int seam = m_view->columnWidth(0);
    QCOMPARE(image.pixelColor(seam - 1, 1), image.pixelColor(seam, 1));
    QVERIFY(image.pixelColor(seam, 1) != QColor(Qt::white));
    QCOMPARE(image.pixelColor(8, 70), QColor(Qt::white));
}

void TestExcludedFilesView::paintsWhatIsGoneFaintly()
{
    const ScratchFolder folder;
    folder.makeFile("here");
    m_model->append({FileUrl::fromPath(folder.path("here"), FileUrlKind::File),
                     FileUrl::fromPath(folder.path("gone"), FileUrlKind::File)});
    QTRY_COMPARE(m_model->index(1, 1).data().toString(), QStringLiteral("Not found"));
    const QImage image = picture();
    const QRect name(54, 8, 40, 16);
    QVERIFY(darkest(image, name) + 60 < darkest(image, name.translated(0, 48)));
}

VANTOR_GUI_TEST_MAIN(TestExcludedFilesView)
#include "tst_ExcludedFilesView.moc"
