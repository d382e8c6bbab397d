#include "platform/system/HostSystemCalls.h"
#include "prefs/exclusions/ExcludedFilesModel.h"
#include "tests/prefs/exclusions/ScratchAccess.h"
#include "tests/support/run/TestMain.h"

#include <QAbstractItemModelTester>
#include <filesystem>

class TestExcludedFilesModel final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isEmptyAtFirst();
    void showsNamePlaceAndSize();
    void showsNamesWithoutReadingThemAsText();
    void calculatesUntilTheSizeArrives();
    void showsAnIconForEachKind();
    void keepsEntriesInOrderWithDuplicates();
    void leadsBackToTheSameBytes();
    void keepsUnreadableEntriesWordForWord_data();
    void keepsUnreadableEntriesWordForWord();
    void showsWhatIsGone();
    void measuresWhatIsBackAgain();
    void showsNoSizeWithoutAccess();
    void removesSeveralRowsAtOnce();
    void endsTheMeasurementOfARemovedRow();
    void leavesNothingBehind();
    void saysItsColumns();
    void saysNothingOfARowThatIsNotThere();

private:
    void makeModel(FileAccess *access);
    void append(const QByteArray &relativePath, FileUrlKind kind);
    QString text(int row, int column, int role = Qt::DisplayRole) const;

    std::unique_ptr<ScratchFolder> m_folder;
    std::unique_ptr<ScratchAccess> m_access;
    std::unique_ptr<FileToView> m_toView;
    std::unique_ptr<ExcludedFilesModel> m_model;
};

namespace {

constexpr int kName = ExcludedFilesModel::PathColumn;
constexpr int kSize = ExcludedFilesModel::SizeColumn;

} // namespace

void TestExcludedFilesModel::init()
{
    m_model.reset();
    m_toView.reset();
    m_folder = std::make_unique<ScratchFolder>();
    m_folder->makeFolder("Movies");
    m_folder->makeFile("Movies/a.mov", 1'200'000);
    m_folder->makeFile("song.mp3", 4'300'000);
    m_access = std::make_unique<ScratchAccess>(*m_folder);
    makeModel(m_access.get());
}

/// All measurements must end before the test's own log is gone.
void TestExcludedFilesModel::cleanup()
{
    m_model.reset();
    m_toView.reset();
}

void TestExcludedFilesModel::makeModel(FileAccess *access)
{
    m_model.reset();
    m_toView = std::make_unique<FileToView>(hostSystemCalls(), [access] { return access; });
    m_model = std::make_unique<ExcludedFilesModel>(*m_toView);
    new QAbstractItemModelTester(
        m_model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal, m_model.get());
}

void TestExcludedFilesModel::append(const QByteArray &relativePath, FileUrlKind kind)
{
    m_model->append({FileUrl::fromPath(m_folder->path(relativePath), kind)});
}

QString TestExcludedFilesModel::text(int row, int column, int role) const
{
    return m_model->index(row, column).data(role).toString();
}

void TestExcludedFilesModel::isEmptyAtFirst()
{
    QCOMPARE(m_model->rowCount(), 0);
    QCOMPARE(m_model->columnCount(), 2);
    QCOMPARE(m_model->storedStrings(), QStringList());
}

void TestExcludedFilesModel::showsNamePlaceAndSize()
{
    append("Movies", FileUrlKind::Folder);
    append("song.mp3", FileUrlKind::File);
    QCOMPARE(text(0, kName), QStringLiteral("Movies"));
    QCOMPARE(text(0, kName, ExcludedFilesModel::PlaceRole), QString::fromUtf8(m_folder->path()));
    QCOMPARE(text(1, kName, Qt::ToolTipRole),
             QStringLiteral("<qt>%1</qt>").arg(QString::fromUtf8(m_folder->path("song.mp3"))));
    QTRY_COMPARE(text(0, kSize), QStringLiteral("1.2 MB"));
    QTRY_COMPARE(text(1, kSize), QStringLiteral("4.3 MB"));
}

void TestExcludedFilesModel::showsNamesWithoutReadingThemAsText()
{
    append("<img src='x'>.mov", FileUrlKind::File);
    QVERIFY(text(0, kName, Qt::ToolTipRole).contains(QStringLiteral("&lt;img src=")));
}

void TestExcludedFilesModel::calculatesUntilTheSizeArrives()
{
    m_access->hold();
    append("Movies", FileUrlKind::Folder);
    QCOMPARE(text(0, kSize), QStringLiteral("Calculating..."));
    QTRY_COMPARE(m_access->lookUps(), 1);
    QCOMPARE(text(0, kSize), QStringLiteral("Calculating..."));
    m_access->release();
    QTRY_COMPARE(text(0, kSize), QStringLiteral("1.2 MB"));
    QCOMPARE(m_model->fileAt(0)->size(), 1'200'000);
}

void TestExcludedFilesModel::showsAnIconForEachKind()
{
    append("Movies", FileUrlKind::Folder);
    append("song.mp3", FileUrlKind::File);
    const auto image = [this](int row) {
        return text(row, kName, ExcludedFilesModel::ImageNameRole);
    };
    QCOMPARE(image(0), QStringLiteral("folder"));
    QTRY_COMPARE(image(1), QStringLiteral("documentAudio"));
}

