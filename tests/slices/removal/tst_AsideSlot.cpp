#include "slices/removal/AsideNames.h"
#include "slices/removal/AsideSlot.h"
#include "tests/slices/kit/Interlopers.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// Notes the calls, fails some, and does something before one.
class Calls final : public HookedCalls
{
public:
    std::optional<int> before(const char *call, int, const char *) const override
    {
        all.append(call);
        if (m_action && m_at == call)
            doOutside(std::exchange(m_action, {}));
        return failing.contains(call) ? std::optional(EACCES) : std::nullopt;
    }
    void doBefore(const QByteArray &call, std::function<void()> action)
    {
        m_at = call;
        m_action = std::move(action);
    }

    mutable QByteArrayList all;
    QByteArrayList failing;

private:
    QByteArray m_at;
    mutable std::function<void()> m_action;
};

} // namespace

class TestAsideSlot final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void removesAFileWithTheNext();
    void changesTheFolderOnceForEachFile();
    void needsNoDescriptorInAFolderOfItsOwn();
    void givesAnotherFileItsNameBack_data();
    void givesAnotherFileItsNameBack();
    void takesNothingThatItCannotNote();
    void takesNoOtherNameOfTheFileItHolds();
    void leavesAFileThatCannotBeMoved();
    void keepsAFileWhoseMoveHappenedAndFailed();
    void needsNoDescriptorToCompare();
    void givesTheNameBackToWhatCannotBeRemoved();
    void tellsThePrivateNameOfWhatIsOutOfReach();
    void keepsTheNameWhereItsOwnIsTaken();
    void removesNoStranger();
    void isUsedAgain();

private:
    QByteArray path(const QByteArray &name) const { return m_place + '/' + name; }
    int folder() const { return m_folder.get(); }
    std::optional<AsideSlot::Outcome> take(AsideSlot &slot, const char *name) const
    {
        return slot.take(folder(), name, statusIn(folder(), name));
    }
    /// The names in the folder, with "slot" for the private one.
    std::set<QByteArray> names() const
    {
        std::set<QByteArray> found;
        for (const QByteArray &name : tree(m_place))
            found.insert(AsideNames::isPrivate(name.constData()) ? QByteArray("slot") : name);
        return found;
    }

    std::unique_ptr<CleaningGround> m_ground;
    QByteArray m_place;
    FileDescriptor m_folder;
    std::unique_ptr<AsideNames> m_names;
};

void TestAsideSlot::init()
{
    m_ground = std::make_unique<CleaningGround>();
    m_place = *m_ground / "place";
    for (const char *name : {"a", "b", "c"})
        makeFile(path(name), name);
    makeFolder(*m_ground / "notes");
    m_folder = openedFolder(m_place);
    m_names =
        std::make_unique<AsideNames>(hostSystemCalls(), QFile::decodeName(*m_ground / "notes"));
}

void TestAsideSlot::removesAFileWithTheNext()
{
    AsideSlot slot(hostSystemCalls(), m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    QCOMPARE(names(), std::set<QByteArray>({"slot", "b", "c"}));
    QVERIFY(take(slot, "b").value().has_value());
    QCOMPARE(names(), std::set<QByteArray>({"slot", "c"}));
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"c"}));
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"c"}));
}

void TestAsideSlot::changesTheFolderOnceForEachFile()
{
    const Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    QCOMPARE(calls.all, QByteArrayList({"moveToFree", "openEntry", "statusOf"}));
    calls.all.clear();
    QVERIFY(take(slot, "b").value().has_value());
    QCOMPARE(calls.all, QByteArrayList({"rename", "openEntry", "statusOf"}));
    calls.all.clear();
    QVERIFY(!slot.empty());
    QCOMPARE(calls.all, QByteArrayList({"status", "removeFile"}));
}

/// Where no other thread waits for the folder, nothing need be held open.
void TestAsideSlot::needsNoDescriptorInAFolderOfItsOwn()
{
    const Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Alone);
    QVERIFY(take(slot, "a").value().has_value());
    QVERIFY(take(slot, "b").value().has_value());
    QCOMPARE(calls.all, QByteArrayList({"moveToFree", "status", "rename", "status"}));
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"c"}));
}

void TestAsideSlot::givesAnotherFileItsNameBack_data()
{
    QTest::addColumn<bool>("isFirst");
    QTest::addColumn<bool>("isWritten");
    for (const bool isFirst : {true, false}) {
        for (const bool isWritten : {true, false})
            QTest::addRow("%s, %s", isFirst ? "first" : "second",
                          isWritten ? "written" : "replaced")
                << isFirst << isWritten;
    }
}

/// In the last instant before the move.
void TestAsideSlot::givesAnotherFileItsNameBack()
{
    QFETCH(bool, isFirst);
    QFETCH(bool, isWritten);
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    if (!isFirst)
        QVERIFY(take(slot, "a").value().has_value());
    calls.doBefore(isFirst ? "moveToFree" : "rename", [&] {
        if (isWritten)
            makeFile(path("b"), "precious");
        else
            move(path("c"), path("b"));
    });
    const auto outcome = take(slot, "b");
    QCOMPARE(outcome.value().error().error, ESTALE);
    QVERIFY(outcome.value().error().leftAs.isEmpty());
    QCOMPARE(std::filesystem::file_size(native(path("b"))), isWritten ? 8U : 1U);
    QVERIFY(!slot.empty());
    QCOMPARE(exists(path("a")), isFirst);
    QVERIFY(!names().contains("slot"));
}

