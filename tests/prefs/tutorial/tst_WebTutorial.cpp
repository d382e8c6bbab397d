#include "platform/system/HostSystemCalls.h"
#include "prefs/tutorial/WebTutorial.h"

#include "app/settings/SettingsFile.h"
#include "app/settings/SettingsKeys.h"
#include "prefs/tutorial/TextTutorialView.h"
#include "prefs/tutorial/WebTutorialView.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace std::chrono_literals;

/// Whether the web engine is used, and what is shown when it is not. The probes here are scripts:
/// they end in every way in which an engine can.
class TestWebTutorial final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void mayBeShownUntilItIsDeclined_data();
    void mayBeShownUntilItIsDeclined();
    void findsItsPartsInThePlaces_data();
    void findsItsPartsInThePlaces();
    void findsNothingWhereNothingIs();

    void showsRichTextWithoutTheEngine_data();
    void showsRichTextWithoutTheEngine();
    void showsRichTextUntilTheProbeHasEnded();
    void showsRichTextWhereThePluginIsNone();
    void endsTheProbeAtTheLimit();
    void endsTheProbeWhenItGoes();
    void tellsTheProbeTheDisplayOfTheProgram();

private:
    QString makeFile(const QString &name, const QByteArray &text = {}) const;
    QString makeProbe(const QByteArray &command) const
    {
        return makeFile(QStringLiteral("probe"), "#!/bin/sh\n" + command + '\n');
    }
    QString plugin() const { return makeFile(QStringLiteral("plugin")); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QUrl kPage(QStringLiteral("qrc:/tutorialVantor.html"));

bool isPlugin(const QString &path)
{
    return path.contains(QStringLiteral("vantor-tutorial")) && QFile::exists(path);
}

/// Whether a new view shows the tutorial, and not by the engine.
bool showsRichText(WebTutorial &tutorial)
{
    WebTutorialView view(tutorial);
    view.load(kPage);
    const auto *text = view.findChild<TextTutorialView *>();
    return text && text->plainText().startsWith(QStringLiteral("How Vantor works")) &&
           !view.isWeb();
}

} // namespace

QString TestWebTutorial::makeFile(const QString &name, const QByteArray &text) const
{
    const QString path = m_folder->filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    const bool isMade = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() &&
                        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return isMade ? path : QString();
}

void TestWebTutorial::mayBeShownUntilItIsDeclined_data()
{
    QTest::addColumn<QJsonObject>("settings");
    QTest::addColumn<bool>("mayBeShown");
    QTest::addRow("no setting") << QJsonObject() << true;
    QTest::addRow("wanted") << QJsonObject{{VNTHideDemoWindowString, false}} << true;
    QTest::addRow("declined") << QJsonObject{{VNTHideDemoWindowString, true}} << false;
}

void TestWebTutorial::mayBeShownUntilItIsDeclined()
{
    QFETCH(QJsonObject, settings);
    QFETCH(bool, mayBeShown);
    SettingsFile file(m_folder->path(), hostSystemCalls());
    file.load();
    QVERIFY(file.save(settingsText({settings, {}}), Replace::OnlyWhatIsKnown).isWell());
    QCOMPARE(WebTutorial::mayBeShown(m_folder->path()), mayBeShown);
}

void TestWebTutorial::findsItsPartsInThePlaces_data()
{
    QTest::addColumn<QString>("place");
    QTest::addRow("beside the program, as they are built") << QStringLiteral("bin");
    QTest::addRow("among its libraries, as they are installed") << QStringLiteral("lib/vantor");
}

void TestWebTutorial::findsItsPartsInThePlaces()
{
    QFETCH(QString, place);
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("bin")));
    makeFile(place + QStringLiteral("/libvantor-tutorial.so"));
    const auto files = WebTutorialFiles::ofTheProgramIn(m_folder->filePath(QStringLiteral("bin")));
    QVERIFY(isPlugin(files.plugin));
    QCOMPARE(QDir::cleanPath(files.probe),
             m_folder->filePath(place + QStringLiteral("/vantor-tutorial-probe")));
}

void TestWebTutorial::findsNothingWhereNothingIs()
{
    const auto files = WebTutorialFiles::ofTheProgramIn(m_folder->path());
    QVERIFY(files.plugin.isEmpty());
}

