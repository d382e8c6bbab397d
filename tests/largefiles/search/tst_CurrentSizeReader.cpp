#include "largefiles/search/CurrentSizeReader.h"
#include "largefiles/search/ListedFiles.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/record/Confirmation.h"
#include "tests/largefiles/search/Gate.h"
#include "tests/largefiles/search/SearchKit.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QTest>
#include <cstdio>

class CurrentSizeReaderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersWithWhatIsOnTheDisk()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a", "Movies/b", "Movies/dir/"});
        home.makeFile("Movies/small", 5);
        QVERIFY(QFile::resize(QFile::decodeName(home.path("Movies/b")), kLarge + 7));
        home.makeLink("Movies/link", "a");
        CurrentSizeReader sizes(hostSystemCalls(), access);
        QList<CurrentSize> answer;
        sizes.read({fileIn(home, "Movies/b"), fileIn(home, "Movies/gone"), fileIn(home, "Movies/a"),
                    fileIn(home, "Movies/small"), fileIn(home, "Movies/dir"),
                    fileIn(home, "Movies/link"),
                    FileUrl::fromPath("/etc/passwd", FileUrlKind::File)},
                   [&](const QList<CurrentSize> &read) { answer = read; });
        QVERIFY(answer.isEmpty()); // later
        const auto known = [&](const QByteArray &path, qint64 bytes) {
            const FileUrl url = fileIn(home, path);
            const AccessScope scope(access);
            const auto found = lookAtLocations(hostSystemCalls(), access, {url});
            return CurrentSize{bytes, true, found.value(url.path())};
        };
        QTRY_COMPARE(answer, QList<CurrentSize>({known("Movies/b", kLarge + 7),
                                                 {},
                                                 known("Movies/a", kLarge),
                                                 known("Movies/small", 5),
                                                 {},
                                                 {},
                                                 {}}));
        QVERIFY(answer.first().identity != answer[2].identity);
        QCOMPARE(access.starts(), access.stops());
        QVERIFY(access.starts() > 0);
    }

    void tellsWhatMayBeDeleted_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<bool>("isDeletable");
        QTest::addRow("in a folder of the user's") << QByteArray("Movies") << true;
        QTest::addRow("in a read-only folder") << QByteArray("Movies/closed") << false;
        QTest::addRow("locked by its attribute") << QByteArray("Movies/locked") << false;
    }

    /// An ordinary user asks: nothing is closed to the administrator.
    void tellsWhatMayBeDeleted()
    {
        VANTOR_NEEDS_ADMINISTRATOR();
        QFETCH(QByteArray, folder);
        QFETCH(bool, isDeletable);
        MadeTree home;
        make(home, {"Movies/", "Movies/closed/", "Movies/locked/"});
        home.makeFile(folder + "/film", kLarge);
        for (const char *each : {"Movies", "Movies/closed", "Movies/locked"})
            home.setOwner(each, kNobody);
        home.setMode("Movies/closed", 0555);
        if (folder == "Movies/locked")
            home.setAttribute("Movies/locked/film", Attribute::Immutable);
        const QByteArray text =
            runInChild(ChildUser::Nobody, [&] {
                HomeAccess access(home);
                for (const CurrentSize &size :
                     currentSizes(hostSystemCalls(), access, {fileIn(home, folder + "/film")}, {}))
                    std::fprintf(stderr, "%lld %d", size.bytes, size.isDeletable);
                return 0;
            }).errorText;
        QCOMPARE(text, QByteArray::number(kLarge) + (isDeletable ? " 1" : " 0"));
    }

    void onlyTheLatestQuestionIsAnswered()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a"});
        CurrentSizeReader sizes(hostSystemCalls(), access);
        QList<int> answered;
        for (int question = 0; question < 20; ++question)
            sizes.read(
                {fileIn(home, "Movies/a")},
                [&answered, question](const QList<CurrentSize> &) { answered.append(question); });
        QTRY_COMPARE(answered, QList<int>{19});
    }

    void aDiskThatHangsHoldsUpOneThread()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a", "Movies/b"});
        Gate gate("a");
        CurrentSizeReader sizes(gate.calls, access);
        sizes.read({fileIn(home, "Movies/a")}, [](const QList<CurrentSize> &) {});
        gate.awaitArrival();
        const auto threads = [] {
            return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::AllDirs).size();
        };
        const auto before = threads();
        QList<CurrentSize> answer;
        for (int question = 0; question < 20; ++question)
            sizes.read({fileIn(home, "Movies/b")},
                       [&answer](const QList<CurrentSize> &read) { answer += read; });
        const auto during = threads();
        gate.open();
        QCOMPARE(during, before);
        QTRY_COMPARE(answer.size(), 1);
        QCOMPARE(answer.first().bytes, kLarge);
    }

    void nobodyIsAnsweredWhenItIsGone()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a"});
        bool isAnswered = false;
        {
            CurrentSizeReader sizes(hostSystemCalls(), access);
            sizes.read({fileIn(home, "Movies/a")},
                       [&](const QList<CurrentSize> &) { isAnswered = true; });
        }
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
        QVERIFY(!isAnswered);
        QCOMPARE(access.starts(), access.stops());
    }
};

VANTOR_TEST_MAIN(CurrentSizeReaderTest)
#include "tst_CurrentSizeReader.moc"
