#include "app/OneInstance.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"
#include "tests/support/run/NoRuntimeFolder.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

namespace {

using namespace std::chrono_literals;
constexpr auto kShort = 100ms;

} // namespace

/// Several starts of the program in one process.
class TestOneInstance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { m_folder.reset(); }

    void runsWhenItIsTheOnlyOne();
    void handsASecondStartOver();
    void runsBesideOneWithOtherSettings();
    void endsASecondStartThatIsNotAnswered();
    void endsWithoutAWordWhenItIsAskedTo();
    void followsOneThatEnds();
    void answersAgainWhenNothingFollowed();
    void saysWhenItCannotKnow();

private:
    QString settings(const char *name = "settings") const
    {
        return m_folder->filePath(QLatin1String(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestOneInstance::runsWhenItIsTheOnlyOne()
{
    OneInstance only(settings());
    QCOMPARE(only.settle(), std::nullopt);
    QCOMPARE(only.doubt(), QString());
}

void TestOneInstance::handsASecondStartOver()
{
    OneInstance first(settings());
    QCOMPARE(first.settle(), std::nullopt);
    QSignalSpy calls(&first, &OneInstance::called);
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    OneInstance second(settings());
    qunsetenv("XDG_ACTIVATION_TOKEN");
    QCOMPARE(second.settle(), std::optional<int>(EXIT_SUCCESS));
    QCOMPARE(calls, (QList<QVariantList>{{QByteArray("token")}}));
}

void TestOneInstance::runsBesideOneWithOtherSettings()
{
    OneInstance one(settings("one"));
    OneInstance other(settings("other"));
    QCOMPARE(one.settle(), std::nullopt);
    QCOMPARE(other.settle(), std::nullopt);
}

void TestOneInstance::endsASecondStartThatIsNotAnswered()
{
    const OneInstance hung(settings()); // never settles, so it never answers
    OneInstance second(settings(), kShort);
    LogRecorder log;
    QString told;
    QTimer looks;
    connect(&looks, &QTimer::timeout, this, [&told] {
        auto *message = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!message)
            return;
        told = message->text();
        message->button(QMessageBox::Close)->click();
    });
    looks.start(kShort);
    QCOMPARE(second.settle(), std::optional<int>(EXIT_FAILURE));
    QVERIFY(told.contains(QStringLiteral("does not answer")));
    QVERIFY(log.lines().contains(told)); // for whoever starts it from a terminal
}

void TestOneInstance::endsWithoutAWordWhenItIsAskedTo()
{
    const OneInstance hung(settings());
    OneInstance second(settings());
    LogRecorder log;
    QTimer::singleShot(kShort, qApp, [] { QCoreApplication::exit(); });
    QCOMPARE(second.settle(), std::optional<int>(EXIT_FAILURE));
    QCOMPARE(log.lines(), QStringList());
}

void TestOneInstance::followsOneThatEnds()
{
    auto first = std::make_unique<OneInstance>(settings());
    QCOMPARE(first->settle(), std::nullopt);
    first->close();
    OneInstance second(settings());
    QTimer::singleShot(kShort, this, [&first] { first.reset(); });
    QCOMPARE(second.settle(), std::nullopt);
    QVERIFY(!first);
    OneInstance third(settings());
    QCOMPARE(third.settle(), std::optional<int>(EXIT_SUCCESS));
}

void TestOneInstance::answersAgainWhenNothingFollowed()
{
    OneInstance first(settings());
    QCOMPARE(first.settle(), std::nullopt);
    first.close();
    first.listen();
    OneInstance second(settings());
    QCOMPARE(second.settle(), std::optional<int>(EXIT_SUCCESS));
}

void TestOneInstance::saysWhenItCannotKnow()
{
    QVERIFY(QFile(settings()).open(QIODevice::WriteOnly)); // no folder
    const NoRuntimeFolder noOtherPlace;
    OneInstance instance(settings());
    QCOMPARE(instance.settle(), std::nullopt);
    QVERIFY(instance.doubt().contains(settings()));
}

VANTOR_GUI_TEST_MAIN(TestOneInstance)
#include "tst_OneInstance.moc"
