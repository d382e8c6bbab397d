#include "largefiles/search/LargeFileList.h"
#include "largefiles/sheet/FileIconNames.h"
#include "largefiles/sheet/FileTableCellView.h"
#include "largefiles/sheet/QuickLookTableView.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAbstractButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <ctime>
#include <random>

namespace {

constexpr int kFiles = 100'000;
/// How long a frame of the screen lasts, in milliseconds. Instrumented code takes many times as
/// long, and no user sees it; there the limit shows only work that grows with the list.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double kFrame = 160;
#else
constexpr double kFrame = 16;
#endif

/// With sizes in no order.
std::vector<File> madeFiles()
{
    std::mt19937 random(4711);
    std::uniform_int_distribution<qint64> sizes(100'000'001, 900'000'000'000);
    std::vector<File> files;
    for (int i = 0; i < kFiles; ++i) {
        const QByteArray path = "/home/u/Movies/" + QByteArray::number(i) + ".mov";
        File file(FileUrl::fromPath(path, FileUrlKind::File));
        file.setSize(sizes(random));
        file.setSizeString(QStringLiteral("%1 MB").arg(file.size() / 1'000'000));
        files.push_back(file);
    }
    return files;
}

double middle(std::vector<double> milliseconds)
{
    const auto half = milliseconds.begin() + std::ptrdiff_t(milliseconds.size() / 2);
    std::nth_element(milliseconds.begin(), half, milliseconds.end());
    return *half;
}

/// The median of the processor time that `step` takes: other work of the machine is not the list's
/// work.
template <typename Step> double timeOf(int times, Step step)
{
    std::vector<double> milliseconds;
    for (int i = 0; i < times; ++i) {
        const std::clock_t before = std::clock();
        step(i);
        milliseconds.push_back(double(std::clock() - before) * 1e3 / CLOCKS_PER_SEC);
    }
    return middle(std::move(milliseconds));
}

} // namespace

/// The list as it looks to a user who has a hundred thousand large files.
class LongListTest final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<LargeFileList> m_list;
    FileIconNames m_icons;
    std::unique_ptr<QuickLookTableView> m_table;

    void fill(int count)
    {
        static const std::vector<File> files = madeFiles();
        for (int i = m_list->rowCount(); i < count; ++i)
            m_list->insert(files[std::size_t(i)]);
    }

    void paint()
    {
        m_table->viewport()->repaint();
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init()
    {
        m_list = std::make_unique<LargeFileList>();
        m_table = std::make_unique<QuickLookTableView>();
        m_table->setItemDelegate(new FileTableCellView(m_icons, m_table.get()));
        m_table->setModel(m_list.get());
        m_table->resize(480, 440);
        m_table->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_table.get()));
    }

    void scrollingTakesLessThanAFrame()
    {
        fill(kFiles);
        QScrollBar &bar = *m_table->verticalScrollBar();
        const double time = timeOf(60, [&](int step) {
            bar.setValue(int(qint64(bar.maximum()) * step / 59));
            paint();
        });
        QCOMPARE(m_table->rowAt(m_table->viewport()->height() - 1), kFiles - 1);
        qInfo("a step of scrolling: %.2f ms", time);
        QVERIFY2(time < kFrame, qPrintable(QString::number(time)));
    }

    void insertingTakesLessThanAFrame()
    {
        fill(kFiles - 200);
        paint();
        const double time = timeOf(200, [&](int) {
            fill(m_list->rowCount() + 1);
            paint();
        });
        QCOMPARE(m_list->rowCount(), kFiles);
        qInfo("a row inserted and painted: %.2f ms", time);
        QVERIFY2(time < kFrame, qPrintable(QString::number(time)));
    }

    void pickingTakesLessThanAFrame()
    {
        fill(kFiles);
        const double time = timeOf(60, [&](int row) {
            m_list->toggle(row);
            m_list->sizeString();
            paint();
        });
        qInfo("a pick: %.2f ms", time);
        QVERIFY2(time < kFrame, qPrintable(QString::number(time)));
    }

    void pickingAllAsksForTheTotalOnce()
    {
        int questions = 0;
        m_list = std::make_unique<LargeFileList>(
            [&](const FileUrls &files, const LargeFileList::Answer &answer) {
                ++questions;
                answer(QList<CurrentSize>(files.size(), CurrentSize{1, true}));
            });
        m_table->setModel(m_list.get());
        fill(kFiles);
        const QSignalSpy changed(m_list.get(), &QAbstractItemModel::dataChanged);
        QTest::keyClick(m_table.get(), Qt::Key_A, Qt::ControlModifier);
        m_list->setAdded(m_table->selectedRows(), true);
        QCOMPARE(m_list->selectedSize(), kFiles);
        QCOMPARE(questions, 1);
        QCOMPARE(changed.size(), 1);
        m_list->setAdded(m_table->selectedRows(), true); // as it is already
        QCOMPARE(questions, 1);
        m_table->clearSelection();
        QVERIFY(m_table->selectedRows().isEmpty());
    }

    void noRowHasAWidget()
    {
        fill(1000);
        m_table->scrollToBottom();
        paint();
        QCOMPARE(m_table->viewport()->findChildren<QWidget *>().size(), 0);
    }
};

VANTOR_GUI_TEST_MAIN(LongListTest)
#include "tst_LongList.moc"
