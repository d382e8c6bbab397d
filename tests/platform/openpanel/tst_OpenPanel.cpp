#include "platform/openpanel/OpenPanel.h"

#include "platform/openpanel/ChooserItems.h"
#include "tests/platform/openpanel/OpenedPanel.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QSettings>

class TestOpenPanel final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void startsInTheGivenFolder_data();
    void startsInTheGivenFolder();
    void choosesTheShownFolderItself();
    void choosesAFolder();
    void choosesAFile();
    void isUsedByKeyboardAlone();
    void entersFoldersByDoubleClick();
    void choosesAFileByDoubleClick();
    void answersNothingWhenCancelled_data();
    void answersNothingWhenCancelled();
    void greysWhatTheRuleForbids();
    void showsFilesOnlyWhereTheyMayBeChosen();
    void opensAFolderWhenAFileIsWanted();
    void writesSizesAsTheProgramDoes();
    void showsHiddenItemsOnDemand();
    void leavesNoTraceInSharedSettings();
    void offersNothingThatChangesFiles();
};

void TestOpenPanel::startsInTheGivenFolder_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("shown");
    QTest::addRow("given") << inHome("/Music") << inHome("/Music");
    QTest::addRow("none") << QByteArray() << inHome("");
    QTest::addRow("not there") << inHome("/Absent") << inHome("");
    QTest::addRow("a file") << inHome("/notes.txt") << inHome("");
    QTest::addRow("a name that is no text") << inHome("/\xff") << inHome("");
}

void TestOpenPanel::startsInTheGivenFolder()
{
    QFETCH(QByteArray, start);
    OpenedPanel(OpenPanel{}).press(Qt::Key_Escape); // makes the folders
    OpenPanel options;
    options.startFolder = start;
    OpenedPanel panel(options);
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QVERIFY(panel.answer);
    QTEST(*panel.answer, "shown");
}

void TestOpenPanel::choosesTheShownFolderItself()
{
    OpenedPanel panel({});
    QCOMPARE(panel.name->placeholderText(), QDir::home().dirName());
    QTest::mouseClick(panel.button("Open"), Qt::LeftButton);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome(""));
}

void TestOpenPanel::choosesAFolder()
{
    OpenedPanel panel({});
    panel.select("Movies");
    QCOMPARE(panel.name->text(), QStringLiteral("Movies"));
    QTest::mouseClick(panel.button("Open"), Qt::LeftButton);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/Movies"));
    QVERIFY(!hasSheet(panel.host.window));
}

void TestOpenPanel::choosesAFile()
{
    OpenPanel options;
    options.title = QStringLiteral("Exclude");
    OpenedPanel panel(options);
    panel.select("notes.txt");
    QTest::mouseClick(panel.button("Exclude"), Qt::LeftButton);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/notes.txt"));
}

void TestOpenPanel::isUsedByKeyboardAlone()
{
    OpenedPanel panel({});
    QCOMPARE(QApplication::focusWidget(), panel.list);
    panel.waitForItems();
    panel.press(Qt::Key_Down);
    QTRY_COMPARE(panel.list->currentIndex(), panel.item("Movies"));
    panel.press(Qt::Key_Right);
    QTRY_VERIFY(panel.item("Old").isValid());
    panel.press(Qt::Key_Left);
    panel.waitForItems();
    panel.press(Qt::Key_Right); // nothing is selected: nowhere to go
    QTest::keyClick(panel.host.window.windowHandle(), Qt::Key_Down);
    panel.press(Qt::Key_Down);
    QTRY_COMPARE(panel.list->currentIndex(), panel.item("Music"));
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/Music"));
}

void TestOpenPanel::entersFoldersByDoubleClick()
{
    OpenedPanel panel({});
    panel.select("Movies");
    QTest::mouseDClick(panel.list->viewport(), Qt::LeftButton, {},
                       panel.list->visualRect(panel.item("Movies")).center());
    QTRY_VERIFY(panel.item("Old").isValid());
    QVERIFY(!panel.isOver);
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/Movies"));
}

void TestOpenPanel::choosesAFileByDoubleClick()
{
    OpenedPanel panel({});
    panel.select("notes.txt");
    QTest::mouseDClick(panel.list->viewport(), Qt::LeftButton, {},
                       panel.list->visualRect(panel.item("notes.txt")).center());
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/notes.txt"));
}

void TestOpenPanel::answersNothingWhenCancelled_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::addRow("Escape") << true;
    QTest::addRow("button") << false;
}

void TestOpenPanel::answersNothingWhenCancelled()
{
    QFETCH(bool, byKey);
    OpenedPanel panel({});
    panel.select("Movies");
    if (byKey)
        panel.press(Qt::Key_Escape);
    else
        QTest::mouseClick(panel.button("Cancel"), Qt::LeftButton);
    QTRY_VERIFY(panel.isOver);
    QVERIFY(!panel.answer);
}

