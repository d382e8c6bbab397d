#include "slices/plan/RefusalText.h"
#include "tests/support/run/TestMain.h"

#include <QSet>

class TestRefusalText final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheReasonsApart();
};

void TestRefusalText::tellsTheReasonsApart()
{
    QSet<QByteArray> texts;
    const int count = static_cast<int>(kLastRefusalReason) + 1;
    for (int reason = 0; reason < count; ++reason) {
        const RefusalText text = refusalText(static_cast<RefusalReason>(reason));
        texts.insert(text.told);
        texts.insert(text.logged);
        QVERIFY(qstrlen(text.told) > 0 && qstrlen(text.logged) > 0);
    }
    QCOMPARE(texts.size(), 2 * count);
}

VANTOR_TEST_MAIN(TestRefusalText)
#include "tst_RefusalText.moc"
