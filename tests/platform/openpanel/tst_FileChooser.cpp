#include "platform/openpanel/FileChooser.h"

#include "platform/look/PanelButton.h"
#include "platform/openpanel/OpenPanelView.h"
#include "tests/support/page/SheetHost.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"

#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QGridLayout>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>

/// The panel with a toolkit that builds its file dialog in another way.
class TestFileChooser final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void findsAllPartsOfThisToolkit();
    void givesItsScrollBarsNoMenus();
    void hasReadEachFolderThatItShows();
    void leavesADialogOfAnotherLayoutAsItIs_data();
    void leavesADialogOfAnotherLayoutAsItIs();
    void choosesAFileWithoutAPart_data() { addMissingParts(); }
    void choosesAFileWithoutAPart();
    void choosesTheShownFolderWithoutAPart_data() { addMissingParts(); }
    void choosesTheShownFolderWithoutAPart();
    void choosesATypedFileWithoutAPart_data() { addMissingParts(); }
    void choosesATypedFileWithoutAPart();
    void entersFoldersWithoutAPart_data() { addMissingParts(); }
    void entersFoldersWithoutAPart();
    void refusesWhatMayNotBeChosenWithoutAPart_data() { addMissingParts(); }
    void refusesWhatMayNotBeChosenWithoutAPart();
    void isCancelledWithoutAPart_data() { addMissingParts(); }
    void isCancelledWithoutAPart();
    void changesNoFileWithoutAPart_data() { addMissingParts(); }
    void changesNoFileWithoutAPart();

private:
    static void addMissingParts();
};

namespace {

using PartName = QString DialogPartNames::*;

QString inHome(const char *name)
{
    return QDir::home().filePath(QLatin1String(name));
}

/// A panel over a window; the panel does not find one part of its dialog.
class LackingPanel final
{
public:
    explicit LackingPanel(PartName missing, const OpenPanel &panel = {})
        : view(panel, {}, namesWithout(missing))
    {
        presentSheet(host.window, view, [this](int ending) { result = ending; });
        QTRY_VERIFY((chooser = view.findChild<FileChooser *>()));
        list = chooser->findChild<QTreeView *>(QStringLiteral("treeView"));
        name = chooser->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    }
    ~LackingPanel()
    {
        if (hasSheet(host.window))
            endSheet(view, kSheetCancelled);
    }
    LackingPanel(const LackingPanel &) = delete;
    LackingPanel &operator=(const LackingPanel &) = delete;

    QModelIndex item(const char *itemName) const
    {
        const QModelIndex root = list->rootIndex();
        for (int row = 0; row < list->model()->rowCount(root); ++row) {
            const QModelIndex index = list->model()->index(row, 0, root);
            if (index.data().toString() == QLatin1String(itemName))
                return index;
        }
        return {};
    }
    QPoint placeOf(const char *itemName) const { return list->visualRect(item(itemName)).center(); }
    void select(const char *itemName) const
    {
        QTRY_VERIFY(item(itemName).isValid());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, placeOf(itemName));
    }

    PanelButton &button(const char *title) const
    {
        for (PanelButton *made : view.findChildren<PanelButton *>()) {
            if (made->text() == QLatin1String(title))
                return *made;
        }
        qFatal("the panel has no button %s", title);
    }

    LogRecorder log;
    SheetHost host;
    OpenPanelView view;
    FileChooser *chooser = nullptr;
    QTreeView *list = nullptr;
    QLineEdit *name = nullptr;
    std::optional<int> result;

private:
    static DialogPartNames namesWithout(PartName missing)
    {
        DialogPartNames names;
        names.*missing = QStringLiteral("anotherName");
        return names;
    }
};

} // namespace

Q_DECLARE_METATYPE(PartName)

void TestFileChooser::initTestCase()
{
    QApplication::setStyle(new StillStyle);
    QVERIFY(QDir::home().mkpath(QStringLiteral("Movies/Old")));
    QVERIFY(QFile(inHome("notes.txt")).open(QIODevice::WriteOnly));
}

