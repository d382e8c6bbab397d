// Takes the real window through the whole job on a made home folder, as a user would, and says what
// was measured, freed and left.

#include "app/Appearance.h"
#include "app/DiskInfoViewController.h"
#include "platform/ByteCount.h"
#include "platform/Sheet.h"
#include "prefs/ColorWindow.h"
#include "tests/support/Journey.h"
#include "tests/support/SampleHome.h"
#include "tests/support/ScratchEnvironment.h"
#include "widgets/TextField.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTest>
#include <QTextStream>

namespace {

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

const QList<SliceKind> kCleaned{SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs,
                                SliceKind::OldIos, SliceKind::Downloads};

qint64 bytesPresent(const SampleHome &home)
{
    qint64 bytes = 0;
    for (const QByteArray &path : home.presentPaths())
        bytes += home.sizeOf(path);
    return bytes;
}

/// All that was made, but for what the cleaned slices take.
QList<QByteArray> pathsToKeep(const SampleHome &home)
{
    QList<QByteArray> paths = home.paths();
    for (const SliceKind kind : kCleaned) {
        for (const QByteArray &path : home.pathsCleanedWith(indexOf(kind)))
            paths.removeOne(path);
    }
    return paths;
}

class Tour final
{
public:
    Tour(Journey &journey, const SampleHome &home, const QString &pictures)
        : m_journey(journey), m_home(home), m_pictures(pictures)
    {
    }

    bool take()
    {
        return step("grant the home folder", grant()) && step("see the disk", seeDisk())
               && step("measure the slices", measure())
               && step("read the tutorial", readTutorial()) && step("choose Downloads", choose())
               && step("clean", clean()) && step("see what was freed", seeResult());
    }

private:
    bool step(const char *name, bool isDone)
    {
        out() << (isDone ? "done: " : "FAILED: ") << name << Qt::endl;
        if (!isDone)
            takePicture(QStringLiteral("failed"));
        return isDone;
    }

    void takePicture(const QString &name)
    {
        if (m_pictures.isEmpty())
            return;
        const QString file = QDir(m_pictures).filePath(name + QStringLiteral(".png"));
        m_journey.picture().save(file);
        out() << "      picture: " << file << Qt::endl;
    }

    bool grant()
    {
        if (!m_journey.waitForPage(m_journey.controller().folderSelectPage()))
            return false;
        takePicture(QStringLiteral("1-home-folder"));
        return m_journey.chooseHome(m_home.path());
    }

    bool seeDisk()
    {
        if (!m_journey.waitForPage(m_journey.controller().diskInfoPage()))
            return false;
        takePicture(QStringLiteral("2-disk"));
        return m_journey.pressStart();
    }

    bool measure()
    {
        FreeSpaceViewController &page = m_journey.controller().freeSpacePage();
        if (!m_journey.waitForPage(page) || !m_journey.waitForMeasures())
            return false;
        for (const auto &record : page.selection().records())
            out() << "      " << record->name() << ": "
                  << record->fileSizeString().value_or(QString()) << Qt::endl;
        return true;
    }

    bool readTutorial()
    {
        if (!QTest::qWaitFor([this] { return hasSheet(m_journey.window()); }))
            return false;
        takePicture(QStringLiteral("3-tutorial"));
        return m_journey.declineTutorial();
    }

    bool choose()
    {
        if (!m_journey.clickSlice(SliceKind::Downloads) || !m_journey.hoverSlice(SliceKind::Downloads))
            return false;
        takePicture(QStringLiteral("4-slices"));
        return true;
    }

    bool clean()
    {
        m_before = bytesPresent(m_home);
        return m_journey.pressClean(QStringLiteral("Delete Files"));
    }

    bool seeResult()
    {
        FinalViewController &page = m_journey.controller().finalPage();
        if (!m_journey.waitForPage(page))
            return false;
        takePicture(QStringLiteral("5-result"));
        const qint64 after = bytesPresent(m_home);
        out() << "      shown as freed: " << page.sizeLabel()->text() << Qt::endl
              << "      found to be gone: " << stringFromByteCount(m_before - after) << Qt::endl
              << "      left in the home: " << stringFromByteCount(after) << Qt::endl;
        return m_home.presentPaths() == pathsToKeep(m_home);
    }

    Journey &m_journey;
    const SampleHome &m_home;
    QString m_pictures;
    qint64 m_before = 0;
};

QString picturesFolder(const QApplication &application)
{
    QCommandLineParser parser;
    const QCommandLineOption pictures(QStringLiteral("pictures"),
                                      QStringLiteral("Save a picture of every page here."),
                                      QStringLiteral("folder"));
    parser.addOption(pictures);
    parser.addHelpOption();
    parser.process(application);
    const QString folder = parser.value(pictures);
    if (!folder.isEmpty())
        QDir().mkpath(folder);
    return folder;
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    QApplication application(argc, argv);
    setUpAppearance(application);
    const QString pictures = picturesFolder(application);

    const ScratchFolder place;
    const SampleHome home(place);
    AppDelegate delegate({.realHomeDirectory = [&home] { return home.path(); }});
    delegate.applicationDidFinishLaunching();
    Journey journey(delegate);
    const bool isDone = Tour(journey, home, pictures).take();
    delegate.applicationWillTerminate();
    return isDone ? 0 : 1;
}
