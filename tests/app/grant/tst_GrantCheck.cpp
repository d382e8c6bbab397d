#include "app/grant/GrantCheck.h"
#include "platform/system/HostSystemCalls.h"

#include "tests/support/calls/SlowDisk.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/page/ResourceManagerReset.h"
#include "tests/support/run/TestMain.h"

#include <QTest>
#include <unistd.h>

class TestGrantCheck final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asksNothingOfTheDiskOnTheMainThread();
    void saysWhatIsWrong();
    void looksAgainForALaterQuestion();
    void answersNoQuestionThatWasDropped();
    void answersAboutTheGrantThatIsStoredThen();
    void waitsForNoFolderThatIsGrantedNoMore();

private:
    using Failure = std::optional<GrantFailure>;

    QByteArray grantOf(const QByteArray &name) const;
    GrantCheck::Answer note();

    std::unique_ptr<ScratchFolder> m_scratch;
    std::optional<QByteArray> m_stored;
    SlowDisk m_disk;
    std::unique_ptr<GrantCheck> m_check;
    QList<Failure> m_answers;
};

void TestGrantCheck::init()
{
    m_scratch = std::make_unique<ScratchFolder>();
    m_scratch->makeFolder("anna");
    m_scratch->makeFolder("annabel");
    m_stored = grantOf("anna");
    ResourceManagerReset::beginRun([this] { return m_stored; }, m_disk.calls());
    m_answers.clear();
    m_check = std::make_unique<GrantCheck>();
}

void TestGrantCheck::cleanup()
{
    m_disk.answer();
    m_check.reset();
    ResourceManagerReset::beginRun();
    m_scratch.reset();
    m_disk.takeAskedHere();
}

QByteArray TestGrantCheck::grantOf(const QByteArray &name) const
{
    return makeGrant(hostSystemCalls(), m_scratch->path(name)).value_or(QByteArray());
}

GrantCheck::Answer TestGrantCheck::note()
{
    return [this](Failure failure) { m_answers.append(failure); };
}

void TestGrantCheck::asksNothingOfTheDiskOnTheMainThread()
{
    m_check->ask(note());
    QVERIFY(m_answers.isEmpty());
    QTRY_COMPARE(m_answers, QList<Failure>{std::nullopt});
    QCOMPARE(ResourceManager::homeFolder().path(), m_scratch->path("anna"));
    QCOMPARE(m_disk.takeAskedHere(), QStringList());
}

void TestGrantCheck::saysWhatIsWrong()
{
    m_stored = "no grant";
    m_check->ask(note());
    QTRY_COMPARE(m_answers, QList<Failure>{GrantFailure::Damaged});
    m_stored.reset();
    m_check->ask(note());
    QTRY_COMPARE(m_answers.size(), 2);
    QCOMPARE(m_answers.constLast(), Failure(GrantFailure::Missing));
}

void TestGrantCheck::looksAgainForALaterQuestion()
{
    m_disk.hang(QStringLiteral("statusOf")); // with the folder open
    m_check->ask([](Failure) { QFAIL("asked again"); });
    QTRY_COMPARE(m_disk.waiting(), 1);
    for (int i = 0; i < 3; ++i)
        m_check->ask([](Failure) { QFAIL("asked again"); });
    m_check->ask(note());
    QCOMPARE(::rmdir(m_scratch->path("anna").constData()), 0);
    m_disk.answer();
    QTRY_COMPARE(m_answers, QList<Failure>{GrantFailure::Gone});
}

void TestGrantCheck::answersNoQuestionThatWasDropped()
{
    m_disk.hang();
    m_check->ask([](Failure) { QFAIL("dropped"); });
    QTRY_COMPARE(m_disk.waiting(), 1);
    m_check->drop();
    m_disk.answer();
    QTRY_VERIFY(!m_check->isLooking());
}

void TestGrantCheck::answersAboutTheGrantThatIsStoredThen()
{
    m_disk.hang();
    m_check->ask(note());
    QTRY_COMPARE(m_disk.waiting(), 1);
    m_stored = "no grant";
    m_disk.answer();
    QTRY_COMPARE(m_answers, QList<Failure>{GrantFailure::Damaged});
}

void TestGrantCheck::waitsForNoFolderThatIsGrantedNoMore()
{
    m_disk.hang();
    m_check->ask(note());
    QTRY_COMPARE(m_disk.waiting(), 1);
    m_stored = "no grant";
    m_check->ask(note());
    QTRY_COMPARE(m_answers, QList<Failure>{GrantFailure::Damaged});
    QCOMPARE(m_disk.waiting(), 1);
    m_stored = grantOf("anna");
    m_check->ask(note());
    m_disk.answer();
    QTRY_COMPARE(m_answers.size(), 2);
    QCOMPARE(m_answers.constLast(), Failure());
}

VANTOR_TEST_MAIN(TestGrantCheck)
#include "tst_GrantCheck.moc"
