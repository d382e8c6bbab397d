#include "slices/cleaning/RecordLocations.h"

#include "slices/record/Info.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <unistd.h>

/// What the records know of the locations that programs use.
class TestRecordLocations final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void givesTheRecordsWhatIsNotInUse();
    void givesThemBackWhatIsNoLongerInUse();
    void measuresOnlyWhatHasChanged();
    void takesAwayWhatIsNewlyInUse();
    void givesNothingBackOfWhatWasConfirmed();
    void takesOffWhatWasMeasuredOfThePlacesThatStayed();
    void takesOffNothingOfWhatWasKeptAnyway();
    void takesOffWhatWasFoundInUseLater();
    void takesOffNothingTwice();
    void takesOffNothingThatIsHidden();

private:
    void firefoxRuns() const
    {
        m_home->link(".mozilla/firefox/a/lock", "127.0.1.1:+" + QByteArray::number(::getpid()));
    }
    void firefoxEnds() const { ::unlink(m_home->path(".mozilla/firefox/a/lock").constData()); }
    ProgramsInUse inUse() const { return ProgramsInUse::find(m_calls, m_home->access(), m_layout); }
    qint64 sizeOf(const FileUrl &url, const FileUrls &kept) const
    {
        const SizingRules rules{.kept = pathsInside(url, kept)};
        return measureFolder(m_calls, *m_home->access().anchoredPath(url), {}, 1, rules).bytes;
    }
    ProgramLocationSizes measured() const
    {
        return measureProgramLocations(
            {m_cache, m_browserData}, m_layout,
            [this](const FileUrl &url, const FileUrls &kept) { return sizeOf(url, kept); });
    }
    std::shared_ptr<Info> record(SliceKind kind)
    {
        const auto measure = [this](const FileUrl &url, const FileUrls &kept) {
            ++m_measures;
            return sizeOf(url, kept);
        };
        return Info::infoWithName(QString::fromUtf16(sliceCatalogue()[indexOf(kind)].name),
                                  m_layout.locations(kind), {measure, nullptr});
    }

    HookedSystem m_calls;
    std::unique_ptr<MadeHome> m_home;
    HomeLayout m_layout;
    std::shared_ptr<Info> m_cache;
    std::shared_ptr<Info> m_browserData;
    int m_measures = 0;
};

void TestRecordLocations::init()
{
    m_home = std::make_unique<MadeHome>();
    m_home->make(".cache/other/c", QByteArray(1, 'x'));
    m_home->make(".cache/mozilla/firefox/a/c", QByteArray(20, 'x'));
    m_home->make(".mozilla/firefox/a/cookies.sqlite", QByteArray(300, 'x'));
    m_home->nameFirefoxProfiles({"a"});
    m_layout = m_home->survey();
    m_cache = record(SliceKind::Cache);
    m_browserData = record(SliceKind::BrowserData);
    setRecordLocations({m_cache, m_browserData}, m_layout, {});
    m_cache->fileSizeString();
    m_browserData->fileSizeString();
    QCOMPARE(m_cache->fileSize(), 21);
    QCOMPARE(m_browserData->fileSize(), 300);
    m_measures = 0;
}

void TestRecordLocations::givesTheRecordsWhatIsNotInUse()
{
    firefoxRuns();
    setRecordLocations({m_cache, m_browserData}, m_layout, inUse());
    QCOMPARE(m_home->relative(*m_cache->fileURLs()), QByteArrayList{".cache/"});
    QCOMPARE(m_home->relative(m_cache->kept()), QByteArrayList{".cache/mozilla/"});
    QVERIFY(!m_cache->isMeasured()); // it is measured when the size is needed
    QCOMPARE(m_cache->fileSizeString(), QStringLiteral("1 byte"));
    QCOMPARE(m_cache->fileSize(), 1);
    QCOMPARE(m_browserData->fileURLs(), FileUrls());
    QCOMPARE(m_browserData->fileSizeString(), QStringLiteral("Empty"));
}

void TestRecordLocations::givesThemBackWhatIsNoLongerInUse()
{
    firefoxRuns();
    setRecordLocations({m_cache, m_browserData}, m_layout, inUse());
    firefoxEnds();
    setRecordLocations({m_cache, m_browserData}, m_layout, inUse());
    QVERIFY(m_cache->kept().isEmpty());
    QCOMPARE(m_cache->fileSizeString(), QStringLiteral("21 bytes"));
    QCOMPARE(m_browserData->fileSizeString(), QStringLiteral("300 bytes"));
}

void TestRecordLocations::measuresOnlyWhatHasChanged()
{
    setRecordLocations({m_cache, m_browserData}, m_layout, inUse());
    QVERIFY(m_cache->isMeasured());
    firefoxRuns();
    setRecordLocations({m_cache}, m_layout, inUse());
    m_cache->fileSizeString();
    setRecordLocations({m_cache}, m_layout, inUse());
    m_cache->fileSizeString();
    QCOMPARE(m_measures, 1);
}