void TestWebTutorial::showsRichTextWithoutTheEngine_data()
{
    QTest::addColumn<bool>("hasPlugin");
    QTest::addColumn<QByteArray>("probe");
    QTest::addColumn<QString>("reason");
    QTest::addRow("no plugin") << false << QByteArray("exit 0") << QStringLiteral("not installed");
    QTest::addRow("no probe") << true << QByteArray() << QStringLiteral("its probe is missing");
    const QString doesNotStart = QStringLiteral("does not start");
    QTest::addRow("the page does not come") << true << QByteArray("exit 1") << doesNotStart;
    QTest::addRow("it aborts") << true << QByteArray("kill -ABRT $$") << doesNotStart;
    QTest::addRow("it crashes") << true << QByteArray("kill -SEGV $$") << doesNotStart;
}

void TestWebTutorial::showsRichTextWithoutTheEngine()
{
    QFETCH(bool, hasPlugin);
    QFETCH(QByteArray, probe);
    QFETCH(QString, reason);
    const LogRecorder log;
    WebTutorial tutorial(
        {.plugin = hasPlugin ? plugin() : QString(),
         .probe = probe.isEmpty() ? m_folder->filePath(QStringLiteral("none")) : makeProbe(probe)});
    QSignalSpy probed(&tutorial, &WebTutorial::probed);
    tutorial.probe();
    QTRY_COMPARE(probed.count(), 1);
    QCOMPARE(probed.at(0).at(0).toBool(), false);
    QVERIFY(showsRichText(tutorial));
    QCOMPARE(log.lines().count(), 1);
    QVERIFY(log.lines().at(0).contains(reason));
}

void TestWebTutorial::showsRichTextUntilTheProbeHasEnded()
{
    WebTutorial tutorial({.plugin = plugin(), .probe = makeProbe("exec tail -f /dev/null")});
    QVERIFY(showsRichText(tutorial));
    tutorial.probe();
    QVERIFY(showsRichText(tutorial));
}

void TestWebTutorial::showsRichTextWhereThePluginIsNone()
{
    const LogRecorder log;
    WebTutorial tutorial({.plugin = plugin(), .probe = makeProbe("exit 0")});
    QSignalSpy probed(&tutorial, &WebTutorial::probed);
    tutorial.probe();
    QTRY_COMPARE(probed.count(), 1);
    QVERIFY(tutorial.isUsable());
    QVERIFY(showsRichText(tutorial));
    QVERIFY(!tutorial.isUsable());
}

void TestWebTutorial::endsTheProbeAtTheLimit()
{
    const LogRecorder log;
    WebTutorial tutorial(
        {.plugin = plugin(), .probe = makeProbe("exec tail -f /dev/null"), .limit = 200ms});
    QSignalSpy probed(&tutorial, &WebTutorial::probed);
    tutorial.probe();
    QTRY_COMPARE(probed.count(), 1);
    QVERIFY(!tutorial.isUsable());
}

void TestWebTutorial::endsTheProbeWhenItGoes()
{
    const QString pid = m_folder->filePath(QStringLiteral("pid"));
    QFile file(pid);
    {
        WebTutorial tutorial(
            {.plugin = plugin(),
             .probe = makeProbe("echo $$ > '" + QFile::encodeName(pid) + ".new'; mv '" +
                                QFile::encodeName(pid) + ".new' '" + QFile::encodeName(pid) +
                                "'; exec tail -f /dev/null")});
        tutorial.probe();
        QTRY_VERIFY(file.exists());
    }
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(
        !QFile::exists(QStringLiteral("/proc/") + QString::fromLatin1(file.readAll().trimmed())));
}

void TestWebTutorial::tellsTheProbeTheDisplayOfTheProgram()
{
    const QString said = m_folder->filePath(QStringLiteral("said"));
    const QString thePlugin = plugin();
    WebTutorial tutorial({.plugin = thePlugin,
                          .probe = makeProbe("echo \"$@\" > '" + QFile::encodeName(said) + "'"),
                          .limit = 5s});
    QSignalSpy probed(&tutorial, &WebTutorial::probed);
    tutorial.probe();
    QTRY_COMPARE(probed.count(), 1);
    QFile file(said);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll().trimmed()),
             thePlugin + QStringLiteral(" 5000 -platform ") + QGuiApplication::platformName());
}

VANTOR_GUI_TEST_MAIN(TestWebTutorial)
#include "tst_WebTutorial.moc"
