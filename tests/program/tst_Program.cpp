#include "app/grant/RealHomeDirectory.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

namespace {

using namespace std::chrono_literals;

constexpr int kPatience = 30'000; ///< milliseconds, for a slow machine
constexpr auto kStill = 2500ms;   ///< longer than any pause that the pages make by themselves
constexpr auto kBetweenPictures = 100ms; ///< of a film

QImage screenPicture()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

} // namespace

/// The program as it is installed, worked by its keys: nothing of it is replaced but the user's
/// folders. Needs a display with a window manager, and the tool "xdotool".
class TestProgram final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_empty = screenPicture(); }
    void init();
    void cleanup();

    void cleansAHomeByTheKeyboardAlone();
    void showsItsWindowAtASecondStart();
    void letsNoSecondStartRunWhileItHangs();
    void makesWayWhenItIsKilled();

private:
    void makeHome();
    std::unique_ptr<QProcess> startedProgram() const;
    static bool endsWith(QProcess &program, int exitCode);
    bool waitForWindow();
    QHash<QString, QDateTime> everything() const;
    bool press(const QStringList &keys);
    bool waitUntilStill();
    QByteArray settings() const;
    QString file(const QString &relative) const { return m_home + QLatin1Char('/') + relative; }
    void make(const QString &relative, qint64 size) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_home;
    QImage m_empty; ///< the screen without the program
    std::unique_ptr<QProcess> m_program;
};

void TestProgram::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    makeHome();
    QTRY_COMPARE_WITH_TIMEOUT(screenPicture(), m_empty, kPatience); // the last window is gone
    m_program = startedProgram();
    QVERIFY(m_program->waitForStarted());
}

void TestProgram::cleanup()
{
    if (!m_program)
        return;
    if (QTest::currentTestFailed()) {
        qInfo().noquote() << m_program->readAllStandardError();
        screenPicture().save(QStringLiteral("program-failed.png"));
    }
    if (m_program->state() != QProcess::NotRunning) {
        m_program->kill();
        m_program->waitForFinished();
    }
    m_program.reset();
    m_folder.reset();
}

void TestProgram::make(const QString &relative, qint64 size) const
{
    const QString path = file(relative);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile made(path);
    QVERIFY(made.open(QIODevice::WriteOnly) && made.resize(size));
}

/// The folder has the name of the user's own home, because the program takes only such a folder.
void TestProgram::makeHome()
{
    const QString own = QFile::decodeName(RealHomeDirectory()).section(QLatin1Char('/'), -1);
    m_home = m_folder->filePath(own);
    make(QStringLiteral(".cache/app/x"), 5'000'000);
    make(QStringLiteral(".local/share/Trash/files/t"), 100'000);
    make(QStringLiteral("Downloads/d"), 3'000'000);
    make(QStringLiteral("letter"), 1000);
}

std::unique_ptr<QProcess> TestProgram::startedProgram() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                       m_folder->filePath(QStringLiteral("config")));
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"})
        environment.remove(QString::fromLatin1(variable));
    auto program = std::make_unique<QProcess>();
    program->setProcessEnvironment(environment);
    program->start(qEnvironmentVariable("VANTOR_PROGRAM"), {});
    return program;
}

bool TestProgram::endsWith(QProcess &program, int exitCode)
{
    return program.waitForFinished(kPatience) && program.exitStatus() == QProcess::NormalExit &&
           program.exitCode() == exitCode;
}

bool TestProgram::waitForWindow()
{
    return QTest::qWaitFor([this] { return screenPicture() != m_empty; }, kPatience) &&
           waitUntilStill();
}

/// Every file of the home and of the settings, and when it was changed.
QHash<QString, QDateTime> TestProgram::everything() const
{
    QHash<QString, QDateTime> files;
    QDirIterator all(m_folder->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QString path = all.next();
        files.insert(path, all.fileInfo().lastModified());
    }
    return files;
}

/// Presses keys one after the other, and waits until the window has done what they make it do.
bool TestProgram::press(const QStringList &keys)
{
    return QProcess::execute(QStringLiteral("xdotool"),
                             QStringList{QStringLiteral("key")} + keys) == 0 &&
           waitUntilStill();
}

bool TestProgram::waitUntilStill()
{
    QImage last;
    QElapsedTimer still;
    QElapsedTimer picture;
    still.start();
    picture.start();
    const auto isStill = [&] {
        if (m_program->state() != QProcess::Running)
            return true; // it will not move any more
        if (!picture.hasExpired(kBetweenPictures.count()))
            return false;
        picture.start();
        if (const QImage next = screenPicture(); next != last) {
            last = next;
            still.start();
        }
        return still.hasExpired(kStill.count());
    };
    return QTest::qWaitFor(isStill, kPatience) && m_program->state() == QProcess::Running;
}

