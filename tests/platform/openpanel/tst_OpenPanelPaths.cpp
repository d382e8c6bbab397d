#include "tests/platform/openpanel/OpenedPanel.h"
#include "tests/support/page/StillStyle.h"
#include "tests/support/run/GuiTestMain.h"

#include <QFileSystemModel>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

/// Which names and paths an open panel takes, and how it refuses the others.
class TestOpenPanelPaths final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new StillStyle); }
    void takesTypedPaths_data();
    void takesTypedPaths();
    void takesAPathTypedIntoTheList_data();
    void takesAPathTypedIntoTheList();
    void takesNoCommandForAPath_data();
    void takesNoCommandForAPath();
    void refusesTypedPaths_data();
    void refusesTypedPaths();
    void refusesANameThatCannotBeWritten();
    void takesANameWithLineBreaksAndQuotes_data();
    void takesANameWithLineBreaksAndQuotes();
    void forgetsATypedNameInAnotherFolder();
    void forgetsASelectedNameInAnotherFolder();
};

void TestOpenPanelPaths::takesTypedPaths_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("path");
    QTest::addRow("name") << QStringLiteral("Music") << inHome("/Music");
    QTest::addRow("relative") << QStringLiteral("Movies/Old") << inHome("/Movies/Old");
    QTest::addRow("detour") << QStringLiteral("Movies/../Music/") << inHome("/Music");
    QTest::addRow("absolute") << QDir::homePath() + QStringLiteral("/notes.txt")
                              << inHome("/notes.txt");
    QTest::addRow("home") << QStringLiteral("~") << inHome("");
    QTest::addRow("from home") << QStringLiteral("~/Movies") << inHome("/Movies");
    QTest::addRow("root") << QStringLiteral("/") << QByteArray("/");
}

void TestOpenPanelPaths::takesTypedPaths()
{
    QFETCH(QString, typed);
    OpenedPanel panel({});
    panel.type(typed);
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QVERIFY(panel.answer);
    QTEST(*panel.answer, "path");
}

void TestOpenPanelPaths::takesAPathTypedIntoTheList_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("path");
    QTest::addRow("absolute") << QDir::homePath() + QStringLiteral("/Music") << inHome("/Music");
    QTest::addRow("from home") << QStringLiteral("~/Movies") << inHome("/Movies");
}

void TestOpenPanelPaths::takesAPathTypedIntoTheList()
{
    QFETCH(QString, typed);
    OpenedPanel panel({});
    panel.waitForItems();
    QCOMPARE(QApplication::focusWidget(), panel.list);
    for (const QChar character : typed)
        QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown, character,
                            Qt::NoModifier);
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QVERIFY(panel.answer);
    QTEST(*panel.answer, "path");
}

void TestOpenPanelPaths::takesNoCommandForAPath_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("name");
    QTest::addRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier) << QString();
    QTest::addRow("Control") << Qt::KeyboardModifiers(Qt::ControlModifier) << QString();
    QTest::addRow("Meta") << Qt::KeyboardModifiers(Qt::MetaModifier) << QString();
    QTest::addRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << QStringLiteral("/");
    QTest::addRow("keypad") << Qt::KeyboardModifiers(Qt::KeypadModifier) << QStringLiteral("/");
}

void TestOpenPanelPaths::takesNoCommandForAPath()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    OpenedPanel panel({});
    panel.waitForItems();
    QTest::sendKeyEvent(QTest::Click, panel.list, Qt::Key_Slash, QStringLiteral("/"), modifiers);
    QTEST(panel.name->text(), "name");
    QCOMPARE(panel.list->hasFocus(), panel.name->text().isEmpty());
}

void TestOpenPanelPaths::refusesTypedPaths_data()
{
    QTest::addColumn<OpenPanelChoice>("choice");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addRow("absent") << OpenPanelChoice::FilesAndFolders << QStringLiteral("Nowhere/at all")
                            << QStringLiteral("There is no file or folder named “at all”.");
    QTest::addRow("a file") << OpenPanelChoice::Folders << QStringLiteral("notes.txt")
                            << QStringLiteral("“notes.txt” is not a folder.");
    QTest::addRow("forbidden") << OpenPanelChoice::FilesAndFolders << QStringLiteral("/tmp")
                               << QStringLiteral("“tmp” cannot be chosen here.");
}