void TestFileChooser::addMissingParts()
{
    QTest::addColumn<PartName>("missing");
    QTest::newRow("list") << &DialogPartNames::list;
    QTest::newRow("places") << &DialogPartNames::places;
    QTest::newRow("name") << &DialogPartNames::name;
    QTest::newRow("way back") << &DialogPartNames::back;
    QTest::newRow("way forward") << &DialogPartNames::forward;
    QTest::newRow("way up") << &DialogPartNames::toParent;
    QTest::newRow("splitter") << &DialogPartNames::splitter;
}

void TestFileChooser::findsAllPartsOfThisToolkit()
{
    const LogRecorder log;
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    QVERIFY(DialogParts::find(dialog, {}));
    QVERIFY(log.lines().isEmpty());
}

void TestFileChooser::givesItsScrollBarsNoMenus()
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    const auto parts = DialogParts::find(dialog, {});
    QVERIFY(parts);
    parts->arrange(dialog);
    for (const QAbstractItemView *view :
         {static_cast<QAbstractItemView *>(parts->list),
          static_cast<QAbstractItemView *>(parts->places), parts->name->completer()->popup()}) {
        QCOMPARE(view->verticalScrollBar()->contextMenuPolicy(), Qt::PreventContextMenu);
        QCOMPARE(view->horizontalScrollBar()->contextMenuPolicy(), Qt::PreventContextMenu);
    }
}

/// Up to the computer, which is no folder, and back again.
void TestFileChooser::hasReadEachFolderThatItShows()
{
    FileIcons icons;
    FileChooser chooser({}, QDir::homePath(), icons, {}, nullptr);
    chooser.show();
    QTRY_VERIFY(!chooser.isReading());
    chooser.enter(QStringLiteral("/"));
    QTRY_VERIFY(!chooser.isReading());
    auto *const up = chooser.findChild<QToolButton *>(QStringLiteral("toParentButton"));
    QVERIFY(up);
    up->click();
    QTRY_VERIFY(!chooser.isReading());
    chooser.enter(QDir::homePath());
    QTRY_VERIFY(!chooser.isReading());
    auto *const places = chooser.findChild<QListView *>(QStringLiteral("sidebar"));
    QVERIFY(places);
    const QSignalSpy entered(&chooser, &QFileDialog::directoryEntered);
    const QRect computer = places->visualRect(places->model()->index(0, 0));
    QTest::mouseClick(places->viewport(), Qt::LeftButton, {}, computer.center());
    QCOMPARE(entered.size(), 1);
    QTRY_VERIFY(!chooser.isReading());
}

void TestFileChooser::leavesADialogOfAnotherLayoutAsItIs_data()
{
    QTest::addColumn<bool>("hasGrid");
    QTest::addColumn<QString>("missing");
    QTest::newRow("no bar above the list") << true << QStringLiteral("bar");
    QTest::newRow("no grid") << false << QStringLiteral("grid");
}

void TestFileChooser::leavesADialogOfAnotherLayoutAsItIs()
{
    QFETCH(const bool, hasGrid);
    QFETCH(const QString, missing);
    const LogRecorder log;
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    auto *const grid = qobject_cast<QGridLayout *>(dialog.layout());
    QVERIFY(grid);
    const std::unique_ptr<QLayoutItem> bar(grid->itemAtPosition(0, 1));
    grid->removeItem(bar.get());
    if (!hasGrid)
        delete grid;
    QVERIFY(!DialogParts::find(dialog, {}));
    QCOMPARE(log.lines(), QStringList(QStringLiteral("The file dialog has no part \"%1\" and is "
                                                     "left as it is")
                                          .arg(missing)));
}

