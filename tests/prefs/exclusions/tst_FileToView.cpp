#include "platform/system/HostSystemCalls.h"
#include "prefs/exclusions/FileToView.h"
#include "tests/prefs/exclusions/ScratchAccess.h"
#include "tests/support/run/TestMain.h"

#include <QThread>
#include <semaphore>
#include <thread>

class TestFileToView final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void measuresAsCleaningWouldCount();
    void tellsOnTheMainThread();
    void holdsTheAccessWhileItMeasures();
    void leavesTheRecordAloneWithoutAccess();
    void measuresARecordOnceAtATime();
    void measuresAgainWhenAskedLater();
    void endsAMeasurement();
    void saysNothingAfterItsEnd();
    void waitsAtItsEndForNoDiskThatDoesNotAnswer();
    void looksAtPaths_data();
    void looksAtPaths();
    void looksInOrder();

private:
    std::shared_ptr<File> file(const char *relativePath, FileUrlKind kind) const;
    void prepare(const std::shared_ptr<File> &file) const;

    std::unique_ptr<ScratchFolder> m_folder;
    const std::thread::id m_here = std::this_thread::get_id();
    int m_askedHere = 0; ///< for the access, on the main thread
    std::unique_ptr<ScratchAccess> m_access;
    std::unique_ptr<FileToView> m_toView;
};

void TestFileToView::init()
{
    m_toView.reset();
    m_folder = std::make_unique<ScratchFolder>();
    m_folder->makeFolder("Movies");
    m_folder->makeFile("Movies/a.mov", 1'200'000);
    m_folder->makeFile("Movies/.hidden", 5'000'000);
    m_folder->makeFile("notes.txt", 300);
    m_access = std::make_unique<ScratchAccess>(*m_folder);
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [this] {
        m_askedHere += std::this_thread::get_id() == m_here ? 1 : 0;
        return m_access.get();
    });
}

/// All measurements must end before the test's own log is gone.
void TestFileToView::cleanup()
{
    m_toView.reset();
    awaitBackgroundThreads();
    QCOMPARE(m_askedHere, 0);
}

std::shared_ptr<File> TestFileToView::file(const char *relativePath, FileUrlKind kind) const
{
    return std::make_shared<File>(FileUrl::fromPath(m_folder->path(relativePath), kind));
}

void TestFileToView::prepare(const std::shared_ptr<File> &file) const
{
    bool isDone = false;
    m_toView->prepareFileForDisplay(file, [&isDone] { isDone = true; });
    QTRY_VERIFY(isDone);
}

void TestFileToView::measuresAsCleaningWouldCount()
{
    const auto folder = file("Movies", FileUrlKind::Folder);
    prepare(folder);
    QCOMPARE(folder->size(), 1'200'000);
    QCOMPARE(*folder->sizeString(), QStringLiteral("1.2 MB"));
    const auto single = file("notes.txt", FileUrlKind::File);
    prepare(single);
    QCOMPARE(*single->sizeString(), QStringLiteral("300 bytes"));
    const auto missing = file("missing", FileUrlKind::File);
    prepare(missing);
    QCOMPARE(*missing->sizeString(), QStringLiteral("Zero KB"));
}

void TestFileToView::tellsOnTheMainThread()
{
    const auto record = file("Movies", FileUrlKind::Folder);
    QThread *thread = nullptr;
    bool isInside = true;
    m_toView->prepareFileForDisplay(record, [&] {
        thread = QThread::currentThread();
        QVERIFY(!isInside); // from the event loop
    });
    isInside = false;
    QTRY_COMPARE(thread, QThread::currentThread());
}

void TestFileToView::holdsTheAccessWhileItMeasures()
{
    prepare(file("Movies", FileUrlKind::Folder));
    QCOMPARE(m_access->starts(), 1);
    QTRY_COMPARE(m_access->stops(), 1);
}

void TestFileToView::leavesTheRecordAloneWithoutAccess()
{
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [] { return nullptr; });
    const auto record = file("Movies", FileUrlKind::Folder);
    prepare(record);
    QVERIFY(!record->sizeString());
    QCOMPARE(record->size(), 0);
}

void TestFileToView::measuresARecordOnceAtATime()
{
    m_access->hold();
    const auto record = file("Movies", FileUrlKind::Folder);
    int completions = 0;
    for (int i = 0; i < 3; ++i)
        m_toView->prepareFileForDisplay(record, [&completions] { ++completions; });
    m_access->release();
    QTRY_COMPARE(completions, 3);
    QCOMPARE(m_access->lookUps(), 1);
}

