#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// The answer of a program.
struct Answer
{
    int exitCode = -1;
    QString output;
};

Answer run(const QString &program, const QStringList &arguments, const QString &folder)
{
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char *settings : {"GIT_CONFIG_GLOBAL", "GIT_CONFIG_SYSTEM"})
        environment.insert(text(settings), text("/dev/null"));
    for (const char *role : {"AUTHOR", "COMMITTER"}) {
        environment.insert(QStringLiteral("GIT_%1_NAME").arg(text(role)), text("Somebody"));
        environment.insert(QStringLiteral("GIT_%1_EMAIL").arg(text(role)),
                           text("somebody@invalid"));
    }
    environment.remove(text("VANTOR_BASE"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished())
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

/// A repository of the test's own, with the scripts in it and a folder "app" and one "chart".
class Repository final
{
public:
    Repository()
    {
        git({text("init"), text("--quiet")});
        for (const char *folder : {"app", "chart", "scripts"})
            QDir(m_folder.path()).mkdir(text(folder));
        for (const char *script : {"base-commit", "check-commits"}) {
            const QString name = QStringLiteral("scripts/%1").arg(text(script));
            QFile::copy(text(VANTOR_SOURCE_TREE "/") + name, m_folder.filePath(name));
        }
    }

    QString git(const QStringList &arguments) const
    {
        const Answer answer = run(text("git"), arguments, m_folder.path());
        if (answer.exitCode != 0)
            qFatal("git: %s", qPrintable(answer.output));
        return answer.output.trimmed();
    }
    void commit(const char *message) const
    {
        git({text("commit"), text("--quiet"), text("--allow-empty"), text("-m"), text(message)});
    }
    Answer check(const QStringList &arguments = {}) const
    {
        return run(m_folder.filePath(text("scripts/check-commits")), arguments, m_folder.path());
    }
    QString path(const char *name) const { return m_folder.filePath(text(name)); }

private:
    QTemporaryDir m_folder;
};

} // namespace

/// The script that checks the form of commit messages.
class TestCheckCommits final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesAMessage_data();
    void judgesAMessage();
    void judgesNoCommitOlderThanTheBase();
    void letsMergesSayWhatTheyLike();
    void judgesTheLastCommitWhereThereIsNoBase();
    void takesTheLastTagForTheBase();
    void passesOverABaseThatIsNotThere();
};

void TestCheckCommits::judgesAMessage_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *name, const QByteArray &message, const char *complaint) {
        QTest::addRow("%s", name) << message << text(complaint);
    };
    row("good", "app: Say more\n\nFor want of words.\n", "");
    row("two areas", "app, chart: Say more\n\nFor want of words.\n", "");
    row("72 characters", "app: S" + QByteArray(66, 'a') + "\n\nWhy.\n", "");
    row("73 characters", "app: S" + QByteArray(67, 'a') + "\n\nWhy.\n", "73 characters");
    row("an order that ends alike", "app: Embed it\n\nWhy.\n", "");
    row("no area", "Say more\n\nWhy.\n", "is not \"area:");
    row("an area that is no folder", "core: Say more\n\nWhy.\n", "\"core\" is no folder");
    row("one such of two", "app, core: Say more\n\nWhy.\n", "\"core\" is no folder");
    row("a small letter", "app: say more\n\nWhy.\n", "capital letter");
    row("a full stop", "app: Say more.\n\nWhy.\n", "full stop");
    row("what was done", "app: Added words\n\nWhy.\n", "\"Added\" is no order");
    row("what is being done", "app: Adding words\n\nWhy.\n", "\"Adding\" is no order");
    row("what it does", "app: Adds words\n\nWhy.\n", "\"Adds\" is no order");
    row("no empty line", "app: Say more\nWhy.\n", "second line");
    row("no body", "app: Say more\n", "no body");
    row("an empty body", "app: Say more\n\n  \n", "no body");
}

void TestCheckCommits::judgesAMessage()
{
    QFETCH(QByteArray, message);
    QFETCH(QString, complaint);
    const Repository repository;
    QFile file(repository.path("message"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(message);
    file.close();
    const Answer answer = repository.check({text("--message"), file.fileName()});
    QCOMPARE(answer.exitCode, complaint.isEmpty() ? 0 : 1);
    QVERIFY2(complaint.isEmpty() ? answer.output.isEmpty() : answer.output.contains(complaint),
             qPrintable(answer.output));
}

void TestCheckCommits::judgesNoCommitOlderThanTheBase()
{
    const Repository repository;
    repository.commit("bad");
    const QString base = repository.git({text("rev-parse"), text("HEAD")});
    repository.commit("app: Say more\n\nWhy.");
    QCOMPARE(repository.check({base}).exitCode, 0);
    repository.commit("worse");
    repository.commit("app: Say even more\n\nWhy.");
    const Answer answer = repository.check({base});
    QCOMPARE(answer.exitCode, 1);
    QVERIFY2(answer.output.contains(text("worse")), qPrintable(answer.output));
    QVERIFY2(!answer.output.contains(text("bad")), qPrintable(answer.output));
}

void TestCheckCommits::letsMergesSayWhatTheyLike()
{
    const Repository repository;
    repository.commit("bad");
    const QString base = repository.git({text("rev-parse"), text("HEAD")});
    repository.git({text("checkout"), text("--quiet"), text("-b"), text("side")});
    repository.commit("app: Say more\n\nWhy.");
    repository.git({text("checkout"), text("--quiet"), text("-")});
    repository.commit("chart: Say more\n\nWhy.");
    repository.git({text("merge"), text("--quiet"), text("--no-ff"), text("-m"),
                    text("as it comes"), text("side")});
    const Answer answer = repository.check({base});
    QVERIFY2(answer.exitCode == 0, qPrintable(answer.output));
}

void TestCheckCommits::judgesTheLastCommitWhereThereIsNoBase()
{
    const Repository repository;
    repository.commit("bad");
    QCOMPARE(repository.check().exitCode, 1);
    repository.git({text("commit"), text("--quiet"), text("--amend"), text("--allow-empty"),
                    text("-m"), text("app: Say more\n\nWhy.")});
    QCOMPARE(repository.check().exitCode, 0);
}

void TestCheckCommits::takesTheLastTagForTheBase()
{
    const Repository repository;
    repository.commit("app: Say something\n\nWhy.");
    repository.commit("bad");
    repository.git({text("tag"), text("v1")});
    repository.commit("app: Say more\n\nWhy.");
    const Answer answer = repository.check();
    QVERIFY2(answer.exitCode == 0, qPrintable(answer.output));
}

void TestCheckCommits::passesOverABaseThatIsNotThere()
{
    const Repository repository;
    repository.commit("app: Say something\n\nWhy.");
    repository.commit("app: Say more\n\nWhy.");
    const Answer answer = repository.check({text("0123456789abcdef0123456789abcdef01234567")});
    QVERIFY2(answer.exitCode == 0, qPrintable(answer.output));
}

VANTOR_TEST_MAIN(TestCheckCommits)
#include "tst_CheckCommits.moc"
