#include "platform/base/PlainToolTip.h"
#include "tests/support/run/GuiTestMain.h"

#include <QTest>
#include <QTextDocument>

class PlainToolTipTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheTextAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a path") << QStringLiteral("/home/u/a film.mkv");
        QTest::newRow("tags") << QStringLiteral("/home/u/<b>fat</b>");
        QTest::newRow("a picture") << QStringLiteral("/home/u/<img src=x>");
        QTest::newRow("escapes") << QStringLiteral("a &lt; b &amp; \"c\"");
        QTest::newRow("spaces") << QStringLiteral("a  b   c");
        QTest::newRow("lines") << QStringLiteral("a\n\nb");
    }

    void showsTheTextAsItIs()
    {
        QFETCH(QString, text);
        const QString toolTip = plainToolTip(text);
        QVERIFY(Qt::mightBeRichText(toolTip));
        QTextDocument shown;
        shown.setHtml(toolTip);
        QCOMPARE(shown.toPlainText(), text);
    }

    void thereIsNoneForNothing() { QVERIFY(plainToolTip({}).isEmpty()); }
};

VANTOR_GUI_TEST_MAIN(PlainToolTipTest)
#include "tst_PlainToolTip.moc"