void TestFileChooser::choosesAFileWithoutAPart()
{
    QFETCH(const PartName, missing);
    LackingPanel panel(missing);
    QCOMPARE(panel.log.lines(),
             QStringList(QStringLiteral("The file dialog has no part \"anotherName\" and is left "
                                        "as it is")));
    QVERIFY(panel.chooser->isVisible());
    panel.select("notes.txt");
    QTest::mouseClick(&panel.button("Open"), Qt::LeftButton);
    QTRY_COMPARE(panel.result, std::optional(kSheetAccepted));
    QCOMPARE(panel.view.path(), QFile::encodeName(inHome("notes.txt")));
    QVERIFY(!hasSheet(panel.host.window));
}

void TestFileChooser::choosesTheShownFolderWithoutAPart()
{
    QFETCH(const PartName, missing);
    OpenPanel options;
    options.startFolder = QFile::encodeName(inHome("Movies"));
    LackingPanel panel(missing, options);
    QTest::mouseClick(&panel.button("Open"), Qt::LeftButton);
    QTRY_COMPARE(panel.result, std::optional(kSheetAccepted));
    QCOMPARE(panel.view.path(), QFile::encodeName(inHome("Movies")));
}

void TestFileChooser::choosesATypedFileWithoutAPart()
{
    QFETCH(const PartName, missing);
    LackingPanel panel(missing);
    panel.name->setFocus();
    panel.name->selectAll();
    QTest::keyClicks(panel.name, QStringLiteral("notes.txt"));
    QTest::keyClick(panel.host.window.windowHandle(), Qt::Key_Return);
    QTRY_COMPARE(panel.result, std::optional(kSheetAccepted));
    QCOMPARE(panel.view.path(), QFile::encodeName(inHome("notes.txt")));
}

void TestFileChooser::entersFoldersWithoutAPart()
{
    QFETCH(const PartName, missing);
    LackingPanel panel(missing);
    panel.select("Movies");
    QTest::mouseDClick(panel.list->viewport(), Qt::LeftButton, {}, panel.placeOf("Movies"));
    QTRY_VERIFY(panel.item("Old").isValid());
    QVERIFY(!panel.result);
    panel.select("Old");
    QTest::mouseClick(&panel.button("Open"), Qt::LeftButton);
    QTRY_COMPARE(panel.result, std::optional(kSheetAccepted));
    QCOMPARE(panel.view.path(), QFile::encodeName(inHome("Movies/Old")));
}

void TestFileChooser::refusesWhatMayNotBeChosenWithoutAPart()
{
    QFETCH(const PartName, missing);
    OpenPanel options;
    options.shouldEnable = [](const QByteArray &path) { return path.endsWith("/notes.txt"); };
    LackingPanel panel(missing, options);
    QVERIFY(!panel.button("Open").isEnabled()); // the folder that is shown
    panel.select("notes.txt");
    QTRY_VERIFY(panel.button("Open").isEnabled());
    QVERIFY(!panel.item("Movies").flags().testFlag(Qt::ItemIsEnabled));
}

void TestFileChooser::isCancelledWithoutAPart()
{
    QFETCH(const PartName, missing);
    LackingPanel panel(missing);
    for (const QDialogButtonBox *const buttons : panel.view.findChildren<QDialogButtonBox *>())
        QVERIFY(!buttons->isVisible()); // the panel has its own
    QTest::mouseClick(&panel.button("Cancel"), Qt::LeftButton);
    QTRY_COMPARE(panel.result, std::optional(kSheetCancelled));
    QVERIFY(panel.view.path().isEmpty());
}

void TestFileChooser::changesNoFileWithoutAPart()
{
    QFETCH(const PartName, missing);
    const LackingPanel panel(missing);
    QVERIFY(panel.chooser->testOption(QFileDialog::ReadOnly));
    const auto *const newFolder =
        panel.chooser->findChild<QToolButton *>(QStringLiteral("newFolderButton"));
    QVERIFY(newFolder);
    QVERIFY(!newFolder->isVisible() || !newFolder->isEnabled());
}

VANTOR_GUI_TEST_MAIN(TestFileChooser)
#include "tst_FileChooser.moc"
