#include "tests/slices/kit/KillCase.h"
#include "tests/slices/kit/StepsOfRemoval.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

Q_DECLARE_METATYPE(KillWorld)

namespace {

/// In the last instant somebody gives an excluded file the name of one that goes. The process is
/// killed once that is moved aside.
class KillingExchange final : public HookedCalls
{
public:
    KillingExchange(QByteArray kept, QByteArray doomed)
        : m_kept(std::move(kept)), m_doomed(std::move(doomed))
    {
    }
    std::optional<int> before(const char *call, int, const char *name) const override
    {
        if (m_isMoved)
            ::kill(::getpid(), SIGKILL);
        m_isMoved = qstrcmp(call, "moveToFree") == 0 && m_doomed.endsWith(name) &&
                    ::rename(m_kept.constData(), m_doomed.constData()) == 0;
        return {};
    }

private:
    const QByteArray m_kept;
    const QByteArray m_doomed;
    mutable bool m_isMoved = false;
};

} // namespace

/// What a cleaning leaves behind when its process is killed.
class TestCleaningKills final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKillBeforeAnyCallLosesNothing_data();
    void aKillBeforeAnyCallLosesNothing();
    void aKillAtAnyMomentLosesNothing_data();
    void aKillAtAnyMomentLosesNothing();
    void aKillKeepsWhatHasTakenAnothersName();
    void aFolderGetsItsNameBackBesideAnExclusion();
};

void TestCleaningKills::aKillBeforeAnyCallLosesNothing_data()
{
    using Excluded = KillWorld::Excluded;
    constexpr auto kMemory = KillingCalls::Medium::Memory;
    QTest::addColumn<KillWorld>("world");
    const auto row = [](const KillWorld &world) { QTest::newRow(world.name) << world; };
    row({"nothing excluded", Excluded::Nothing, kMemory, false});
    row({"excluded beside", Excluded::Beside, kMemory, false});
    row({"excluded inside", Excluded::Inside, kMemory, false});
    row({"excluded inside, confined", Excluded::Inside, kMemory, true});
}

void TestCleaningKills::aKillBeforeAnyCallLosesNothing()
{
    QFETCH(KillWorld, world);
    const std::size_t descriptors = openDescriptors();
    int kills = 0;
    for (;;) {
        const KillOutcome outcome = killAtCall(world, 1, kills);
        QVERIFY2(outcome.wrong.isEmpty(), QByteArray::number(kills) + ": " + outcome.wrong);
        QVERIFY(outcome.end != WorkEnd::Failed);
        if (outcome.end == WorkEnd::Done)
            break;
        ++kills;
    }
    QVERIFY2(kills > 50, QByteArray::number(kills));
    QCOMPARE(openDescriptors(), descriptors);
}

void TestCleaningKills::aKillAtAnyMomentLosesNothing_data()
{
    using Excluded = KillWorld::Excluded;
    constexpr auto kDisk = KillingCalls::Medium::Disk;
    QTest::addColumn<KillWorld>("world");
    const auto row = [](const KillWorld &world) { QTest::newRow(world.name) << world; };
    row({"nothing excluded", Excluded::Nothing, kDisk, false});
    row({"excluded inside, confined", Excluded::Inside, kDisk, true});
}

/// Two threads remove.
void TestCleaningKills::aKillAtAnyMomentLosesNothing()
{
    QFETCH(KillWorld, world);
    constexpr int kKills = 100;
    constexpr std::chrono::microseconds kStep{20};
    for (int i = 0; i < kKills; ++i) {
        const KillOutcome outcome = killAtTime(world, quint32(i), i * kStep);
        QVERIFY2(outcome.wrong.isEmpty(), QByteArray::number(i) + ": " + outcome.wrong);
        QVERIFY(outcome.end != WorkEnd::Failed);
    }
}

void TestCleaningKills::aKillKeepsWhatHasTakenAnothersName()
{
    const CleaningGround ground;
    const QByteArray home = ground / "home";
    const QByteArray kept = home + "/Downloads/kept";
    const QByteArray doomed = home + "/Downloads/folder/doomed";
    makeFile(kept, "precious");
    makeFile(doomed);
    const GrantedFolder granted(home);
    const QList<SliceToClean> slices{contentsOf({granted.folder("Downloads")})};
    const ExcludedPaths excluded = excluding({granted.file("Downloads/kept")});
    const auto cleanWith = [&](const SystemCalls &calls) {
        return cleanNoted(ground / "settings", granted, slices, excluded, calls);
    };
    const WorkEnd end = runAndKill([&] {
        KillingExchange calls(kept, doomed);
        calls.letNothingBeConfined();
        cleanWith(calls);
    });
    QCOMPARE(end, WorkEnd::Killed);
    const auto all = [&] { return tree(home + "/Downloads"); };
    QCOMPARE(all().size(), std::size_t(2));
    const QByteArray aside = *all().rbegin();
    QVERIFY2(aside.startsWith("folder/") && isPrivateName(aside.sliced(7)), aside);

    // What was excluded cannot be found, so all around it is left alone.
    QCOMPARE(cleanWith(hostSystemCalls()).refusalCount, 1U);
    QCOMPARE(all(), std::set<QByteArray>({"folder", "folder/doomed"}));
    QCOMPARE(std::filesystem::file_size(native(doomed)), 8U);
}

/// Where no note could be written, on a full disk perhaps.
void TestCleaningKills::aFolderGetsItsNameBackBesideAnExclusion()
{
    const CleaningGround ground;
    const QByteArray downloads = ground / "home/Downloads";
    makeFolder(downloads + "/.vantor-aside.folder");
    makeFile(downloads + "/kept");
    const GrantedFolder granted(ground / "home");
    const CleaningReport report = clean(granted, {contentsOf({granted.folder("Downloads")})},
                                        excluding({granted.file("Downloads/kept")}));
    QCOMPARE(tree(downloads), std::set<QByteArray>({"folder", "kept"}));
    QCOMPARE(report.refusalCount, 1U);
    QCOMPARE(report.refusals.first().path, downloads + "/.vantor-aside.folder");
}

VANTOR_TEST_MAIN(TestCleaningKills)
#include "tst_CleaningKills.moc"
