#include "slices/record/Info.h"
#include "tests/support/run/TestMain.h"

#include <QSignalSpy>
#include <QThread>
#include <atomic>
#include <limits>
#include <thread>

namespace {

const FileUrl kCaches = FileUrl::fromPath("/home/anna/Library/Caches", FileUrlKind::Folder);
const FileUrl kLogs = FileUrl::fromPath("/home/anna/Library/Logs", FileUrlKind::Folder);
const FileUrl kGone = FileUrl::fromPath("/home/anna/gone", FileUrlKind::Folder);

/// What the locations hold.
qint64 bytesOf(const FileUrl &url)
{
    if (url == kCaches)
        return 1'200'000'000;
    return url == kLogs ? 34'000'000 : 0;
}

} // namespace

class TestInfo final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void beginsSwitchedOnAndUnmeasured();
    void takesItsImageFromItsName();
    void measuresOnTheFirstReadOnly();
    void sumsUpItsPlaces();
    void saysEmptyForNothing_data();
    void saysEmptyForNothing();
    void hasNoTextWithoutPlaces();
    void keepsAPresetText();
    void measuresAgainOnceTheTextIsForgotten();
    void measuresNewPlacesAndKeepsTheText();
    void setsTheSizeToNothingWithoutPlaces();
    void postsEveryTimeTheSizeIsSet();
    void postsOnTheMainThread();
    void isMeasuredByTwoReadersAtOnce();
    void staysUnmeasuredWhenTheMeasureIsStopped();
    void dropsAMeasureOfPlacesThatWereChangedMeanwhile();
    void keepsATextThatWasSetMeanwhile();
    void dropsAnOldMeasureOfNewPlaces();
    void measuresItsPlacesWithoutWhatIsKept();
    void dropsAMeasureOfWhatIsKeptMeanwhile();
    void doesNotTurnOver();
    void needsNoServices();
    void printsAsItsName();

private:
    std::shared_ptr<Info> slice(std::optional<FileUrls> urls)
    {
        return Info::infoWithName(QStringLiteral("Cache"), std::move(urls), m_services);
    }

    std::shared_ptr<FileSizeChangedNotification> m_notification;
    std::unique_ptr<QSignalSpy> m_posts;
    std::atomic<int> m_measures = 0;
    Info::Services m_services;
};

void TestInfo::init()
{
    m_notification = std::make_shared<FileSizeChangedNotification>();
    m_posts =
        std::make_unique<QSignalSpy>(m_notification.get(), &FileSizeChangedNotification::posted);
    m_measures = 0;
    m_services = {[this](const FileUrl &url, const FileUrls &) {
                      ++m_measures;
                      return bytesOf(url);
                  },
                  m_notification};
}

void TestInfo::beginsSwitchedOnAndUnmeasured()
{
    const auto info = slice(FileUrls{kCaches});
    QCOMPARE(info->name(), QStringLiteral("Cache"));
    QCOMPARE(info->fileURLs(), FileUrls{kCaches});
    QCOMPARE(info->fileSize(), 0);
    QVERIFY(info->isOn());
    info->setIsOn(false);
    QVERIFY(!info->isOn());
    QCOMPARE(m_measures, 0);
}

void TestInfo::takesItsImageFromItsName()
{
    QCOMPARE(slice({})->image(), QStringLiteral("Cache"));
    Info info(QStringLiteral("Cache"), std::nullopt, QStringLiteral("other"), std::nullopt);
    QCOMPARE(info.image(), QStringLiteral("other"));
    info.setImage(QStringLiteral("third"));
    QCOMPARE(info.image(), QStringLiteral("third"));
}

void TestInfo::measuresOnTheFirstReadOnly()
{
    const auto info = slice(FileUrls{kLogs});
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
    QCOMPARE(info->fileSize(), 34'000'000);
    QCOMPARE(m_measures, 1);
    QVERIFY(m_posts->wait());
    QCOMPARE(m_posts->count(), 1);
}