void TestRecordLocations::takesAwayWhatIsNewlyInUse()
{
    firefoxRuns();
    const FileUrls takenAway = takeAwayLocationsInUse({m_cache, m_browserData}, inUse());
    QCOMPARE(m_home->relative(takenAway),
             QByteArrayList({".cache/mozilla/", ".mozilla/firefox/a/cookies.sqlite"}));
    QCOMPARE(m_home->relative(m_cache->kept()), QByteArrayList{".cache/mozilla/"});
    QCOMPARE(m_cache->fileSize(), 1);
    QCOMPARE(m_browserData->fileSize(), 0);
    QCOMPARE(takeAwayLocationsInUse({m_cache, m_browserData}, inUse()), FileUrls());
}

void TestRecordLocations::givesNothingBackOfWhatWasConfirmed()
{
    firefoxRuns();
    setRecordLocations({m_cache, m_browserData}, m_layout, inUse());
    m_cache->fileSizeString();
    firefoxEnds();
    QCOMPARE(takeAwayLocationsInUse({m_cache, m_browserData}, inUse()), FileUrls());
    QCOMPARE(m_home->relative(m_cache->kept()), QByteArrayList{".cache/mozilla/"});
    QCOMPARE(m_cache->fileSize(), 1);
    QCOMPARE(m_browserData->fileURLs(), FileUrls());
}

void TestRecordLocations::takesOffWhatWasMeasuredOfThePlacesThatStayed()
{
    const ProgramLocationSizes sizes = measured();
    m_home->make(".cache/mozilla/firefox/a/new", QByteArray(4000, 'x'));
    takeAwaySizes(sizes, {m_home->path(".cache/mozilla"), m_home->path(".cache/other")});
    QCOMPARE(m_cache->fileSize(), 1);
    QCOMPARE(m_browserData->fileSize(), 300);
    takeAwaySizes(sizes, {m_home->path(".mozilla/firefox/a/cookies.sqlite")});
    QCOMPARE(m_browserData->fileSize(), 0);
    takeAwaySizes(sizes, {m_home->path(".mozilla/firefox/a/cookies.sqlite")});
    QCOMPARE(m_browserData->fileSize(), 0);
}

void TestRecordLocations::takesOffNothingOfWhatWasKeptAnyway()
{
    firefoxRuns();
    takeAwayLocationsInUse({m_cache, m_browserData}, inUse());
    takeAwaySizes(measured(), {m_home->path(".cache/mozilla")});
    QCOMPARE(m_cache->fileSize(), 1);
}

void TestRecordLocations::takesOffWhatWasFoundInUseLater()
{
    ProgramLocationSizes sizes = measured();
    addSizes(sizes, {m_cache, m_browserData},
             {m_home->url().appending(".cache/other", FileUrlKind::Folder),
              m_home->url().appending("elsewhere", FileUrlKind::Folder)},
             [this](const FileUrl &url, const FileUrls &kept) { return sizeOf(url, kept); });
    takeAwaySizes(sizes, {m_home->path(".cache/other"), m_home->path("elsewhere")});
    QCOMPARE(m_cache->fileSize(), 20);
    QCOMPARE(m_browserData->fileSize(), 300);
}

/// What was measured already, and what the record never counted.
void TestRecordLocations::takesOffNothingTwice()
{
    const auto sizeOf = [this](const FileUrl &url, const FileUrls &kept) {
        return this->sizeOf(url, kept);
    };
    const FileUrl mozilla = m_home->url().appending(".cache/mozilla", FileUrlKind::Folder);
    ProgramLocationSizes sizes = measured();
    addSizes(sizes, {m_cache, m_browserData}, {mozilla, mozilla}, sizeOf);
    takeAwaySizes(sizes, {mozilla.path()});
    QCOMPARE(m_cache->fileSize(), 1);
    m_cache->setLocations(*m_cache->fileURLs(), {mozilla});
    m_cache->fileSizeString();
    sizes.clear();
    addSizes(sizes, {m_cache}, {mozilla}, sizeOf);
    QVERIFY(sizes.empty());
}

void TestRecordLocations::takesOffNothingThatIsHidden()
{
    const auto sizeOf = [this](const FileUrl &url, const FileUrls &kept) {
        return this->sizeOf(url, kept);
    };
    m_home->make(".cache/.hidden/c", QByteArray(4000, 'x'));
    const FileUrl hidden = m_home->url().appending(".cache/.hidden", FileUrlKind::Folder);
    ProgramLocationSizes sizes;
    addSizes(sizes, {m_cache}, {hidden}, sizeOf);
    takeAwaySizes(sizes, {hidden.path()});
    QCOMPARE(m_cache->fileSize(), 21);
    addSizes(sizes, {m_cache}, *m_cache->fileURLs(), sizeOf); // its own name is hidden, too
    takeAwaySizes(sizes, {m_home->path(".cache")});
    QCOMPARE(m_cache->fileSize(), 0);
}

VANTOR_TEST_MAIN(TestRecordLocations)
#include "tst_RecordLocations.moc"
