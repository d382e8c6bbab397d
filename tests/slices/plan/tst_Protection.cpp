#include "platform/system/FileStatus.h"
#include "platform/system/HostSystemCalls.h"
#include "slices/plan/Protection.h"

#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/run/TestMain.h"

class TestProtection final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void judgesItemsByTheirPaths_data();
    void judgesItemsByTheirPaths();
    void knowsExcludedItemsByTheirNumbers();
    void keepsWhatItIsToldLater();
    void knowsNumbersOfItsOwnDeviceOnly();
    void sharesTheNumbersWithThePlan();

private:
    Protection protection(std::uint64_t deviceOffset = 0) const
    {
        const CleaningPlan plan = makeCleaningPlan(
            hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})},
            excluding({m_home->folder("Downloads/way/Keep"), m_home->file("Downloads/ab"),
                       m_home->file("Downloads/Tool.app/kept")}));
        const CleaningLocation &location = plan.locations().front();
        return {plan, location, location.identity.device + deviceOffset};
    }
    ino_t inodeOf(const QByteArray &relative) const
    {
        struct stat found
        {
        };
        ::lstat((m_downloads + relative).constData(), &found);
        return found.st_ino;
    }

    std::unique_ptr<CleaningGround> m_scratch;
    std::unique_ptr<GrantedFolder> m_home;
    QByteArray m_downloads;
};

void TestProtection::init()
{
    m_scratch = std::make_unique<CleaningGround>();
    m_downloads = *m_scratch / "home/Downloads/";
    for (const char *name : {"way/Keep/a", "ab", "Tool.app/kept", "other"})
        makeFile(m_downloads + name);
    m_home = std::make_unique<GrantedFolder>(*m_scratch / "home");
}

void TestProtection::judgesItemsByTheirPaths_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::addColumn<FileKind>("kind");
    QTest::addColumn<ExclusionMatch>("match");
    using enum FileKind;
    QTest::addRow("other file") << QByteArray("other") << Regular << ExclusionMatch::None;
    QTest::addRow("other folder") << QByteArray("folder") << Folder << ExclusionMatch::None;
    QTest::addRow("excluded folder") << QByteArray("way/Keep") << Folder << ExclusionMatch::Whole;
    QTest::addRow("its content") << QByteArray("way/Keep/a") << Regular << ExclusionMatch::Whole;
    QTest::addRow("folder on the way") << QByteArray("way") << Folder << ExclusionMatch::OnTheWay;
    QTest::addRow("link on the way") << QByteArray("way") << Link << ExclusionMatch::Whole;
    QTest::addRow("beside on the way") << QByteArray("way/other") << Folder << ExclusionMatch::None;
    QTest::addRow("excluded file") << QByteArray("ab") << Regular << ExclusionMatch::Whole;
    QTest::addRow("longer than it") << QByteArray("abc") << Folder << ExclusionMatch::Whole;
    QTest::addRow("file shorter than it") << QByteArray("a") << Regular << ExclusionMatch::Whole;
    QTest::addRow("folder shorter than it") << QByteArray("a") << Folder << ExclusionMatch::None;
    QTest::addRow("package on the way")
        << QByteArray("Tool.app") << Folder << ExclusionMatch::Whole;
    QTest::addRow("other package") << QByteArray("Other.app") << Folder << ExclusionMatch::None;
}

void TestProtection::judgesItemsByTheirPaths()
{
    QFETCH(QByteArray, item);
    QFETCH(FileKind, kind);
    QFETCH(ExclusionMatch, match);
    QVERIFY(protection().isTouched());
    QCOMPARE(protection().match(m_downloads + item, kind), match);
}

void TestProtection::knowsExcludedItemsByTheirNumbers()
{
    const Protection known = protection();
    for (const char *name : {"way/Keep", "ab", "Tool.app/kept"})
        QVERIFY(known.keepsInode(inodeOf(name)));
    for (const char *name : {"way", "way/Keep/a", "other"})
        QVERIFY(!known.keepsInode(inodeOf(name)));
}

void TestProtection::keepsWhatItIsToldLater()
{
    const CleaningPlan plan = makeCleaningPlan(hostSystemCalls(), *m_home,
                                               {contentsOf({m_home->folder("Downloads")})}, {});
    const CleaningLocation &location = plan.locations().front();
    Protection protection(plan, location, location.identity.device);
    QVERIFY(!protection.isTouched());
    protection.keep(m_home->folder("Downloads/way/Keep"));
    QVERIFY(protection.isTouched());
    QCOMPARE(protection.match(m_downloads + "way/Keep", FileKind::Folder), ExclusionMatch::Whole);
    QCOMPARE(protection.match(m_downloads + "way", FileKind::Folder), ExclusionMatch::OnTheWay);
    QCOMPARE(protection.match(m_downloads + "other", FileKind::Regular), ExclusionMatch::None);
}

void TestProtection::knowsNumbersOfItsOwnDeviceOnly()
{
    QVERIFY(!protection(1).keepsInode(inodeOf("ab")));
}

/// A plan of thousands of single files makes one protection for each.
void TestProtection::sharesTheNumbersWithThePlan()
{
    const CleaningPlan plan =
        makeCleaningPlan(hostSystemCalls(), *m_home, {contentsOf({m_home->folder("Downloads")})},
                         excluding({m_home->file("Downloads/ab")}));
    const CleaningLocation &location = plan.locations().front();
    const ExcludedInodes inodes = plan.excludedInodesOn(location.identity.device);
    QCOMPARE(inodes->size(), std::size_t(1));
    const auto before = inodes.use_count();
    const Protection first(plan, location, location.identity.device);
    const Protection second(plan, location, location.identity.device);
    QCOMPARE(inodes.use_count(), before + 2);
}

VANTOR_TEST_MAIN(TestProtection)
#include "tst_Protection.moc"
