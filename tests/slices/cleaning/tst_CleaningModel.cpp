#include "tests/slices/kit/ModelCase.h"
#include "tests/support/run/TestMain.h"

/// The long form is vantor-soak-model.
class TestCleaningModel final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void agreesWithSetArithmetic_data();
    void agreesWithSetArithmetic();

private:
    quint32 m_seed = 0;
};

void TestCleaningModel::initTestCase()
{
    bool isGiven = false;
    m_seed = qEnvironmentVariable("VANTOR_TEST_SEED").toUInt(&isGiven);
    if (!isGiven)
        m_seed = QRandomGenerator::global()->generate();
    qInfo("VANTOR_TEST_SEED=%u", m_seed);
}

void TestCleaningModel::agreesWithSetArithmetic_data()
{
    QTest::addColumn<int>("cases");
    QTest::addColumn<int>("failuresPerThousand");
    QTest::addColumn<bool>("isForOneThread");
    QTest::addRow("one thread") << 8000 << 0 << true;
    QTest::addRow("one thread, failing") << 8000 << 40 << true;
    QTest::addRow("several threads") << 2500 << 0 << false;
    QTest::addRow("on disk, failing") << 2500 << 40 << false;
}

void TestCleaningModel::agreesWithSetArithmetic()
{
    QFETCH(int, cases);
    QFETCH(int, failuresPerThousand);
    QFETCH(bool, isForOneThread);
    constexpr quint32 kConfined = 10;
    constexpr quint32 kBusy = 20;
    const CleaningGround ground;
    const LogRecorder silenced;
    const std::size_t descriptors = openDescriptors();
    std::uint64_t kept = 0;
    std::uint64_t removed = 0;
    for (int i = 0; i < cases; ++i) {
        const quint32 seed = m_seed + quint32(i);
        const ModelCase::Outcome outcome =
            ModelCase(ground.path(), seed, {failuresPerThousand, isForOneThread, kConfined, kBusy})
                .run();
        if (!outcome.isRight())
            QFAIL("seed " + QByteArray::number(seed) + ": " + outcome.words());
        kept += outcome.kept;
        removed += outcome.removed;
    }
    QCOMPARE(openDescriptors(), descriptors);
    // Neither "all goes" nor "all stays" would pass.
    QVERIFY(kept > std::uint64_t(cases) && removed > std::uint64_t(cases));
}

VANTOR_TEST_MAIN(TestCleaningModel)
#include "tst_CleaningModel.moc"
