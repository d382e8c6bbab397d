#include "tests/slices/page/CleaningFlowTest.h"

/// The way from the press of the start button to the result, where something else takes the place
/// of what the user was asked about.
class TestCleaningFlowLocations final : public CleaningFlowTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void asksAboutAChoiceThatCameInBetween();
    void keepsWhatTakesTheNameOfALocationUnderTheQuestion_data();
    void keepsWhatTakesTheNameOfALocationUnderTheQuestion();
};

/// The look at the locations of the former choice is worth nothing for it.
void TestCleaningFlowLocations::asksAboutAChoiceThatCameInBetween()
{
    const auto switchOn = [this] { record(SliceKind::Cache).setIsOn(true); };
    connect(m_flow.get(), &CleaningFlow::stateChanged, this, [this, switchOn](CleaningState state) {
        if (state == CleaningState::Identifying) // comes before the answer of the look
            QMetaObject::invokeMethod(this, switchOn, Qt::QueuedConnection);
    });
    m_flow->start();
    QVERIFY(reach(CleaningState::Asking));
    QCOMPARE(m_states.count(CleaningState::Identifying), 2);
    QVERIFY(m_asked[0].first.informativeText.contains(QStringLiteral("• Cache\n")));
    answer(kGoOnButton);
    QTRY_COMPARE(m_freed, QList<qint64>{6500});
    QVERIFY(!isHistoryThere() && !m_fixture->exists(".cache/a"));
}

void TestCleaningFlowLocations::keepsWhatTakesTheNameOfALocationUnderTheQuestion_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("kept");
    QTest::addRow("location") << QByteArray(".cache") << QByteArray("a");
    QTest::addRow("folder around a file")
        << QByteArray(".config/chromium") << QByteArray("Default/History");
}

/// What stands there then is older than the question, but the question was not about it.
void TestCleaningFlowLocations::keepsWhatTakesTheNameOfALocationUnderTheQuestion()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, kept);
    m_fixture->makeFile("other/" + kept, 10);
    record(SliceKind::Cache).setIsOn(true);
    m_flow->start();
    QVERIFY(reach(CleaningState::Asking));
    const auto at = [&](const QByteArray &path) {
        return QFile::decodeName(m_fixture->home() + '/' + path);
    };
    QVERIFY(QFile::rename(at(name), at("aside")));
    QVERIFY(QFile::rename(at("other"), at(name)));
    answer(kGoOnButton);
    QTRY_COMPARE(m_freed.size(), 1);
    QVERIFY(m_fixture->exists(name + '/' + kept) && m_fixture->exists("aside/" + kept));
    QVERIFY(!m_fixture->exists(".mozilla/firefox/x.default/cookies.sqlite"));
}

VANTOR_GUI_TEST_MAIN(TestCleaningFlowLocations)
#include "tst_CleaningFlowLocations.moc"
