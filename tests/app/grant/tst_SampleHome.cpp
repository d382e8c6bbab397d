#include "app/grant/RealHomeDirectory.h"
#include "tests/support/page/SampleHome.h"
#include "tests/support/run/TestMain.h"

#include <filesystem>

namespace {

/// The bytes that the file system counts at a path, without hidden items.
qint64 bytesOnDisk(const QByteArray &location)
{
    const std::filesystem::path start(location.toStdString());
    if (!std::filesystem::is_directory(start))
        return static_cast<qint64>(std::filesystem::file_size(start));
    qint64 bytes = 0;
    for (auto at = std::filesystem::recursive_directory_iterator(start); at != end(at); ++at) {
        const std::filesystem::file_status status = at->symlink_status();
        if (at->path().filename().string().front() == '.')
            at.disable_recursion_pending();
        else if (is_symlink(status))
            bytes += static_cast<qint64>(read_symlink(at->path()).string().size());
        else if (!is_directory(status))
            bytes += static_cast<qint64>(at->file_size());
    }
    return bytes;
}

} // namespace

class TestSampleHome final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNamedAsTheLoginFolder();
    void recordsWhatIsOnTheDisk();
    void knowsWhatMeasuringShows_data();
    void knowsWhatMeasuringShows();
    void knowsWhatCleaningTakes();
    void listsLargeFilesByTheirSize();
    void growsWithItsScale();

private:
    ScratchFolder m_place;
    SampleHome m_home{m_place};
    ScratchFolder m_freedesktopPlace;
    SampleHome m_freedesktop{m_freedesktopPlace, 1, HomeKind::Freedesktop};
};

void TestSampleHome::isNamedAsTheLoginFolder()
{
    QVERIFY(m_home.url().lastPathComponent().contains(RealHomeDirectory().split('/').last()));
    QCOMPARE(m_home.url("Downloads").path(), m_home.path() + "/Downloads");
}

void TestSampleHome::recordsWhatIsOnTheDisk()
{
    QCOMPARE(m_home.presentPaths(), m_home.paths());
    QCOMPARE(m_freedesktop.presentPaths(), m_freedesktop.paths());
    QVERIFY(!m_freedesktop.paths().contains("Library"));
}

void TestSampleHome::knowsWhatMeasuringShows_data()
{
    QTest::addColumn<HomeKind>("kind");
    QTest::addColumn<int>("slice");
    for (int slice = 0; slice < SampleHome::kSlices; ++slice) {
        QTest::addRow("%d", slice) << HomeKind::Library << slice;
        QTest::addRow("freedesktop, %d", slice) << HomeKind::Freedesktop << slice;
    }
}

void TestSampleHome::knowsWhatMeasuringShows()
{
    QFETCH(HomeKind, kind);
    QFETCH(int, slice);
    const SampleHome &home = kind == HomeKind::Library ? m_home : m_freedesktop;
    qint64 bytes = 0;
    for (const QByteArray &location : home.locationsOf(slice))
        bytes += bytesOnDisk(home.path(location));
    QCOMPARE(home.bytesShownFor(slice), bytes);
    constexpr int kLargeFiles = 1;
    QCOMPARE(bytes == 0, slice == kLargeFiles);
}

void TestSampleHome::knowsWhatCleaningTakes()
{
    constexpr int kDownloads = 5;
    constexpr int kBrowserData = 7;
    const QList<QByteArray> downloads = m_home.pathsCleanedWith(kDownloads);
    QVERIFY(downloads.contains(SampleHome::kKeep));
    QVERIFY(downloads.contains("Downloads/.partial download"));
    QVERIFY(downloads.contains("Downloads/movies"));
    QVERIFY(!downloads.contains("Downloads"));
    QVERIFY(!downloads.contains("Downloads old/setup-4.1.dmg"));
    QCOMPARE(m_home.pathsCleanedWith(kBrowserData).size(), 5);
    QVERIFY(m_freedesktop.pathsCleanedWith(0).contains(".local/share/Trash/directorysizes"));
    QVERIFY(!m_freedesktop.pathsCleanedWith(0).contains(".local/share/Trash/files"));
}

void TestSampleHome::listsLargeFilesByTheirSize()
{
    const QList<QByteArray> files = m_home.largeFiles();
    QCOMPARE(files.first(), QByteArray("Movies/Summer in the mountains.mov"));
    QCOMPARE(files.last(), QByteArray("Documents/One byte more.bin"));
    QVERIFY(!files.contains("Documents/Exactly the limit.bin"));
    QVERIFY(!files.contains("Movies/.unfinished.mov"));
    QVERIFY(!files.contains("Documents/Tool.app/Contents/Resources/huge.dat"));
}

void TestSampleHome::growsWithItsScale()
{
    const ScratchFolder place;
    const SampleHome large(place, 10);
    const qsizetype more = large.paths().size() - m_home.paths().size();
    QCOMPARE(more, 9 * (3 * 16 + 15)); // three folders of fifteen files, and fifteen logs
    QCOMPARE(large.presentPaths(), large.paths());
}

VANTOR_TEST_MAIN(TestSampleHome)
#include "tst_SampleHome.moc"
