#include "tests/lint/ClassRules.h"
#include "tests/lint/SourceTree.h"
#include "tests/support/run/TestMain.h"

namespace {

SourceText header(const QByteArray &content)
{
    return sourceText(QStringLiteral("a/A.h"), QString::fromUtf8(content));
}

QByteArray classWith(int functions)
{
    return "class A final\n{\n" + QByteArray("    void f();\n").repeated(functions) + "};\n";
}

} // namespace

class TestClassRules final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countFunctions_data();
    void countFunctions();
    void countEachClassForItself();
    void fireOnTheThirtyFirstFunction();
    void fireOnASecondSource();
    void leaveNamesAloneThatSeveralHeadersDeclare();

    void noClassOfTheTreeHasTooManyFunctions();
    void noClassOfTheTreeIsCutOverSources();
};

void TestClassRules::countFunctions_data()
{
    QTest::addColumn<QByteArray>("member");
    QTest::addColumn<int>("functions");
    const auto row = [](const char *member, int functions) {
        QTest::addRow("%s", member) << QByteArray(member) << functions;
    };
    row("void f();", 1);
    row("virtual bool f(int a, QString b = {}) const = 0;", 1);
    row("A();", 1);
    row("~A() override;", 1);
    row("A() : m_a{1} {}", 1);
    row("int f() const { return g(1) + h(2); }", 1);
    row("bool operator==(const A &other) const = default;", 1);
    row("bool operator()(int a) const;", 1);
    row("static std::function<void(int)> f(std::function<void()> g);", 1);
    row("[[nodiscard]] int f();", 1);
    row("void f();\n    int g() const;", 2);
    row("private:\n    void f();", 1);
    row("public Q_SLOTS:\n    void f();", 1);
    row("Q_SIGNALS:\n    void f();", 0);
    row("Q_SIGNALS:\n    void f();\nprivate:\n    void g();", 1);
    row("Q_OBJECT", 0);
    row("Q_DECLARE_TR_FUNCTIONS(A)", 0);
    row("A(const A &) = delete;", 0);
    row("friend bool operator<(A a, A b);", 0);
    row("using F = std::function<void(int)>;", 0);
    row("std::function<void(int)> m_f;", 0);
    row("int m_a = f(1);", 0);
    row("int m_a{2};", 0);
    row("enum class E { One, Two };", 0);
    row("// void f();", 0);
}

void TestClassRules::countFunctions()
{
    QFETCH(QByteArray, member);
    QFETCH(int, functions);
    const auto classes =
        declaredClasses(header("class A final : public B\n{\n    " + member + "\n};\n"));
    QCOMPARE(classes.size(), 1);
    QCOMPARE(classes.first().name, QStringLiteral("A"));
    QCOMPARE(classes.first().functions, functions);
}

void TestClassRules::countEachClassForItself()
{
    const auto classes = declaredClasses(
        header("void free();\nclass Later;\nclass A\n{\n    struct In\n    {\n        void f();\n"
               "        void g();\n    };\n    void h();\n};\n"));
    QCOMPARE(classes.size(), 2);
    QCOMPARE(classes[0].functions, 1);
    QCOMPARE(classes[1].name, QStringLiteral("In"));
    QCOMPARE(classes[1].functions, 2);
    QCOMPARE(classes[1].line, 6);
}

void TestClassRules::fireOnTheThirtyFirstFunction()
{
    QCOMPARE(classesWithTooManyFunctions({header(classWith(30))}), QStringList());
    QCOMPARE(classesWithTooManyFunctions({header(classWith(31))}).size(), 1);
}

void TestClassRules::fireOnASecondSource()
{
    const SourceText first =
        sourceText(QStringLiteral("a/A.cpp"), QStringLiteral("A::A()\n{\n}\nvoid A::f()\n{\n}\n"));
    const SourceText user =
        sourceText(QStringLiteral("a/B.cpp"), QStringLiteral("void B::f()\n{\n    A::g();\n}\n"));
    const SourceText second = sourceText(QStringLiteral("a/AMore.cpp"),
                                         QStringLiteral("std::vector<int> A::g(int a)\n{\n}\n"));
    QCOMPARE(classesOverSeveralSources({header(classWith(1)), first, user}), QStringList());
    QCOMPARE(classesOverSeveralSources({header(classWith(1)), first, second}).size(), 1);
}

void TestClassRules::leaveNamesAloneThatSeveralHeadersDeclare()
{
    const auto source = [](const char *path, const char *content) {
        return sourceText(QString::fromLatin1(path), QString::fromLatin1(content));
    };
    QCOMPARE(classesOverSeveralSources({source("a/A.h", "class Row\n{\n};\n"),
                                        source("b/B.h", "class Row\n{\n};\n"),
                                        source("a/A.cpp", "int Row::f()\n{\n}\n"),
                                        source("b/B.cpp", "int Row::f()\n{\n}\n")}),
             QStringList());
}

void TestClassRules::noClassOfTheTreeHasTooManyFunctions()
{
    const QStringList found = classesWithTooManyFunctions(productSources());
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

void TestClassRules::noClassOfTheTreeIsCutOverSources()
{
    const QStringList found = classesOverSeveralSources(productSources());
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
}

VANTOR_TEST_MAIN(TestClassRules)
#include "tst_ClassRules.moc"