void TestFileToView::measuresAgainWhenAskedLater()
{
    const auto record = file("Movies", FileUrlKind::Folder);
    prepare(record);
    m_folder->makeFile("Movies/b.mov", 800'000);
    prepare(record);
    QCOMPARE(record->size(), 2'000'000);
}

void TestFileToView::endsAMeasurement()
{
    m_access->hold();
    const auto record = file("Movies", FileUrlKind::Folder);
    bool isDone = false;
    m_toView->prepareFileForDisplay(record, [&isDone] { isDone = true; });
    QTRY_COMPARE(m_access->lookUps(), 1);
    m_toView->cancel(*record);
    m_access->release();
    QTRY_COMPARE(m_access->stops(), 1);
    // The next tasks on both of its threads answer after the cancelled measurement would have.
    prepare(file("notes.txt", FileUrlKind::File));
    prepare(file("notes.txt", FileUrlKind::File));
    QVERIFY(!isDone);
    QVERIFY(!record->sizeString());
}

void TestFileToView::saysNothingAfterItsEnd()
{
    bool isDone = false;
    m_toView->prepareFileForDisplay(file("Movies", FileUrlKind::Folder),
                                    [&isDone] { isDone = true; });
    m_toView->lookAt({m_folder->path("Movies")},
                     [&isDone](const QList<FileFacts> &) { isDone = true; });
    m_toView.reset();
    QCoreApplication::processEvents();
    QVERIFY(!isDone);
}

void TestFileToView::waitsAtItsEndForNoDiskThatDoesNotAnswer()
{
    constexpr std::chrono::seconds kPatience(5);
    std::counting_semaphore<> asked(0);
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [this, &asked] {
        asked.release();
        (void)m_access->anchoredPath({}); // waits for the disk
        return m_access.get();
    });
    m_access->hold();
    bool isDone = false;
    const auto note = [&isDone] { isDone = true; };
    for (const char *name : {"Movies", "notes.txt", "missing"}) // one more than at a time
        m_toView->prepareFileForDisplay(file(name, FileUrlKind::File), note);
    m_toView->lookAt({m_folder->path("Movies")}, [&note](const QList<FileFacts> &) { note(); });
    for (int i = 0; i < 3; ++i)
        asked.acquire(); // by two measurements and a look

    std::binary_semaphore isGone(0);
    bool wasInTime = false;
    std::jthread disk([&] {
        wasInTime = isGone.try_acquire_for(kPatience);
        m_access->release(); // otherwise a wait would last for ever
    });
    m_toView.reset();
    isGone.release();
    disk.join();
    awaitBackgroundThreads();
    QCoreApplication::processEvents();
    QVERIFY(wasInTime);
    QVERIFY(!isDone);
}

Q_DECLARE_METATYPE(FileFacts::Presence)
Q_DECLARE_METATYPE(FileUrlKind)

void TestFileToView::looksAtPaths_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<FileFacts::Presence>("presence");
    QTest::addColumn<FileUrlKind>("kind");
    QTest::addColumn<QString>("iconName");
    const auto present = FileFacts::Presence::Present;
    const QString unknown = QStringLiteral("application-x-generic");
    QTest::addRow("folder") << QByteArray("Movies") << present << FileUrlKind::Folder << unknown;
    QTest::addRow("file") << QByteArray("Movies/a.mov") << present << FileUrlKind::File
                          << QStringLiteral("video-x-generic");
    QTest::addRow("missing") << QByteArray("gone.mp3") << FileFacts::Presence::Missing
                             << FileUrlKind::File << QStringLiteral("audio-x-generic");
    QTest::addRow("below a file") << QByteArray("notes.txt/a") << FileFacts::Presence::Missing
                                  << FileUrlKind::File << unknown;
    QTest::addRow("link to a folder")
        << QByteArray("link") << present << FileUrlKind::File << unknown;
    QTest::addRow("link to nothing")
        << QByteArray("dangling") << present << FileUrlKind::File << unknown;
    QTest::addRow("no UTF-8") << QByteArray("\xff\xfe.mov") << present << FileUrlKind::File
                              << QStringLiteral("video-x-generic");
    QTest::addRow("behind a link in a circle")
        << QByteArray("circle/a") << FileFacts::Presence::Unknown << FileUrlKind::File << unknown;
    QTest::addRow("two lines") << QByteArray("two\nlines") << present << FileUrlKind::Folder
                               << unknown;
}

void TestFileToView::looksAtPaths()
{
    m_folder->makeLink("link", m_folder->path("Movies"));
    m_folder->makeLink("dangling", "nowhere");
    m_folder->makeLink("circle", "circle");
    m_folder->makeFile("\xff\xfe.mov");
    m_folder->makeFolder("two\nlines");
    QFETCH(QByteArray, name);
    QList<FileFacts> facts;
    m_toView->lookAt({m_folder->path(name)},
                     [&facts](const QList<FileFacts> &answer) { facts = answer; });
    QTRY_COMPARE(facts.size(), 1);
    QTEST(facts[0].presence, "presence");
    QTEST(facts[0].kind, "kind");
    QTEST(facts[0].iconName, "iconName");
}

void TestFileToView::looksInOrder()
{
    QList<FileFacts> facts;
    m_toView->lookAt({m_folder->path("missing"), m_folder->path("Movies")},
                     [&facts](const QList<FileFacts> &answer) { facts = answer; });
    QTRY_COMPARE(facts.size(), 2);
    QCOMPARE(facts[0].presence, FileFacts::Presence::Missing);
    QCOMPARE(facts[1].presence, FileFacts::Presence::Present);
    // Also without access: a look does no work below the granted folder then.
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [] { return nullptr; });
    facts.clear();
    m_toView->lookAt({}, [&facts](const QList<FileFacts> &) { facts = {FileFacts()}; });
    QTRY_COMPARE(facts.size(), 1);
}

VANTOR_TEST_MAIN(TestFileToView)
#include "tst_FileToView.moc"
