#include "slices/removal/AsideNames.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <set>

class TestAsideNames final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_ground = std::make_unique<CleaningGround>();
        m_folder = QFile::decodeName(m_ground->path());
    }

    void giveEachSlotToOne();
    void tellWhatLiesInASlot();
    void giveANewNameWhereNoNoteIsLeft();
    void areForgottenWithTheCleaning();
    void haveNoSlotsWithoutAFile_data();
    void haveNoSlotsWithoutAFile();
    void sayWhenANoteCannotBeWritten();
    void knowTheNamesOfSlots();

private:
    QByteArray nameOf(const QByteArray &slot, std::uint64_t inode) const
    {
        return AsideNames::nameOf(hostSystemCalls(), m_folder, slot, inode);
    }
    std::set<QByteArray> files() const { return tree(m_ground->path()); }

    std::unique_ptr<CleaningGround> m_ground;
    QString m_folder;
};

void TestAsideNames::giveEachSlotToOne()
{
    AsideNames names(hostSystemCalls(), m_folder);
    std::set<QByteArray> slots;
    for (int i = 0; i < AsideNames::kSlots; ++i)
        slots.insert(names.privateName(names.takeSlot().value()));
    QCOMPARE(slots.size(), std::size_t(AsideNames::kSlots));
    QVERIFY(!names.takeSlot());
    names.giveBackSlot(3);
    QCOMPARE(names.takeSlot(), std::optional(3));
    QVERIFY(AsideNames(hostSystemCalls(), m_folder).privateName(0) != names.privateName(0));
}

/// A kill may come between a note and the move that it is for: then the file before it still lies
/// there. Or another file has come into its place, which has the noted name then.
void TestAsideNames::tellWhatLiesInASlot()
{
    const QByteArray longest(255, 'n');
    AsideNames names(hostSystemCalls(), m_folder);
    const QByteArray slot = names.privateName(5);
    QVERIFY(names.note(5, longest.constData(), 11).has_value());
    names.keepNote(5);
    QCOMPARE(nameOf(slot, 11), longest);
    QVERIFY(names.note(5, "b", 12).has_value());
    QCOMPARE(nameOf(slot, 11), longest);
    QCOMPARE(nameOf(slot, 12), QByteArray("b"));
    QCOMPARE(nameOf(slot, 13), QByteArray("b"));
    QVERIFY(names.note(5, "d", 14).has_value()); // the one before did not come
    QCOMPARE(nameOf(slot, 11), longest);
    QVERIFY(names.note(5, "b", 12).has_value());
    names.keepNote(5);
    QVERIFY(names.note(5, "c", 13).has_value());
    QCOMPARE(nameOf(slot, 12), QByteArray("b"));
    QCOMPARE(nameOf(slot, 13), QByteArray("c"));
    QVERIFY(names.note(6, "other", 12).has_value());
    QCOMPARE(nameOf(slot, 12), QByteArray("b"));
}

void TestAsideNames::giveANewNameWhereNoNoteIsLeft()
{
    const QByteArray slot = ".vantor-slot.0123456789abcdef.7";
    const QByteArray recovered = "recovered.0123456789abcdef.7";
    QCOMPARE(nameOf(slot, 1), recovered);
    makeFile(*m_ground / "aside-0123456789abcdef", "cut short");
    QCOMPARE(nameOf(slot, 1), recovered);
    makeFile(*m_ground / "aside-0123456789abcdef", QByteArray(100'000, '/'));
    QCOMPARE(nameOf(slot, 1), recovered);
}

void TestAsideNames::areForgottenWithTheCleaning()
{
    makeFile(*m_ground / "settings");
    makeFile(*m_ground / "aside-by-the-user");
    const std::set<QByteArray> others = files();
    AsideNames names(hostSystemCalls(), m_folder);
    QCOMPARE(files().size(), others.size() + 1);
    names.forget();
    QCOMPARE(files(), others);
    const AsideNames killed(hostSystemCalls(), m_folder);
    AsideNames::forgetAll(hostSystemCalls(), m_folder);
    QCOMPARE(files(), others);
}

void TestAsideNames::haveNoSlotsWithoutAFile_data()
{
    QTest::addColumn<QByteArray>("call");
    for (const char *call : {"openRoot", "createFile", "write", "sync"})
        QTest::addRow("%s", call) << QByteArray(call);
}

void TestAsideNames::haveNoSlotsWithoutAFile()
{
    class Full final : public HookedCalls
    {
    public:
        explicit Full(QByteArray call) : m_call(std::move(call)) {}
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return m_call == call ? std::optional(ENOSPC) : std::nullopt;
        }

    private:
        QByteArray m_call;
    };
    QFETCH(QByteArray, call);
    const Full full(call);
    AsideNames names(full, m_folder);
    QVERIFY(!names.takeSlot());
    QVERIFY(files().empty());
}

void TestAsideNames::sayWhenANoteCannotBeWritten()
{
    class Full final : public HookedCalls
    {
    public:
        std::optional<int> before(const char *call, int, const char *) const override
        {
            return qstrcmp(call, "writeAt") == 0 ? std::optional(ENOSPC) : std::nullopt;
        }
    };
    const Full full;
    AsideNames names(full, m_folder);
    QCOMPARE(names.note(0, "name", 1).error(), ENOSPC);
    QCOMPARE(names.note(0, QByteArray(256, 'n').constData(), 1).error(), ENAMETOOLONG);
}

void TestAsideNames::knowTheNamesOfSlots()
{
    const AsideNames names(hostSystemCalls(), m_folder);
    for (int slot = 0; slot < AsideNames::kSlots; ++slot)
        QVERIFY(AsideNames::isPrivate(names.privateName(slot).constData()));
    for (const char *name : {".vantor-slot.0123456789abcdef", ".vantor-slot.0123456789abcdef.",
                             "file", ".vantor-slot.0123456789abcdef.txt",
                             ".vantor-slot.0123456789abcdef.16", ".vantor-slot.0123456789abcdeg.1",
                             ".vantor-slot.0123456789abcdef.-1", "vantor-slot.0123456789abcdef.1"})
        QVERIFY2(!AsideNames::isPrivate(name), name);
}

VANTOR_TEST_MAIN(TestAsideNames)
#include "tst_AsideNames.moc"
