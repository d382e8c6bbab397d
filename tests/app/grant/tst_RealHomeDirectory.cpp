#include "app/grant/RealHomeDirectory.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <csignal>
#include <pwd.h>
#include <unistd.h>

class TestRealHomeDirectory final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isThePasswordDatabasesNotTheEnvironments();
    void endsTheProgramForAnUnknownUser();
};

void TestRealHomeDirectory::isThePasswordDatabasesNotTheEnvironments()
{
    const passwd *entry = ::getpwuid(::getuid());
    QVERIFY(entry);
    QVERIFY(qgetenv("HOME") != entry->pw_dir); // the test has a home of its own
    QCOMPARE(RealHomeDirectory(), QByteArray(entry->pw_dir));
}

void TestRealHomeDirectory::endsTheProgramForAnUnknownUser()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    uid_t unknown = 54321;
    while (::getpwuid(unknown))
        ++unknown;
    const ChildOutcome outcome = runInChild(ChildUser::Same, [unknown] {
        if (::setuid(unknown) != 0)
            return 1;
        return RealHomeDirectory().isEmpty() ? 2 : 3;
    });
    QCOMPARE(outcome.exitCode, -1);
    QCOMPARE(outcome.signal, SIGABRT);
    QVERIFY2(outcome.errorText.contains("ASSERT: \"pw\""), outcome.errorText.constData());
}

VANTOR_TEST_MAIN(TestRealHomeDirectory)
#include "tst_RealHomeDirectory.moc"