void TestOpenPanel::greysWhatTheRuleForbids()
{
    OpenPanel options;
    options.shouldEnable = [](const QByteArray &path) { return path.endsWith("/Music"); };
    OpenedPanel panel(options);
    QTRY_VERIFY(panel.item("Movies").isValid() && panel.item("notes.txt").isValid());
    QVERIFY(panel.item("Music").flags() & Qt::ItemIsEnabled);
    QVERIFY(!(panel.item("Movies").flags() & Qt::ItemIsEnabled));
    QVERIFY(!(panel.item("notes.txt").flags() & Qt::ItemIsEnabled));
    QVERIFY(!panel.button("Open")->isEnabled()); // the folder itself is forbidden as well
    panel.select("Movies");
    panel.press(Qt::Key_Return);
    QVERIFY(!panel.isOver);
    panel.select("Music");
    QVERIFY(panel.button("Open")->isEnabled());
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/Music"));
}

void TestOpenPanel::showsFilesOnlyWhereTheyMayBeChosen()
{
    OpenPanel options;
    options.choice = OpenPanelChoice::Folders;
    OpenedPanel folders(options);
    QTRY_VERIFY(folders.item("Music").isValid());
    QVERIFY(!folders.item("notes.txt").isValid());
    OpenedPanel both({});
    QTRY_VERIFY(both.item("notes.txt").isValid());
}

void TestOpenPanel::opensAFolderWhenAFileIsWanted()
{
    OpenPanel options;
    options.choice = OpenPanelChoice::Files;
    OpenedPanel panel(options);
    panel.select("Movies");
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.item("Old").isValid());
    QVERIFY(!panel.isOver);
}

void TestOpenPanel::writesSizesAsTheProgramDoes()
{
    const QString path = QDir::home().filePath(QStringLiteral("big.bin"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(12'345'678));
    file.close();
    OpenedPanel panel({});
    QTRY_VERIFY(panel.item("big.bin").isValid());
    const auto size = [&panel](const char *name) {
        return panel.item(name).siblingAtColumn(ChooserItems::Size).data().toString();
    };
    QTRY_COMPARE(size("big.bin"), QStringLiteral("12.3 MB"));
    QCOMPARE(size("Movies"), QString());
    QVERIFY(QFile::remove(path));
}

void TestOpenPanel::showsHiddenItemsOnDemand()
{
    QDir::home().mkpath(QStringLiteral(".hidden"));
    OpenedPanel panel({});
    QTRY_VERIFY(panel.item("Music").isValid());
    QVERIFY(!panel.item(".hidden").isValid());
    QTest::keyClick(panel.host.window.windowHandle(), Qt::Key_H, Qt::ControlModifier);
    QTRY_VERIFY(panel.item(".hidden").isValid());
}

void TestOpenPanel::leavesNoTraceInSharedSettings()
{
    const auto shared = [] { return QSettings(QSettings::UserScope, QStringLiteral("QtProject")); };
    const QString file = shared().fileName();
    QVERIFY(file.startsWith(qEnvironmentVariable("XDG_CONFIG_HOME")));
    {
        QSettings settings(QSettings::UserScope, QStringLiteral("QtProject"));
        settings.setValue(QStringLiteral("FileDialog/history"), QStringLiteral("as it was"));
    }
    const auto bytes = [&file] {
        QFile settings(file);
        return settings.open(QIODevice::ReadOnly) ? settings.readAll() : QByteArray();
    };
    const QByteArray before = bytes();
    QVERIFY(!before.isEmpty());
    {
        OpenedPanel panel({});
        panel.select("Movies");
        panel.press(Qt::Key_Return);
        QTRY_VERIFY(panel.isOver);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(bytes(), before);
    QCOMPARE(shared().fileName(), file);
}

void TestOpenPanel::offersNothingThatChangesFiles()
{
    OpenedPanel panel({});
    panel.select("Movies");
    QVERIFY(!panel.view->findChild<QToolButton *>(QStringLiteral("newFolderButton"))->isVisible());
    panel.press(Qt::Key_Delete);
    panel.press(Qt::Key_F2);
    QVERIFY(!panel.list->findChild<QLineEdit *>());
    QTest::mouseClick(panel.list->viewport(), Qt::RightButton, {},
                      panel.list->visualRect(panel.item("Movies")).center());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!panel.list->dragEnabled());
    QVERIFY(QFileInfo::exists(QDir::home().filePath(QStringLiteral("Movies"))));
}

VANTOR_GUI_TEST_MAIN(TestOpenPanel)
#include "tst_OpenPanel.moc"