void TestInfo::sumsUpItsPlaces()
{
    const auto info = slice(FileUrls{kCaches, kGone, kLogs});
    QCOMPARE(info->fileSizeString(), QStringLiteral("1.23 GB"));
    QCOMPARE(info->fileSize(), 1'234'000'000);
}

void TestInfo::saysEmptyForNothing_data()
{
    QTest::addColumn<bool>("hasLocation");
    QTest::addRow("no such place") << true;
    QTest::addRow("no place at all") << false;
}

void TestInfo::saysEmptyForNothing()
{
    QFETCH(bool, hasLocation);
    const auto info = slice(hasLocation ? FileUrls{kGone} : FileUrls());
    QCOMPARE(info->fileSizeString(), QStringLiteral("Empty"));
    QCOMPARE(info->fileSize(), 0);
    QVERIFY(m_posts->wait());
    QCOMPARE(m_posts->count(), 1);
}

void TestInfo::hasNoTextWithoutPlaces()
{
    const auto info = slice(std::nullopt);
    QVERIFY(!info->fileURLs());
    QVERIFY(!info->fileSizeString());
    QCOMPARE(info->fileSize(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(m_posts->count(), 0);
}

void TestInfo::keepsAPresetText()
{
    const QString preset = QStringLiteral("Click to select");
    for (const std::optional<FileUrls> &locations :
         {std::optional<FileUrls>(), {FileUrls{kCaches}}}) {
        Info info(QStringLiteral("Large Files"), locations, std::nullopt, preset, m_services);
        QCOMPARE(info.fileSizeString(), preset);
        QCOMPARE(info.fileSize(), 0);
    }
    QCOMPARE(m_measures, 0);
}

void TestInfo::measuresAgainOnceTheTextIsForgotten()
{
    const auto info = slice(FileUrls{kLogs});
    info->setFileSizeString(QStringLiteral("old"));
    QCOMPARE(info->fileSizeString(), QStringLiteral("old"));
    info->setFileSizeString(std::nullopt);
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
}

void TestInfo::measuresNewPlacesAndKeepsTheText()
{
    const auto info = slice(FileUrls{kLogs});
    info->fileSizeString();
    QVERIFY(m_posts->wait());
    info->setFileURLs({kCaches});
    QCOMPARE(info->fileURLs(), FileUrls{kCaches});
    QCOMPARE(info->fileSize(), 1'200'000'000);
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
    QVERIFY(m_posts->wait());
    QCOMPARE(m_posts->count(), 2);
}

void TestInfo::setsTheSizeToNothingWithoutPlaces()
{
    const auto info = slice(FileUrls{kLogs});
    info->fileSizeString();
    info->setFileURLs({});
    QCOMPARE(info->fileSize(), 0);
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
}

void TestInfo::postsEveryTimeTheSizeIsSet()
{
    const auto info = slice(std::nullopt);
    info->setFileSize(7);
    info->setFileSize(7);
    QCOMPARE(m_posts->count(), 0); // later, not within the call
    QTRY_COMPARE(m_posts->count(), 2);
    QCOMPARE(info->fileSize(), 7);
}

void TestInfo::postsOnTheMainThread()
{
    const auto info = slice(FileUrls{kLogs});
    QThread *postedOn = nullptr;
    connect(
        m_notification.get(), &FileSizeChangedNotification::posted, m_notification.get(),
        [&] { postedOn = QThread::currentThread(); }, Qt::DirectConnection);
    std::jthread([&] { info->fileSizeString(); }).join();
    QVERIFY(!postedOn);
    QVERIFY(m_posts->wait());
    QCOMPARE(postedOn, QCoreApplication::instance()->thread());
    QCOMPARE(info->fileSize(), 34'000'000);
}

void TestInfo::isMeasuredByTwoReadersAtOnce()
{
    const auto info = slice(FileUrls{kCaches, kLogs});
    std::optional<QString> first;
    std::optional<QString> second;
    {
        const std::jthread one([&] { first = info->fileSizeString(); });
        const std::jthread other([&] { second = info->fileSizeString(); });
    }
    QCOMPARE(first, QStringLiteral("1.23 GB"));
    QCOMPARE(second, QStringLiteral("1.23 GB"));
    QCOMPARE(info->fileSize(), 1'234'000'000);
    QCOMPARE(m_measures, 2); // each location once
}

void TestInfo::staysUnmeasuredWhenTheMeasureIsStopped()
{
    m_services.measure = [](const FileUrl &url, const FileUrls &) {
        return url == kCaches ? std::optional(bytesOf(url)) : std::nullopt;
    };
    const auto info = slice(FileUrls{kCaches, kLogs});
    QVERIFY(!info->fileSizeString());
    QVERIFY(!info->isMeasured());
    QCOMPARE(info->fileSize(), 0);
    info->setFileURLs({kLogs});
    QCOMPARE(info->fileSize(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(m_posts->count(), 0);
}

void TestInfo::dropsAMeasureOfPlacesThatWereChangedMeanwhile()
{
    std::shared_ptr<Info> info;
    m_services.measure = [&](const FileUrl &url, const FileUrls &) {
        if (url == kCaches) { // while these are being measured, the user chooses others
            info->setFileURLs({kLogs});
            info->setFileSizeString(QStringLiteral("chosen"));
        }
        return bytesOf(url);
    };
    info = slice(FileUrls{kCaches});
    QCOMPARE(info->fileSizeString(), QStringLiteral("chosen"));
    QCOMPARE(info->fileSize(), 34'000'000);
}

void TestInfo::keepsATextThatWasSetMeanwhile()
{
    std::shared_ptr<Info> info;
    m_services.measure = [&](const FileUrl &url, const FileUrls &) {
        info->setFileSizeString(QStringLiteral("set"));
        return bytesOf(url);
    };
    info = slice(FileUrls{kCaches});
    QCOMPARE(info->fileSizeString(), QStringLiteral("set"));
    QCOMPARE(info->fileSize(), 0);
}

void TestInfo::dropsAnOldMeasureOfNewPlaces()
{
    std::shared_ptr<Info> info;
    m_services.measure = [&](const FileUrl &url, const FileUrls &) {
        if (url == kCaches)
            info->setFileURLs({kLogs});
        return bytesOf(url);
    };
    info = slice(std::nullopt);
    info->setFileURLs({kCaches});
    QCOMPARE(info->fileURLs(), FileUrls{kLogs});
    QCOMPARE(info->fileSize(), 34'000'000);
    QCOMPARE(info->fileSizeString(), QStringLiteral("34 MB"));
}

void TestInfo::measuresItsPlacesWithoutWhatIsKept()
{
    const FileUrl kept = kCaches.appending("browser", FileUrlKind::Folder);
    m_services.measure = [&](const FileUrl &url, const FileUrls &without) {
        return bytesOf(url) - 1'000'000 * without.count(kept);
    };
    const auto info = slice(FileUrls{kCaches});
    QCOMPARE(info->kept(), FileUrls());
    QCOMPARE(info->fileSizeString(), QStringLiteral("1.2 GB"));
    info->setLocations({kCaches, kLogs}, {kept});
    QVERIFY(!info->isMeasured());
    QCOMPARE(info->fileURLs(), FileUrls({kCaches, kLogs}));
    QCOMPARE(info->kept(), FileUrls{kept});
    QCOMPARE(info->fileSizeString(), QStringLiteral("1.23 GB"));
    QCOMPARE(info->fileSize(), 1'232'000'000); // asked for each of both locations
    info->setFileURLs({kCaches});
    QCOMPARE(info->kept(), FileUrls());
    QCOMPARE(info->fileSize(), 1'200'000'000);
}

void TestInfo::dropsAMeasureOfWhatIsKeptMeanwhile()
{
    std::shared_ptr<Info> info;
    m_services.measure = [&](const FileUrl &url, const FileUrls &without) {
        if (without.isEmpty()) // while all is being measured, a program begins to use a part
            info->setLocations({kCaches}, {kLogs});
        return bytesOf(url) - without.size();
    };
    info = slice(FileUrls{kCaches});
    info->fileSizeString();
    QCOMPARE(info->fileSize(), 1'199'999'999);
}

void TestInfo::doesNotTurnOver()
{
    constexpr qint64 kMost = std::numeric_limits<qint64>::max();
    m_services.measure = [](const FileUrl &, const FileUrls &) { return kMost; };
    const auto info = slice(FileUrls{kCaches, kLogs});
    QCOMPARE(info->fileSizeString(), QStringLiteral("9.22 EB"));
    QCOMPARE(info->fileSize(), kMost);
}

void TestInfo::needsNoServices()
{
    const auto info = Info::infoWithName(QStringLiteral("Cache"), FileUrls{kCaches});
    QCOMPARE(info->fileSizeString(), QStringLiteral("Empty"));
    info->setFileURLs({kLogs});
    QCOMPARE(info->fileSize(), 0);
}

void TestInfo::printsAsItsName()
{
    QString text;
    QDebug(&text) << *slice(std::nullopt) << 7;
    QCOMPARE(text, QStringLiteral("Cache 7 "));
}

VANTOR_TEST_MAIN(TestInfo)
#include "tst_Info.moc"