QByteArray TestProgram::settings() const
{
    const QDir folder(m_folder->filePath(QStringLiteral("config")));
    for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(folder.filePath(name + QStringLiteral("/settings.json")));
        if (file.open(QIODevice::ReadOnly))
            return file.readAll();
    }
    return {};
}

void TestProgram::cleansAHomeByTheKeyboardAlone()
{
    const QString space = QStringLiteral("space");
    const QString enter = QStringLiteral("Return");
    QVERIFY(waitForWindow());

    QVERIFY(press({space})); // the panel that asks for the home
    QVERIFY(press({enter})); // takes the one that it offers
    QTRY_VERIFY_WITH_TIMEOUT(settings().contains("VNTHomeFolderString"), kPatience);
    QVERIFY(press({enter})); // from the disk to the slices
    QVERIFY(press({enter})); // puts the tutorial away
    QVERIFY(press({enter})); // asks for the consent
    QVERIFY(QFile::exists(file(QStringLiteral(".cache/app/x"))));
    QVERIFY(press({QStringLiteral("Tab"), space})); // gives it
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(file(QStringLiteral(".cache/app"))), kPatience);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(file(QStringLiteral(".local/share/Trash/files/t"))),
                             kPatience);
    QVERIFY(waitUntilStill());
    QVERIFY(QFile::exists(file(QStringLiteral(".cache"))));
    QVERIFY(QFile::exists(file(QStringLiteral("Downloads/d")))); // was not chosen
    QVERIFY(QFile::exists(file(QStringLiteral("letter"))));

    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"),
                               {QStringLiteral("key"), QStringLiteral("alt+F4")}),
             0);
    QVERIFY(m_program->waitForFinished(kPatience));
    QCOMPARE(m_program->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program->exitCode(), 0);
    QVERIFY(settings().contains("\"VNTTotalCleanedSize\": 5100000"));
}

/// The second ends at once, and changes nothing. The window was minimised.
void TestProgram::showsItsWindowAtASecondStart()
{
    QVERIFY(waitForWindow());
    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("getactivewindow"),
                                                           QStringLiteral("windowminimize")}),
             0);
    QTRY_VERIFY_WITH_TIMEOUT(screenPicture() == m_empty, kPatience);
    const QHash<QString, QDateTime> before = everything();
    const std::unique_ptr<QProcess> second = startedProgram();
    QVERIFY(endsWith(*second, 0));
    QVERIFY(waitForWindow());
    QCOMPARE(m_program->state(), QProcess::Running);
    QCOMPARE(everything(), before);
}

/// The second says why it ends.
void TestProgram::letsNoSecondStartRunWhileItHangs()
{
    QVERIFY(waitForWindow());
    const QHash<QString, QDateTime> before = everything();
    QCOMPARE(::kill(pid_t(m_program->processId()), SIGSTOP), 0);
    const std::unique_ptr<QProcess> second = startedProgram();
    QByteArray told;
    const auto isTold = [&] {
        told += second->readAllStandardError();
        return told.contains("does not answer");
    };
    const bool wasTold = QTest::qWaitFor(isTold, kPatience);
    const bool isWindowStill = wasTold && waitUntilStill();
    // The window manager leaves the focus with the window that hangs, so the key goes to the
    // message itself. It is gone before the key is released, which the tool calls an error.
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                       QStringLiteral("--pid"), QString::number(second->processId()),
                       QStringLiteral("windowfocus"), QStringLiteral("key"),
                       QStringLiteral("Return")});
    const bool hasEnded = endsWith(*second, 1);
    ::kill(pid_t(m_program->processId()), SIGCONT);
    QVERIFY(wasTold);
    QVERIFY(isWindowStill);
    QVERIFY(hasEnded);
    QCOMPARE(everything(), before);
    QCOMPARE(m_program->state(), QProcess::Running);
}

/// Nothing that it leaves behind is in the way of the next one.
void TestProgram::makesWayWhenItIsKilled()
{
    QVERIFY(waitForWindow());
    m_program->kill();
    QVERIFY(m_program->waitForFinished(kPatience));
    QTRY_COMPARE_WITH_TIMEOUT(screenPicture(), m_empty, kPatience);
    m_program = startedProgram();
    QVERIFY(waitForWindow());
    const std::unique_ptr<QProcess> second = startedProgram();
    QVERIFY(endsWith(*second, 0));
    QCOMPARE(m_program->state(), QProcess::Running);
}

QTEST_MAIN(TestProgram)
#include "tst_Program.moc"
