#include "largefiles/search/CurrentSizeReader.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/largefiles/search/Gate.h"
#include "tests/largefiles/search/SearchKit.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QTest>

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
        QList<qint64> answer;
        sizes.read({fileIn(home, "Movies/b"), fileIn(home, "Movies/gone"), fileIn(home, "Movies/a"),
                    fileIn(home, "Movies/small"), fileIn(home, "Movies/dir"),
                    fileIn(home, "Movies/link"),
                    FileUrl::fromPath("/etc/passwd", FileUrlKind::File)},
                   [&](const QList<qint64> &read) { answer = read; });
        QVERIFY(answer.isEmpty()); // later
        QTRY_COMPARE(answer, QList<qint64>({kLarge + 7, 0, kLarge, 5, 0, 0, 0}));
        QCOMPARE(access.starts(), access.stops());
        QVERIFY(access.starts() > 0);
    }

    void onlyTheLatestQuestionIsAnswered()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a"});
        CurrentSizeReader sizes(hostSystemCalls(), access);
        QList<int> answered;
        for (int question = 0; question < 20; ++question)
            sizes.read({fileIn(home, "Movies/a")},
                       [&answered, question](const QList<qint64> &) { answered.append(question); });
        QTRY_COMPARE(answered, QList<int>{19});
    }

    void aDiskThatHangsHoldsUpOneThread()
    {
        const MadeTree home;
        HomeAccess access(home);
        make(home, {"Movies/", "Movies/a", "Movies/b"});
        Gate gate("a");
        CurrentSizeReader sizes(gate.calls, access);
        sizes.read({fileIn(home, "Movies/a")}, [](const QList<qint64> &) {});
        gate.awaitArrival();
        const auto threads = [] {
            return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::AllDirs).size();
        };
        const auto before = threads();
        QList<qint64> answer;
        for (int question = 0; question < 20; ++question)
            sizes.read({fileIn(home, "Movies/b")},
                       [&answer](const QList<qint64> &read) { answer += read; });
        const auto during = threads();
        gate.open();
        QCOMPARE(during, before);
        QTRY_COMPARE(answer, QList<qint64>{kLarge});
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
                       [&](const QList<qint64> &) { isAnswered = true; });
        }
        awaitBackgroundThreads();
        QCoreApplication::processEvents();
        QVERIFY(!isAnswered);
        QCOMPARE(access.starts(), access.stops());
    }
};

VANTOR_TEST_MAIN(CurrentSizeReaderTest)
#include "tst_CurrentSizeReader.moc"
