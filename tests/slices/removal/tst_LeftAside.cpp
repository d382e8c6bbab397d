#include "slices/plan/CleaningReportBuilder.h"
#include "slices/removal/LeftAside.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

class TestLeftAside final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_ground = std::make_unique<CleaningGround>();
        makeFile(*m_ground / "place/.vantor-slot.0123456789abcdef.0", "left");
        m_folder = openedFolder(*m_ground / "place");
    }

    void givesNamesBackWhereverTheFolderIs();
    void reportsWhatKeepsAPrivateName();
    void knowsNothingOfWhatHasItsName();

private:
    CleaningReport reportAfter(const ExactRemoval::Failure &failure)
    {
        const LogRecorder silenced;
        CleaningReportBuilder builder({});
        LeftAside left(hostSystemCalls(), builder);
        [&] { QCOMPARE(left.note(m_folder.get(), "/place/", "file", failure), failure.error); }();
        m_folder.reset();
        std::filesystem::rename(native(*m_ground / "place"), native(*m_ground / "saved"));
        left.giveNamesBack();
        left.giveNamesBack();
        return builder.finish(false);
    }

    std::unique_ptr<CleaningGround> m_ground;
    FileDescriptor m_folder;
};

void TestLeftAside::givesNamesBackWhereverTheFolderIs()
{
    const auto report = reportAfter({EACCES, ".vantor-slot.0123456789abcdef.0"});
    QCOMPARE(tree(*m_ground / "saved"), std::set<QByteArray>({"file"}));
    QCOMPARE(report.refusalCount, 0U);
}

void TestLeftAside::reportsWhatKeepsAPrivateName()
{
    makeFile(*m_ground / "place/file", "newer");
    const auto report = reportAfter({EACCES, ".vantor-slot.0123456789abcdef.0"});
    QCOMPARE(tree(*m_ground / "saved"), std::set<QByteArray>({"file", ".vantor-aside.file"}));
    QCOMPARE(std::filesystem::file_size(native(*m_ground / "saved/file")), 5U);
    QCOMPARE(report.refusals.size(), 1);
    QCOMPARE(report.refusals.first().path, QByteArray("/place/.vantor-aside.file"));
    QCOMPARE(report.refusals.first().error, EACCES);
}

void TestLeftAside::knowsNothingOfWhatHasItsName()
{
    const auto report = reportAfter({EIO, {}});
    QVERIFY(exists(*m_ground / "saved/.vantor-slot.0123456789abcdef.0"));
    QCOMPARE(report.refusalCount, 0U);
}

VANTOR_TEST_MAIN(TestLeftAside)
#include "tst_LeftAside.moc"
