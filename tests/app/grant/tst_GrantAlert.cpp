#include "app/grant/GrantAlert.h"

#include "tests/support/run/GuiTestMain.h"

class TestGrantAlert final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void explainsEveryFailureInItsOwnWords();
    void offersToChooseAgainFirst();
    void offersToRestartForANewFolder();
};

void TestGrantAlert::explainsEveryFailureInItsOwnWords()
{
    QStringList texts;
    for (const GrantFailure failure :
         {GrantFailure::Missing, GrantFailure::Damaged, GrantFailure::Gone, GrantFailure::Replaced,
          GrantFailure::Unreadable, GrantFailure::Foreign})
        texts.append(grantAlert(failure).informativeText);
    QCOMPARE(texts.removeDuplicates(), 0);
}

void TestGrantAlert::offersToChooseAgainFirst()
{
    const Alert alert = grantAlert(GrantFailure::Gone);
    QCOMPARE(alert.buttons.value(0).title, QStringLiteral("Choose Again…"));
    QCOMPARE(alert.buttons.value(1).role, AlertButtonRole::Cancel);
}

void TestGrantAlert::offersToRestartForANewFolder()
{
    const Alert alert = grantNotInForceAlert();
    QCOMPARE(alert.buttons.value(0).title, QStringLiteral("Restart Vantor"));
    QCOMPARE(alert.buttons.value(1).role, AlertButtonRole::Cancel);
}

VANTOR_GUI_TEST_MAIN(TestGrantAlert)
#include "tst_GrantAlert.moc"
