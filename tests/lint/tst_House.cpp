#include "tests/lint/SourceTree.h"
#include "tests/support/run/TestMain.h"

#include <QDir>

namespace {

constexpr int kMostFilesInAFolder = 30;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

SourceText source(const char *path, const char *content)
{
    return sourceText(text(path), text(content));
}

/// A small house: sheet links look, look links base; files links nothing.
House smallHouse()
{
    return House({{text("p/base"), {}, true},
                  {text("p/look"), {text("p/base")}, false},
                  {text("p/sheet"), {text("p/look")}, false},
                  {text("p/files"), {}, true}});
}

} // namespace

class TestHouse final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsARoomsDeclaration();
    void knowsNoRoomWithoutADeclaration();
    void findsIncludesOfWhatIsNotLinked_data();
    void findsIncludesOfWhatIsNotLinked();
    void findsCirclesOfRooms();
    void findsCirclesOfUnits();
    void takesAHeaderAndItsSourcesForOneUnit();

    void theWholeTreeIncludesOnlyWhatIsLinked();
    void theWholeTreeHasNoCircleOfRooms();
    void theWholeTreeHasNoCircleOfUnits();
    void everyFolderOfSourcesIsSmall();
    void everyRoomsTestsLieInAFolderOfItsName();
};

void TestHouse::readsARoomsDeclaration()
{
    const auto room =
        House::roomDeclared(text("platform/walk"),
                            text("# The walk.\nvantor_room(CORE LINKS\n    vantor_platform_system\n"
                                 "    vantor_widgets\n    Qt6::Core)\n"));
    QVERIFY(room);
    QCOMPARE(room->folder, text("platform/walk"));
    QCOMPARE(room->links, (QStringList{text("platform/system"), text("widgets")}));
    QVERIFY(room->isCore);
    QVERIFY(!House::roomDeclared(text("chart"), text("vantor_room(LINKS vantor_widgets)"))->isCore);
}

void TestHouse::knowsNoRoomWithoutADeclaration()
{
    QVERIFY(!House::roomDeclared(text("platform"), text("add_subdirectory(walk)\n")));
}

void TestHouse::findsIncludesOfWhatIsNotLinked_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("content");
    QTest::addColumn<int>("offences");
    const auto row = [](const char *name, const char *path, const char *content, int offences) {
        QTest::addRow("%s", name) << text(path) << text(content) << offences;
    };
    row("its own", "p/look/A.cpp", "#include \"p/look/A.h\"\n", 0);
    row("linked", "p/look/A.cpp", "#include \"p/base/Log.h\"\n", 0);
    row("through another", "p/sheet/A.cpp", "#include \"p/base/Log.h\"\n", 0);
    row("back up", "p/base/A.cpp", "#include \"p/look/A.h\"\n", 1);
    row("beside", "p/files/A.cpp", "#include \"p/base/Log.h\"\n", 1);
    row("in a header", "p/files/A.h", "#pragma once\n#include \"p/base/Log.h\"\n", 1);
    row("each line", "p/files/A.cpp", "#include \"p/base/L.h\"\n#include \"p/look/A.h\"\n", 2);
    row("of a program", "p/base/main.cpp", "#include \"p/look/A.h\"\n", 0);
    row("of no room", "tests/A.cpp", "#include \"p/look/A.h\"\n", 0);
    row("of the toolkit", "p/base/A.cpp", "#include <QString>\n", 0);
}

void TestHouse::findsIncludesOfWhatIsNotLinked()
{
    QFETCH(QString, path);
    QFETCH(QString, content);
    QFETCH(int, offences);
    QCOMPARE(smallHouse().includesBeyondLinks(sourceText(path, content)).size(), offences);
}

void TestHouse::findsCirclesOfRooms()
{
    QCOMPARE(smallHouse().circlesOfRooms(), QStringList());
    const House round({{text("a"), {text("b")}, false},
                       {text("b"), {text("c")}, false},
                       {text("c"), {text("a")}, false}});
    QCOMPARE(round.circlesOfRooms(), QStringList{text("a -> b -> c -> a")});
}

void TestHouse::findsCirclesOfUnits()
{
    const QList<SourceText> straight{source("p/A.h", "#include \"p/B.h\"\n"),
                                     source("p/B.h", "class A;\n")};
    QCOMPARE(House::circlesOfUnits(straight), QStringList());
    const QList<SourceText> round{source("p/A.h", "#include \"p/B.h\"\n"),
                                  source("p/B.cpp", "#include \"p/A.h\"\n")};
    QCOMPARE(House::circlesOfUnits(round), QStringList{text("p/A -> p/B -> p/A")});
}

void TestHouse::takesAHeaderAndItsSourcesForOneUnit()
{
    const QList<SourceText> one{source("p/A.h", "class A;\n"),
                                source("p/A.cpp", "#include \"p/A.h\"\n"),
                                source("p/A_linux.cpp", "#include \"p/A.h\"\n")};
    QCOMPARE(House::circlesOfUnits(one), QStringList());
}

void TestHouse::theWholeTreeIncludesOnlyWhatIsLinked()
{
    const QList<Room> rooms = declaredRooms();
    QVERIFY(rooms.size() > 20);
    const House house(rooms);
    QStringList found;
    for (const SourceText &each : productSources())
        found << house.includesBeyondLinks(each);
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void TestHouse::theWholeTreeHasNoCircleOfRooms()
{
    const QStringList found = House(declaredRooms()).circlesOfRooms();
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void TestHouse::theWholeTreeHasNoCircleOfUnits()
{
    const QStringList found = House::circlesOfUnits(productSources());
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void TestHouse::everyFolderOfSourcesIsSmall()
{
    QHash<QString, int> files;
    for (const QString &path : sourcePaths()) {
        if (path.endsWith(QStringLiteral(".h")) || path.endsWith(QStringLiteral(".cpp")))
            ++files[path.left(path.lastIndexOf(u'/'))];
    }
    QStringList found;
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        if (it.value() > kMostFilesInAFolder)
            found << QStringLiteral("%1: %2").arg(it.key()).arg(it.value());
    }
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

/// So the tests of a room are easy to find: their folder has the same name as the room.
void TestHouse::everyRoomsTestsLieInAFolderOfItsName()
{
    QStringList found;
    for (const Room &room : declaredRooms()) {
        const QDir tests(QStringLiteral(VANTOR_SOURCE_TREE "/tests/") + room.folder);
        if (tests.entryList({QStringLiteral("tst_*.cpp")}, QDir::Files).isEmpty())
            found << room.folder;
    }
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

VANTOR_TEST_MAIN(TestHouse)
#include "tst_House.moc"
