#include "tests/lint/SourceRules.h"
#include "tests/lint/SourceTree.h"
#include "tests/support/run/TestMain.h"

namespace {

/// The real rooms, and one more for the samples.
House house()
{
    return House(declaredRooms() << Room{QStringLiteral("engine"), {}, true});
}

QByteArray linesOf(int count)
{
    return QByteArray("    work();\n").repeated(count);
}

struct Sample
{
    const char *rule;
    const char *path;
    QByteArray text;
};

/// Each sample breaks its rule exactly once.
QList<Sample> badSamples()
{
    return {
        {"system conditional", "app/a.cpp", "#ifdef Q_OS_MACOS\n"},
        {"system conditional", "tests/app/a.cpp", "#  if defined(__linux__)\n"},
        {"system conditional", "chart/a.h", "#elif defined(_WIN32)\n"},
        {"file length", "app/a.cpp", QByteArray("x\n").repeated(401)},
        {"function length", "app/a.cpp", "void f()\n{\n" + linesOf(59) + "}\n"},
        {"bare sleep", "tests/a.cpp", "QTest::qWait(100);\n"},
        {"bare sleep", "tests/a.cpp", "QTest::qSleep(1);\n"},
        {"bare sleep", "slices/a.cpp", "std::this_thread::sleep_for(1ms);\n"},
        {"bare sleep", "slices/a.cpp", "::usleep(1);\n"},
        {"bare sleep", "slices/a.cpp", "QThread::msleep(1);\n"},
        {"left-over note", "slices/a.cpp", "// TODO: later\n"},
        {"left-over note", "slices/a.h", "/* a\n   FIXME */\n"},
        {"left-over note", "CMakeLists.txt", "# HACK\n"},
        {"left-over note", "README.md", "XXX\n"},
        {"skipped test", "tests/a.cpp", "QSKIP(\"not today\");\n"},
        {"module-prefixed include", "app/a.h", "#include <QtWidgets/QWidget>\n"},
        {"include beyond Qt Core", "engine/a.cpp", "#include <QWidget>\n"},
        {"include beyond Qt Core", "engine/a.cpp", "#include <QImage>\n"},
        {"include beyond Qt Core", "engine/a.cpp", "#include <QSettings>\n"},
        {"include beyond Qt Core", "slices/record/Info.h", "#include <QIcon>\n"},
        {"thread of its own", "chart/a.cpp", "QThreadPool::globalInstance()->start(work);\n"},
        {"thread of its own", "chart/a.cpp", "#include <QThreadPool>\n"},
        {"thread of its own", "app/a.cpp", "auto found = QtConcurrent::run(find);\n"},
        {"thread of its own", "app/a.cpp", "QThread::create(find)->start();\n"},
        {"thread of its own", "slices/a.h", "std::jthread m_thread;\n"},
        {"thread of its own", "bench/a.cpp", "std::thread(work).detach();\n"},
        {"thread of its own", "platform/a.cpp", "auto found = std::async(find);\n"},
        {"removal", "app/a.cpp", "::unlink(path);\n"},
        {"removal", "app/a.cpp", "unlinkat(folder, name, 0);\n"},
        {"removal", "app/a.cpp", "std::filesystem::remove_all(path);\n"},
        {"removal", "app/a.cpp", "std::filesystem::remove(path);\n"},
        {"removal", "app/a.cpp", "    ::remove(path);\n"},
        {"removal", "app/a.cpp", "QFile::remove(path);\n"},
        {"removal", "app/a.cpp", "file.remove();\n"},
        {"removal", "app/a.cpp", "QDir(path).removeRecursively();\n"},
        {"removal", "slices/a.cpp", "m_calls.removeFile(folder, name);\n"},
        {"removal", "slices/a.cpp", "hostSystemCalls().removeFolder(folder, name);\n"},
    };
}

QList<Sample> goodSamples()
{
    return {
        {"system conditional", "platform/a.cpp", "#ifdef Q_OS_MACOS\n"},
        {"system conditional", "app/a.cpp", "#ifdef QT_NO_DEBUG\n// __linux__\n"},
        {"file length", "app/a.cpp", QByteArray("x\n").repeated(400)},
        {"function length", "app/a.cpp", "void f()\n{\n" + linesOf(58) + "}\n"},
        {"function length", "app/a.h", "class A final\n{\n" + linesOf(100) + "};\n"},
        {"function length", "app/a.cpp", "namespace {\n\n" + linesOf(100) + "}\n"},
        {"bare sleep", "tests/a.cpp", "QTRY_VERIFY(done);\nQTest::qWaitFor(isDone);\n"},
        {"bare sleep", "tests/a.cpp", "QTest::qWait(9); // the clock's own tick\n"},
        {"bare sleep", "tests/a.cpp", "// The clock's own tick.\nQTest::qWait(9);\n"},
        {"left-over note", "slices/a.cpp", "const char *word = \"TODO\";\nint XXXL = 0;\n"},
        {"skipped test", "tests/support/run/Administrator.h", "QSKIP(\"no rights\");\n"},
        {"module-prefixed include", "app/a.h", "#include <QtGlobal>\n#include \"a/b.h\"\n"},
        {"include beyond Qt Core", "engine/a.cpp", "#include <QString>\n#include <vector>\n"},
        {"include beyond Qt Core", "app/a.cpp", "#include <QWidget>\n"},
        {"thread of its own", "app/a.h", "std::thread::id m_source;\n"},
        {"thread of its own", "app/a.cpp", "std::this_thread::get_id();\n// std::thread\n"},
        {"thread of its own", "platform/threads/BackgroundThreads.cpp", "std::thread thread;\n"},
        {"thread of its own", "tests/a.cpp", "std::jthread patience;\n"},
        {"removal", "slices/a.cpp", "text.remove(0, 1);\nlist->removeLast();\n"},
        {"removal", "app/a.cpp", "void Settings::remove(Key key)\n{\n    remove(key);\n}\n"},
        {"removal", "slices/removal/RemovalSteps.h", "bool removeFile(const EntryRef &ref);\n"},
        {"removal", "slices/removal/RemovalSteps.cpp", "m_calls.removeFile(folder, name);\n"},
        {"removal", "tests/a.cpp", "::unlink(path);\n"},
        {"removal", "platform/system/SystemCalls_linux.cpp", "::unlinkat(folder, name, 0);\n"},
    };
}

void addRows(const QList<Sample> &samples)
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    for (const Sample &sample : samples)
        QTest::addRow("%s: %s", sample.rule, sample.text.left(40).simplified().constData())
            << QByteArray(sample.rule) << QString::fromLatin1(sample.path)
            << QString::fromUtf8(sample.text);
}

} // namespace

