#include "slices/removal/ExactRemoval.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// A disk without room for a move.
class FullDisk final : public HookedCalls
{
public:
    explicit FullDisk(int error, std::function<void()> action = {})
        : m_error(error), m_action(std::move(action))
    {
    }
    std::optional<int> before(const char *call, int, const char *) const override
    {
        if (qstrcmp(call, "moveToFree") != 0)
            return {};
        if (m_action)
            doOutside(m_action);
        return m_error;
    }

private:
    int m_error;
    std::function<void()> m_action;
};

} // namespace

/// What removals of whole trees show: see tst_CleaningMoves and tst_CleaningRaces.
class TestExactRemoval final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_ground = std::make_unique<CleaningGround>();
        makeFile(*m_ground / "file");
        makeFolder(*m_ground / "folder");
        m_folder = openedFolder(m_ground->path());
    }

    void removesWhereThereIsNoRoomForAMove_data();
    void removesWhereThereIsNoRoomForAMove();
    void comparesEvenThere();
    void leavesWhatCannotBeMovedForAnotherReason();

private:
    tl::expected<void, ExactRemoval::Failure> remove(const char *name,
                                                     const SystemCalls &calls) const
    {
        return ExactRemoval(calls).remove(m_folder.get(), name, statusIn(m_folder.get(), name));
    }

    std::unique_ptr<CleaningGround> m_ground;
    FileDescriptor m_folder;
};

void TestExactRemoval::removesWhereThereIsNoRoomForAMove_data()
{
    QTest::addColumn<int>("error");
    QTest::addRow("full") << ENOSPC;
    QTest::addRow("quota") << EDQUOT;
}

void TestExactRemoval::removesWhereThereIsNoRoomForAMove()
{
    QFETCH(int, error);
    QVERIFY(remove("file", FullDisk(error)).has_value());
    QVERIFY(remove("folder", FullDisk(error)).has_value());
    QVERIFY(tree(m_ground->path()).empty());
}

void TestExactRemoval::comparesEvenThere()
{
    const FullDisk calls(ENOSPC, [&] { makeFile(*m_ground / "file", "precious"); });
    QCOMPARE(remove("file", calls).error().error, ESTALE);
    QCOMPARE(std::filesystem::file_size(native(*m_ground / "file")), 8U);
}

void TestExactRemoval::leavesWhatCannotBeMovedForAnotherReason()
{
    QCOMPARE(remove("file", FullDisk(EPERM)).error().error, EPERM);
    QVERIFY(exists(*m_ground / "file"));
}

VANTOR_TEST_MAIN(TestExactRemoval)
#include "tst_ExactRemoval.moc"
