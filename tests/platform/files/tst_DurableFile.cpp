#include "platform/system/SystemResult.h"
#include "tests/platform/files/DurableFileFolder.h"
#include "tests/support/calls/ForwardingSystemCalls.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

namespace {

/// Reads and writes a few bytes at a time, which the system may do too.
class StingySystemCalls final : public ForwardingSystemCalls
{
public:
    SystemResult<std::size_t> read(int file, std::span<char> buffer) const override
    {
        return ForwardingSystemCalls::read(file, buffer.first(3));
    }
    SystemResult<std::size_t> write(int file, std::span<const char> bytes) const override
    {
        return ForwardingSystemCalls::write(file, bytes.first(1));
    }
};

} // namespace

class TestDurableFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contentsComeBack_data();
    void contentsComeBack();
    void aFileThatIsNotThereIsMissing();
    void everyTruncationIsNoticed();
    void everyFlippedBitIsNoticed();
    void thePreviousGenerationIsKept();
    void onlyTheOwnerMayRead();
    void fewBytesAtATimeAreEnough();
    void aContentThatIsTooLargeIsRefused();
    void aFileThatIsTooLargeIsDamaged();

    void badFilesAreKeptUnderNamesOfTheirOwn();
    void whatAnotherProgramWroteIsNotReplaced();
    void withLeaveAnotherProgramsContentBecomesThePreviousOne();
    void withLeaveADamagedFileIsSetAside();
    void aFolderUnderTheNameIsUnreadable();
    void aLinkUnderTheNameIsNotFollowed();
    void aLeftOverIsNotWrittenThrough();
};

void TestDurableFile::contentsComeBack_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << kNew;
    QTest::newRow("newline at the end") << QByteArray("a\n\n");
    QTest::newRow("any bytes") << QByteArray("\0\xff\n#crc32 \r", 12);
    QTest::newRow("larger than a buffer") << QByteArray(300'000, 'x');
}

void TestDurableFile::contentsComeBack()
{
    QFETCH(QByteArray, content);
    const DurableFileFolder folder;
    QVERIFY(folder.file().write(content, Replace::OnlyWhatIsKnown));

    const DurableContent found = folder.file().read(Generation::Current);
    QCOMPARE(found.state, DurableState::Good);
    QCOMPARE(found.bytes, content);
    QCOMPARE(folder.entries(), QStringList{QLatin1String(kName)});
}

void TestDurableFile::aFileThatIsNotThereIsMissing()
{
    const DurableFileFolder folder;
    QCOMPARE(folder.file().read(Generation::Current).state, DurableState::Missing);
    QCOMPARE(folder.file().read(Generation::Previous).state, DurableState::Missing);
    QCOMPARE(folder.file().hasFilesSetAside(), false);
}

void TestDurableFile::everyTruncationIsNoticed()
{
    const DurableFileFolder folder;
    folder.fill();
    const QByteArray whole = folder.raw();
    for (qsizetype length = 0; length < whole.size(); ++length) {
        folder.setRaw(whole.first(length));
        QCOMPARE(folder.file().read(Generation::Current).state, DurableState::Damaged);
    }
}

void TestDurableFile::everyFlippedBitIsNoticed()
{
    const DurableFileFolder folder;
    folder.fill();
    const QByteArray whole = folder.raw();
    for (qsizetype bit = 0; bit < whole.size() * 8; ++bit) {
        QByteArray flipped = whole;
        flipped[bit / 8] = char(flipped[bit / 8] ^ (1 << (bit % 8)));
        folder.setRaw(flipped);
        QCOMPARE(folder.file().read(Generation::Current).state, DurableState::Damaged);
    }
}

void TestDurableFile::thePreviousGenerationIsKept()
{
    const DurableFileFolder folder;
    folder.fill();
    QCOMPARE(folder.file().read(Generation::Current).bytes, kOld);
    QCOMPARE(folder.file().read(Generation::Previous).bytes, kOlder);
    QCOMPARE(folder.entries(), QStringList({QStringLiteral("sample"), QStringLiteral("sample.1")}));
}

void TestDurableFile::onlyTheOwnerMayRead()
{
    const DurableFileFolder folder;
    DurableFile file = folder.file();
    QVERIFY(file.write(kOld, Replace::OnlyWhatIsKnown));
    QVERIFY(file.write(kNew, Replace::OnlyWhatIsKnown));
    constexpr QFile::Permissions kOwner =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    for (const char *name : {"sample", "sample.1"})
        QCOMPARE(QFile::permissions(folder.path(name)) | kOwner, kOwner);
}

void TestDurableFile::fewBytesAtATimeAreEnough()
{
    const DurableFileFolder folder;
    const StingySystemCalls calls;
    QVERIFY(folder.file(calls).write(kNew, Replace::OnlyWhatIsKnown));
    QCOMPARE(folder.file(calls).read(Generation::Current).bytes, kNew);
}

void TestDurableFile::aContentThatIsTooLargeIsRefused()
{
    const DurableFileFolder folder;
    folder.fill();
    const QByteArray large(DurableFile::kLargestContent + 1, 'x');
    const auto written = folder.file().write(large, Replace::Anything);
    QCOMPARE(written.error().error, EFBIG);
    QCOMPARE(folder.file().read(Generation::Current).bytes, kOld);

    QVERIFY(folder.file().write(large.chopped(1), Replace::Anything));
    QCOMPARE(folder.file().read(Generation::Current).bytes.size(), DurableFile::kLargestContent);
}

