#include "tests/lint/Mutants.h"
#include "tests/lint/SourceTree.h"
#include "tests/support/run/TestMain.h"

#include <QDir>
#include <QFile>

namespace {

/// Fewer mutants say little about a program of this size.
constexpr qsizetype kFewest = 120;
constexpr auto kTables = "tests/mutants";

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

bool isInTree(const QString &path)
{
    return QFile::exists(QStringLiteral(VANTOR_SOURCE_TREE "/") + path);
}

QList<Mutant> allMutants()
{
    QList<Mutant> all;
    const QDir tables(QStringLiteral(VANTOR_SOURCE_TREE "/") + text(kTables));
    for (const QString &name : tables.entryList({text("*.mutants")}, QDir::Files))
        all << mutantsOfTable(name, sourceFile(text(kTables) + u'/' + name));
    return all;
}

constexpr auto kTable = "# Two.\n"
                        "name: the first\n"
                        "file: a/A.cpp\n"
                        "test: a/tst_A\n"
                        "- if (x) {\n"
                        "-     go(-1);\n"
                        "+ if (true) {\n"
                        "+     go(+1);\n"
                        "\n"
                        "\n"
                        "name: the second: gone\n"
                        "file: a/B.cpp\n"
                        "equivalent: nobody looks\n"
                        "- look();\n";

} // namespace

class TestMutants final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areReadBlockByBlock();
    void areFoundWhateverTheIndentation_data();
    void areFoundWhateverTheIndentation();
    void haveFaultsThatAreTold_data();
    void haveFaultsThatAreTold();
    void haveNamesOfTheirOwn();

    void ofTheTablesAreWellFormed();
    void ofTheTablesFitTheirFiles();
    void ofTheTablesNameTestsThatAreThere();
    void ofTheTablesAreEnough();
};

void TestMutants::areReadBlockByBlock()
{
    const QList<Mutant> read = mutantsOfTable(text("a.mutants"), text(kTable));
    QCOMPARE(read.size(), 2);
    QCOMPARE(read[0].table, text("a.mutants"));
    QCOMPARE(read[0].name, text("the first"));
    QCOMPARE(read[0].file, text("a/A.cpp"));
    QCOMPARE(read[0].test, text("a/tst_A"));
    QCOMPARE(read[0].old, (QStringList{text("if (x) {"), text("go(-1);")}));
    QCOMPARE(read[0].planted, (QStringList{text("if (true) {"), text("go(+1);")}));
    QCOMPARE(read[1].name, text("the second: gone"));
    QCOMPARE(read[1].equivalent, text("nobody looks"));
    QVERIFY(read[1].planted.isEmpty());
    QVERIFY(faultsOf(read[0]).isEmpty());
    QVERIFY(faultsOf(read[1]).isEmpty());
}

void TestMutants::areFoundWhateverTheIndentation_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("occurrences");
    QTest::newRow("as written") << text("if (x) {\n    go(-1);\n}\n") << 1;
    QTest::newRow("deeper") << text("        if (x) {\n            go(-1);\n") << 1;
    QTest::newRow("another") << text("if (x) {\n    go(-2);\n}\n") << 0;
    QTest::newRow("a line between") << text("if (x) {\n    stop();\n    go(-1);\n}\n") << 0;
    QTest::newRow("twice") << text("if (x) {\n go(-1);\n}\nif (x) {\n  go(-1);\n}\n") << 2;
}

void TestMutants::areFoundWhateverTheIndentation()
{
    QFETCH(QString, file);
    QFETCH(int, occurrences);
    const Mutant mutant = mutantsOfTable(QString(), text(kTable)).first();
    QCOMPARE(mutant.occurrencesIn(file), occurrences);
}

void TestMutants::haveFaultsThatAreTold_data()
{
    QTest::addColumn<QString>("block");
    QTest::newRow("no name") << text("file: a\ntest: b\n- x\n+ y");
    QTest::newRow("no file") << text("name: n\ntest: b\n- x\n+ y");
    QTest::newRow("no test") << text("name: n\nfile: a\n- x\n+ y");
    QTest::newRow("test and reason") << text("name: n\nfile: a\ntest: b\nequivalent: c\n- x\n+ y");
    QTest::newRow("nothing to replace") << text("name: n\nfile: a\ntest: b\n+ y");
    QTest::newRow("an empty line to replace") << text("name: n\nfile: a\ntest: b\n-\n+ y");
    QTest::newRow("nothing changed") << text("name: n\nfile: a\ntest: b\n- x\n+ x");
    QTest::newRow("a word nobody knows") << text("name: n\nfile: a\ntest: b\nwhy: c\n- x\n+ y");
}

void TestMutants::haveFaultsThatAreTold()
{
    QFETCH(QString, block);
    const QList<Mutant> read = mutantsOfTable(text("t"), block);
    QCOMPARE(read.size(), 1);
    QCOMPARE(faultsOf(read.first()).size(), 1);
}

void TestMutants::haveNamesOfTheirOwn()
{
    const QString block = text("name: n\nfile: a\ntest: b\n- x\n+ y\n\n");
    const QString other = text("name: m\nfile: a\ntest: b\n- x\n+ y\n\n");
    QCOMPARE(repeatedNames(mutantsOfTable(text("t"), block + other)), QStringList());
    QCOMPARE(repeatedNames(mutantsOfTable(text("t"), block + other + block)),
             QStringList(text("n")));
}

void TestMutants::ofTheTablesAreWellFormed()
{
    QStringList faults = repeatedNames(allMutants());
    for (const Mutant &mutant : allMutants())
        faults << faultsOf(mutant);
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
}

/// A row whose text is no longer in the file plants nothing and finds nothing.
void TestMutants::ofTheTablesFitTheirFiles()
{
    QStringList stale;
    for (const Mutant &mutant : allMutants()) {
        const qsizetype found =
            isInTree(mutant.file) ? mutant.occurrencesIn(sourceFile(mutant.file)) : 0;
        if (found != 1)
            stale << QStringLiteral("%1: %2: its text stands %3 times in %4")
                         .arg(mutant.table, mutant.name)
                         .arg(found)
                         .arg(mutant.file);
    }
    QVERIFY2(stale.isEmpty(), qPrintable(stale.join(u'\n')));
}

void TestMutants::ofTheTablesNameTestsThatAreThere()
{
    QStringList missing;
    for (const Mutant &mutant : allMutants()) {
        if (!mutant.test.isEmpty() && !isInTree(text("tests/%1.cpp").arg(mutant.test)))
            missing << mutant.table + text(": ") + mutant.name + text(": ") + mutant.test;
    }
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(u'\n')));
}

void TestMutants::ofTheTablesAreEnough()
{
    QCOMPARE_GE(allMutants().size(), kFewest);
}

VANTOR_TEST_MAIN(TestMutants)
#include "tst_Mutants.moc"
