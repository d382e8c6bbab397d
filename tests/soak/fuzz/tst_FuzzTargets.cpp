#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/soak/fuzz/Mutations.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/TestMain.h"

#include <QDir>

namespace {

constexpr quint32 kSeed = 20141;

QByteArrayList corpusOf(const FuzzTarget &target)
{
    const QDir folder(QStringLiteral(VANTOR_FUZZ_CORPUS "/%1").arg(QLatin1String(target.name)));
    QByteArrayList corpus;
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            corpus.append(file.readAll());
    }
    return corpus;
}

} // namespace

/// The targets of the fuzzer, for a few seconds and with the same inputs each time.
class TestFuzzTargets final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findNothing_data();
    void findNothing();
};

void TestFuzzTargets::findNothing_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(fuzzTargets().size()); ++i)
        QTest::newRow(fuzzTargets()[i].name) << i;
}

void TestFuzzTargets::findNothing()
{
    QFETCH(const int, index);
    const LogRecorder log; // the program complains of much
    const FuzzTarget &target = fuzzTargets()[index];
    const QByteArrayList corpus = corpusOf(target);
    QVERIFY(!corpus.isEmpty());
    for (const QByteArray &input : corpus)
        QCOMPARE(target.findingIn(input), QByteArray());
    Mutations mutations(corpus, kSeed);
    for (int i = 0; i < target.fewInputs; ++i) {
        const QByteArray input = mutations.next();
        const QByteArray finding = target.findingIn(input);
        QVERIFY2(finding.isEmpty(), finding + " in " + input.toPercentEncoding());
    }
}

VANTOR_TEST_MAIN(TestFuzzTargets)
#include "tst_FuzzTargets.moc"