void TestAsideSlot::takesNothingThatItCannotNote()
{
    AsideSlot without(hostSystemCalls(), nullptr, AsideSlot::FolderUse::Shared);
    QVERIFY(!take(without, "a"));
    class Full final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return qstrcmp(call, "writeAt") == 0 ? std::optional(ENOSPC) : std::nullopt;
        }
    };
    const Full full;
    AsideNames names(full, QFile::decodeName(*m_ground / "notes"));
    AsideSlot slot(hostSystemCalls(), &names, AsideSlot::FolderUse::Shared);
    QVERIFY(!take(slot, "a"));
    QVERIFY(exists(path("a")));
}

/// The system would report that such a move went well, and leave both names.
void TestAsideSlot::takesNoOtherNameOfTheFileItHolds()
{
    AsideSlot slot(hostSystemCalls(), m_names.get(), AsideSlot::FolderUse::Shared);
    std::filesystem::create_hard_link(native(path("a")), native(path("twin")));
    QVERIFY(take(slot, "a").value().has_value());
    QVERIFY(!take(slot, "twin"));
    QVERIFY(!slot.empty());
    QVERIFY(exists(path("twin")) && !exists(path("a")));
}

void TestAsideSlot::leavesAFileThatCannotBeMoved()
{
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    calls.failing = {"rename"};
    QVERIFY(!take(slot, "b"));
    QCOMPARE(names(), std::set<QByteArray>({"slot", "b", "c"}));
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"b", "c"}));
}

/// As a server may do it whose answer was lost.
void TestAsideSlot::keepsAFileWhoseMoveHappenedAndFailed()
{
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    calls.failing = {"rename"};
    calls.doBefore("rename", [&] {
        for (const QByteArray &name : tree(m_place)) {
            if (AsideNames::isPrivate(name.constData()))
                move(path("b"), path(name));
        }
    });
    QVERIFY(!take(slot, "b"));
    QCOMPARE(names(), std::set<QByteArray>({"b", "c"}));
    calls.failing.clear();
    QVERIFY(take(slot, "c").value().has_value());
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"b"}));
}

void TestAsideSlot::needsNoDescriptorToCompare()
{
    Calls calls;
    calls.failing = {"openEntry"};
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    QVERIFY(!slot.empty());
    QCOMPARE(names(), std::set<QByteArray>({"b", "c"}));
}

void TestAsideSlot::givesTheNameBackToWhatCannotBeRemoved()
{
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    calls.failing = {"removeFile"};
    const auto left = slot.empty();
    QVERIFY(left);
    QCOMPARE(left->name, QByteArray("a"));
    QCOMPARE(left->folder, folder());
    QCOMPARE(left->failure.error, EACCES);
    QVERIFY(left->failure.leftAs.isEmpty());
    QCOMPARE(names(), std::set<QByteArray>({"a", "b", "c"}));
}

void TestAsideSlot::tellsThePrivateNameOfWhatIsOutOfReach()
{
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    calls.failing = {"removeFile", "moveToFree"};
    const auto left = slot.empty();
    QVERIFY(left && exists(path(left->failure.leftAs)));
    QCOMPARE(names(), std::set<QByteArray>({"slot", "b", "c"}));
}

/// A private name that tells it: the notes do not stay.
void TestAsideSlot::keepsTheNameWhereItsOwnIsTaken()
{
    Calls calls;
    AsideSlot slot(calls, m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    makeFile(path("a"), "newer");
    calls.failing = {"removeFile"};
    QCOMPARE(slot.empty()->failure.leftAs, QByteArray(".vantor-aside.a"));
    QCOMPARE(names(), std::set<QByteArray>({".vantor-aside.a", "a", "b", "c"}));
}

void TestAsideSlot::removesNoStranger()
{
    AsideSlot slot(hostSystemCalls(), m_names.get(), AsideSlot::FolderUse::Shared);
    QVERIFY(take(slot, "a").value().has_value());
    for (const QByteArray &name : tree(m_place)) {
        if (AsideNames::isPrivate(name.constData()))
            move(path("b"), path(name));
    }
    QCOMPARE(slot.empty()->failure.error, ESTALE);
    QCOMPARE(names(), std::set<QByteArray>({"a", "c"}));
    QCOMPARE(std::filesystem::file_size(native(path("a"))), 1U);
}

void TestAsideSlot::isUsedAgain()
{
    for (int i = 0; i < 2 * AsideNames::kSlots; ++i) {
        AsideSlot slot(hostSystemCalls(), m_names.get(), AsideSlot::FolderUse::Shared);
        makeFile(path("file"));
        QVERIFY(take(slot, "file").value().has_value());
        QVERIFY(!slot.empty());
    }
}

VANTOR_TEST_MAIN(TestAsideSlot)
#include "tst_AsideSlot.moc"