class TestSourceRules final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areKeptByTheWholeTree_data();
    void areKeptByTheWholeTree();
    void fireOnBadSamples_data();
    void fireOnBadSamples();
    void leaveGoodSamplesAlone_data();
    void leaveGoodSamplesAlone();
    void haveABadSampleEach();
    void measureFunctions();
    void knowTheEngines();
    void takeCommentsAndLiteralsApart();

private:
    const SourceRule &ruleNamed(const QByteArray &name) const;

    const QList<SourceRule> m_rules = sourceRules(house());
};

const SourceRule &TestSourceRules::ruleNamed(const QByteArray &name) const
{
    for (const SourceRule &rule : m_rules) {
        if (rule.name == name)
            return rule;
    }
    qFatal("there is no rule \"%s\"", name.constData());
}

void TestSourceRules::areKeptByTheWholeTree_data()
{
    QTest::addColumn<QByteArray>("rule");
    for (const SourceRule &rule : m_rules)
        QTest::addRow("%s", rule.name) << QByteArray(rule.name);
}

void TestSourceRules::areKeptByTheWholeTree()
{
    QFETCH(QByteArray, rule);
    const QStringList paths = sourcePaths();
    QVERIFY(paths.contains(QStringLiteral("tests/lint/tst_SourceRules.cpp")));
    QStringList found;
    for (const QString &path : paths) {
        found << offences(ruleNamed(rule), sourceText(path, sourceFile(path)));
    }
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void TestSourceRules::fireOnBadSamples_data()
{
    addRows(badSamples());
}

void TestSourceRules::fireOnBadSamples()
{
    QFETCH(QByteArray, rule);
    QFETCH(QString, path);
    QFETCH(QString, text);
    QCOMPARE(offences(ruleNamed(rule), sourceText(path, text)).size(), 1);
}

void TestSourceRules::leaveGoodSamplesAlone_data()
{
    addRows(goodSamples());
}

void TestSourceRules::leaveGoodSamplesAlone()
{
    QFETCH(QByteArray, rule);
    QFETCH(QString, path);
    QFETCH(QString, text);
    QCOMPARE(offences(ruleNamed(rule), sourceText(path, text)), QStringList());
}

void TestSourceRules::haveABadSampleEach()
{
    QSet<QByteArray> sampled;
    for (const Sample &sample : badSamples())
        sampled.insert(sample.rule);
    for (const SourceRule &rule : m_rules)
        QVERIFY2(sampled.contains(rule.name), rule.name);
}

void TestSourceRules::measureFunctions()
{
    const auto lengths = [](const char *text) {
        QList<int> found;
        for (const FunctionBody &body :
             functionBodies(sourceText(QStringLiteral("a.cpp"), QString::fromLatin1(text))))
            found.append(body.length);
        return found;
    };
    QCOMPARE(lengths("int f()\n{\n    return 1;\n}\n"), QList<int>{3});
    QCOMPARE(lengths("int f(int a,\n      int b) const\n{\n}\n"), QList<int>{2});
    QCOMPARE(lengths("A::A()\n    : m_a(1)\n{\n    if (a) {\n    }\n}\n"), QList<int>{4});
    QCOMPARE(lengths("struct A\n{\n    void f() { g(); }\n};\n"), QList<int>());
    QCOMPARE(lengths("class A final\n{\npublic:\n    A()\n    {\n        a();\n    }\n};\n"),
             QList<int>{3});
    QCOMPARE(lengths("void f()\n{\n    {\n        lock();\n    }\n}\nvoid g()\n{\n}\n"),
             (QList<int>{5, 2}));
    QCOMPARE(lengths("void f()\n{\n    const char *brace = \"\n}\n\";\n}\n").size(), 1);
}

void TestSourceRules::knowTheEngines()
{
    const House rooms = house();
    const auto isCore = [&](const char *path) {
        const Room *room = rooms.roomOf(QString::fromLatin1(path));
        return room && room->isCore;
    };
    QVERIFY(isCore("platform/system/SystemCalls_linux.cpp"));
    QVERIFY(isCore("slices/plan/CleaningPlan.h"));
    QVERIFY(isCore("largefiles/search/File.h"));
    QVERIFY(!isCore("slices/page/FreeSpaceViewController.h"));
    QVERIFY(!isCore("tests/lint/House.h"));
}

void TestSourceRules::takeCommentsAndLiteralsApart()
{
    const SourceText source =
        sourceText(QStringLiteral("a.cpp"),
                   QStringLiteral("a = \"// no \\\" comment\"; // yes\n"
                                  "b = 1'000 /* yes */ + '\\'' + R\"x(\" // no)x\" + c; // yes\n"));
    QCOMPARE(source.comments[0].trimmed(), QStringLiteral("// yes"));
    QCOMPARE(source.comments[1].simplified(), QStringLiteral("/* yes */ // yes"));
    QVERIFY(source.code[0].contains(QStringLiteral("\";")));
    QVERIFY(!source.code[0].contains(QStringLiteral("comment")));
    QVERIFY(source.code[1].contains(QStringLiteral("+ c;")));
    QVERIFY(!source.code[1].contains(QStringLiteral("no")));
}

VANTOR_TEST_MAIN(TestSourceRules)
#include "tst_SourceRules.moc"