void TestOpenPanelPaths::refusesTypedPaths()
{
    QFETCH(OpenPanelChoice, choice);
    QFETCH(QString, typed);
    OpenPanel options;
    options.choice = choice;
    options.shouldEnable = [](const QByteArray &path) { return path.contains(inHome("")); };
    OpenedPanel panel(options);
    panel.type(typed);
    panel.press(Qt::Key_Return);
    QTEST(panel.message(), "message");
    QVERIFY(!panel.isOver);
    panel.type(QStringLiteral("~/Music"));
    QCOMPARE(panel.message(), QString());
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/Music"));
}

/// The bytes of the name are no valid text: the text that is shown or typed for it would be another
/// name.
void TestOpenPanelPaths::refusesANameThatCannotBeWritten()
{
    const QByteArray odd = inHome("/odd\xff");
    QVERIFY(::mkdir(odd.constData(), 0700) == 0 || errno == EEXIST);
    OpenedPanel panel({});
    QTRY_VERIFY(panel.item("Music").isValid());
    panel.type(QStringLiteral("odd"));
    QTest::sendKeyEvent(QTest::Click, panel.name, Qt::Key_unknown,
                        QString(QChar(QChar::ReplacementCharacter)), Qt::NoModifier);
    panel.press(Qt::Key_Return);
    QVERIFY(panel.message().startsWith(QStringLiteral("There is no file or folder named")));
    QVERIFY(!panel.isOver);
    QCOMPARE(::rmdir(odd.constData()), 0);
}

void TestOpenPanelPaths::takesANameWithLineBreaksAndQuotes_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name :
         {"two\nlines", "\"quoted\" \"twice\"", " blanks ", "~", "#%?", "\xc3\xa4", "a\xcc\x88"})
        QTest::addRow("%s", name) << QByteArray(name);
}

void TestOpenPanelPaths::takesANameWithLineBreaksAndQuotes()
{
    QFETCH(QByteArray, name);
    QDir::home().mkpath(QFile::decodeName(name));
    OpenedPanel panel({});
    const auto find = [&] {
        const QModelIndex root = panel.list->rootIndex();
        return panel.list->model()->match(panel.list->model()->index(0, 0, root),
                                          QFileSystemModel::FileNameRole, QFile::decodeName(name),
                                          1, Qt::MatchExactly | Qt::MatchCaseSensitive);
    };
    QTRY_COMPARE(find().size(), 1);
    panel.list->setCurrentIndex(find().constFirst());
    panel.press(Qt::Key_Return);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome("/") + name);
    QDir::home().rmdir(QFile::decodeName(name));
}

void TestOpenPanelPaths::forgetsATypedNameInAnotherFolder()
{
    OpenedPanel panel({});
    panel.waitForItems();
    panel.type(QStringLiteral("Music"));
    if (QWidget *const completions = QApplication::activePopupWidget())
        completions->close();
    panel.click(*panel.view->findChild<QToolButton *>(QStringLiteral("toParentButton")));
    QTRY_COMPARE(panel.name->text(), QString());
    QTest::mouseClick(panel.button("Open"), Qt::LeftButton);
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, QFile::encodeName(QFileInfo(QDir::homePath()).path()));
}

void TestOpenPanelPaths::forgetsASelectedNameInAnotherFolder()
{
    OpenPanel options;
    options.startFolder = inHome("/Movies");
    OpenedPanel panel(options);
    panel.select("Old");
    panel.click(*panel.view->findChild<QToolButton *>(QStringLiteral("toParentButton")));
    panel.waitForItems();
    QCOMPARE(panel.name->text(), QString());
    panel.click(*panel.button("Open"));
    QTRY_VERIFY(panel.isOver);
    QCOMPARE(panel.answer, inHome(""));
}

VANTOR_GUI_TEST_MAIN(TestOpenPanelPaths)
#include "tst_OpenPanelPaths.moc"