void TestExcludedFilesModel::keepsEntriesInOrderWithDuplicates()
{
    const QStringList stored{
        QStringLiteral("file:///home/anna/b/"), QStringLiteral("file:///home/anna/a"),
        QStringLiteral("file:///home/anna/b/"), QStringLiteral("file:///home/anna/100%25")};
    m_model->setStoredStrings(stored);
    QCOMPARE(m_model->storedStrings(), stored);
    QCOMPARE(text(3, kName), QStringLiteral("100%"));
}

void TestExcludedFilesModel::leadsBackToTheSameBytes()
{
    const QByteArray name("a\xff%\n#\xc3\xa4");
    append(name, FileUrlKind::File);
    const QStringList stored = m_model->storedStrings();
    m_model->setStoredStrings(stored);
    QCOMPARE(m_model->fileAt(0)->fileURL().path(), m_folder->path(name));
    QCOMPARE(m_model->storedStrings(), stored);
}

void TestExcludedFilesModel::keepsUnreadableEntriesWordForWord_data()
{
    QTest::addColumn<QString>("stored");
    for (const char *text : {"/home/anna/Movies", "http://example.invalid/", "file:///a%", ""})
        QTest::addRow("%s", text) << QString::fromLatin1(text);
}

void TestExcludedFilesModel::keepsUnreadableEntriesWordForWord()
{
    QFETCH(QString, stored);
    const QStringList all{QStringLiteral("file:///home/anna/a"), stored};
    m_model->setStoredStrings(all);
    QCOMPARE(m_model->storedStrings(), all);
    QCOMPARE(text(1, kSize), QStringLiteral("Not readable"));
    QVERIFY(!m_model->index(1, kName).data(ExcludedFilesModel::IsUsableRole).toBool());
    m_model->remove({1});
    QCOMPARE(m_model->storedStrings(), QStringList{QStringLiteral("file:///home/anna/a")});
}

void TestExcludedFilesModel::showsWhatIsGone()
{
    append("missing.mov", FileUrlKind::File);
    QTRY_COMPARE(text(0, kSize), QStringLiteral("Not found"));
    QVERIFY(!m_model->index(0, kName).data(ExcludedFilesModel::IsUsableRole).toBool());
    append("Movies", FileUrlKind::Folder);
    QTRY_COMPARE(text(1, kSize), QStringLiteral("1.2 MB"));
    QVERIFY(std::filesystem::remove_all(m_folder->path("Movies").toStdString()) > 0);
    m_model->lookAgain();
    QTRY_COMPARE(text(1, kSize), QStringLiteral("Not found"));
    // It is excluded still: it may come back.
    QCOMPARE(m_model->storedStrings().size(), 2);
}

void TestExcludedFilesModel::measuresWhatIsBackAgain()
{
    append("later.mov", FileUrlKind::File);
    QTRY_COMPARE(text(0, kSize), QStringLiteral("Not found"));
    m_folder->makeFile("later.mov", 2'000'000);
    m_model->lookAgain();
    QTRY_COMPARE(text(0, kSize), QStringLiteral("2 MB"));
}

void TestExcludedFilesModel::showsNoSizeWithoutAccess()
{
    makeModel(nullptr);
    append("Movies", FileUrlKind::Folder);
    QTRY_COMPARE(text(0, kSize), QStringLiteral("\u2013"));
    QVERIFY(m_model->index(0, kName).data(ExcludedFilesModel::IsUsableRole).toBool());
}

void TestExcludedFilesModel::removesSeveralRowsAtOnce()
{
    for (const char *name : {"a", "b", "c", "d", "e"})
        append(name, FileUrlKind::File);
    m_model->remove({1, 4, 2});
    QCOMPARE(m_model->rowCount(), 2);
    QCOMPARE(text(0, kName), QStringLiteral("a"));
    QCOMPARE(text(1, kName), QStringLiteral("d"));
}

void TestExcludedFilesModel::endsTheMeasurementOfARemovedRow()
{
    m_access->hold();
    append("Movies", FileUrlKind::Folder);
    const std::shared_ptr<File> removed = m_model->fileAt(0);
    append("song.mp3", FileUrlKind::File);
    m_model->remove({0});
    m_access->release();
    QTRY_COMPARE(text(0, kSize), QStringLiteral("4.3 MB"));
    QVERIFY(!removed->sizeString());
}

void TestExcludedFilesModel::leavesNothingBehind()
{
    append("Movies", FileUrlKind::Folder);
    const std::shared_ptr<File> file = m_model->fileAt(0);
    m_model.reset();
    // Its answers would have come before this one.
    bool hasLooked = false;
    m_toView->lookAt({}, [&hasLooked](const QList<FileFacts> &) { hasLooked = true; });
    QTRY_VERIFY(hasLooked);
    QVERIFY(!file->sizeString());
}

void TestExcludedFilesModel::saysItsColumns()
{
    QCOMPARE(m_model->headerData(kName, Qt::Horizontal, Qt::DisplayRole).toString(),
             QStringLiteral("Name"));
    QCOMPARE(m_model->headerData(kSize, Qt::Horizontal, Qt::DisplayRole).toString(),
             QStringLiteral("Size"));
}

void TestExcludedFilesModel::saysNothingOfARowThatIsNotThere()
{
    append("Movies", FileUrlKind::Folder);
    const QPersistentModelIndex removed = m_model->index(0, kName);
    QVERIFY(!m_model->data({}, Qt::DisplayRole).isValid());
    m_model->remove({0});
    QVERIFY(!m_model->data(removed, Qt::DisplayRole).isValid());
}

VANTOR_TEST_MAIN(TestExcludedFilesModel)
#include "tst_ExcludedFilesModel.moc"