void TestDurableFile::aFileThatIsTooLargeIsDamaged()
{
    const DurableFileFolder folder;
    folder.fill();
    QVERIFY(QFile::resize(folder.path(kName),
                          qint64(8) << 30)); // sparse; a full read would show
    QCOMPARE(folder.file().read(Generation::Current).state, DurableState::Damaged);
}

void TestDurableFile::badFilesAreKeptUnderNamesOfTheirOwn()
{
    const DurableFileFolder folder;
    QSet<QByteArray> names;
    for (int i = 0; i < 4; ++i) { // within about one second
        folder.setRaw("bad " + QByteArray::number(i));
        const auto name = folder.file().setAside(Generation::Current);
        QVERIFY(name);
        QCOMPARE(folder.raw(*name), "bad " + QByteArray::number(i));
        QVERIFY(name->startsWith("sample.bad-20"));
        names.insert(*name);
    }
    QCOMPARE(names.size(), 4);
    QCOMPARE(folder.entries().size(), 4);
    QCOMPARE(folder.file().hasFilesSetAside(), true);

    const DurableFileFolder other;
    other.setRaw("bad", "sample.1");
    QVERIFY(other.file().setAside(Generation::Previous));
    QCOMPARE(other.file().hasFilesSetAside(), true);
}

void TestDurableFile::whatAnotherProgramWroteIsNotReplaced()
{
    const DurableFileFolder folder;
    folder.fill();
    DurableFile mine = folder.file();
    QCOMPARE(mine.read(Generation::Current).bytes, kOld);
    DurableFile theirs = folder.file();
    theirs.read(Generation::Current);
    QVERIFY(theirs.write("theirs", Replace::OnlyWhatIsKnown));

    const auto written = mine.write(kNew, Replace::OnlyWhatIsKnown);
    QVERIFY(!written && written.error().isConflict);
    QCOMPARE(folder.file().read(Generation::Current).bytes, "theirs");
    QCOMPARE(folder.file().read(Generation::Previous).bytes, kOld);
    QCOMPARE(folder.entries().size(), 2);
}

void TestDurableFile::withLeaveAnotherProgramsContentBecomesThePreviousOne()
{
    const DurableFileFolder folder;
    folder.fill();
    QVERIFY(folder.file().write(kNew, Replace::Anything));
    QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
    QCOMPARE(folder.file().read(Generation::Previous).bytes, kOld);
}

void TestDurableFile::withLeaveADamagedFileIsSetAside()
{
    const DurableFileFolder folder;
    folder.fill();
    folder.setRaw("damaged");
    const auto refused = folder.file().write(kNew, Replace::OnlyWhatIsKnown);
    QVERIFY(!refused && refused.error().isConflict);
    QCOMPARE(folder.raw(), "damaged");

    QVERIFY(folder.file().write(kNew, Replace::Anything));
    QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
    QCOMPARE(folder.file().read(Generation::Previous).bytes, kOlder);
    QCOMPARE(folder.badFiles().size(), 1);
    QCOMPARE(folder.raw(folder.badFiles().first().toLatin1()), "damaged");
}

void TestDurableFile::aFolderUnderTheNameIsUnreadable()
{
    const DurableFileFolder folder;
    QVERIFY(QDir().mkpath(folder.path("sample/inside")));
    const DurableContent found = folder.file().read(Generation::Current);
    QCOMPARE(found.state, DurableState::Unreadable);
    QCOMPARE(found.error, EISDIR);

    const auto refused = folder.file().write(kNew, Replace::OnlyWhatIsKnown);
    QCOMPARE(refused.error().error, EISDIR);
    QVERIFY(folder.file().write(kNew, Replace::Anything));
    QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
    QVERIFY(QFile::exists(
        folder.path((folder.badFiles().first() + QStringLiteral("/inside")).toLatin1())));
}

void TestDurableFile::aLinkUnderTheNameIsNotFollowed()
{
    const DurableFileFolder folder;
    const DurableFileFolder elsewhere;
    elsewhere.fill();
    QVERIFY(QFile::link(elsewhere.path(kName), folder.path(kName)));
    const DurableContent found = folder.file().read(Generation::Current);
    QCOMPARE(found.state, DurableState::Unreadable);
    QCOMPARE(found.error, ELOOP);

    QVERIFY(folder.file().write(kNew, Replace::Anything));
    QCOMPARE(elsewhere.file().read(Generation::Current).bytes, kOld);
}

void TestDurableFile::aLeftOverIsNotWrittenThrough()
{
    const DurableFileFolder folder;
    folder.fill();
    folder.setRaw("precious", "other");
    QVERIFY(QFile::link(folder.path("other"), folder.path("sample.new")));
    DurableFile file = folder.file();
    file.read(Generation::Current);
    QVERIFY(file.write(kNew, Replace::OnlyWhatIsKnown));
    QCOMPARE(folder.raw("other"), "precious");
    QCOMPARE(folder.file().read(Generation::Current).bytes, kNew);
}

VANTOR_TEST_MAIN(TestDurableFile)
#include "tst_DurableFile.moc"
