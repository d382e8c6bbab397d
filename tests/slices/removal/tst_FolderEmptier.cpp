#include "slices/removal/FolderEmptier.h"

#include "platform/system/ThreadConfinement.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

namespace {

/// Does something before the hundredth removal of a file.
class InTheMidst final : public HookedCalls
{
public:
    explicit InTheMidst(std::function<void()> action) : m_action(std::move(action)) {}

    std::optional<int> before(const char *call, int, const char *name) const override
    {
        constexpr int kMidst = 100;
        if (takesAside(call, name) && ++m_removals == kMidst)
            doOutside(m_action);
        return {};
    }

private:
    std::function<void()> m_action;
    mutable int m_removals = 0;
};

} // namespace

/// What the threads that it starts may reach. Trees in which something is kept: see
/// tst_CleaningMoves.
class TestFolderEmptier final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void removesAPickedPackage();
    void reachesNothingBesideAPackage_data();
    void reachesNothingBesideAPackage();
    void leavesTheRestOfAPackageThatIsDraggedAway();

private:
    CleaningReport cleanPackage(const SystemCalls &calls = hostSystemCalls()) const
    {
        const LogRecorder silenced;
        return clean(*m_home, {theFiles({m_home->folder("Downloads/Big.app")})}, {}, calls);
    }

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_downloads;
    std::unique_ptr<GrantedFolder> m_home;
};

void TestFolderEmptier::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads";
    makeFolder(m_downloads + "/Beside");
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestFolderEmptier::removesAPickedPackage()
{
    for (const char *name : {"Contents/a", "Contents/deep/er/b", "c"})
        makeFile(m_downloads + "/Big.app/" + name);
    makeFile(m_downloads + "/Beside/letter");
    const CleaningReport report = cleanPackage();
    QCOMPARE(report.refusalCount + report.failureCount, 0U);
    QCOMPARE(report.removedItems, std::uint64_t(7));
    QCOMPARE(tree(m_downloads), std::set<QByteArray>({"Beside", "Beside/letter"}));
}

void TestFolderEmptier::reachesNothingBesideAPackage_data()
{
    QTest::addColumn<bool>("isConfined");
    QTest::addColumn<QByteArray>("place");
    for (const bool isConfined : {true, false}) {
        for (const char *place : {"Downloads/Beside/saved", "Downloads/saved", "saved"})
            QTest::addRow("%s, to %s", isConfined ? "confined" : "unconfined", place)
                << isConfined << QByteArray(place);
    }
}

/// A part of the package is dragged out of it to be saved, into a folder beside, too.
void TestFolderEmptier::reachesNothingBesideAPackage()
{
    QFETCH(bool, isConfined);
    QFETCH(QByteArray, place);
    constexpr std::size_t kMostUnnoticed = 256;
    for (int i = 0; i < 3000; ++i)
        makeFile(m_downloads + "/Big.app/much/" + QByteArray::number(i), {});
    const QByteArray saved = *m_scratch / ("home/" + place);
    std::size_t atTheMove = 0;
    InTheMidst calls([&] {
        move(m_downloads + "/Big.app/much", saved);
        atTheMove = tree(saved).size();
    });
    if (!isConfined)
        calls.letNothingBeConfined();
    const CleaningReport report = cleanPackage(calls);
    QVERIFY(atTheMove > 2000);
    const std::size_t lost = atTheMove - tree(saved).size();
    QVERIFY2(lost <= (isConfined && hostConfinement().isAvailable() ? 0 : kMostUnnoticed),
             QByteArray::number(qulonglong(lost)));
    QVERIFY(report.refusalCount + report.failureCount > 0);
}

/// As a whole: its name in the folder around is another's from then on.
void TestFolderEmptier::leavesTheRestOfAPackageThatIsDraggedAway()
{
    for (int i = 0; i < 3000; ++i)
        makeFile(m_downloads + "/Big.app/much/" + QByteArray::number(i), {});
    const QByteArray saved = *m_scratch / "home/Saved.app";
    std::size_t atTheMove = 0;
    const InTheMidst calls([&] {
        move(m_downloads + "/Big.app", saved);
        atTheMove = tree(saved).size();
    });
    const CleaningReport report = cleanPackage(calls);
    QVERIFY(atTheMove > 2000);
    QVERIFY(atTheMove - tree(saved).size() <= 256);
    QVERIFY(report.refusalCount > 0);
}

VANTOR_TEST_MAIN(TestFolderEmptier)
#include "tst_FolderEmptier.moc"
