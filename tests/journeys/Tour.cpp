// Takes the real window through the whole job on a made home folder, as a user would, and says what
// was measured, freed and left.

#include "app/Appearance.h"
#include "app/DiskInfoViewController.h"
#include "platform/ByteCount.h"
#include "platform/Sheet.h"
#include "platform/ViewAlpha.h"
#include "prefs/ColorWindow.h"
#include "prefs/Popover.h"
#include "tests/journeys/PreferencesJourney.h"
#include "tests/support/Journey.h"
#include "tests/support/SampleHome.h"
#include "tests/support/ScratchEnvironment.h"
#include "widgets/TextField.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QPainter>
#include <QPointer>
#include <QTest>
#include <QTextBrowser>
#include <QTextStream>
#include <algorithm>

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

const QList<QByteArray> kExcluded{SampleHome::kKeep, "Documents/Thesis.odt",
                                  "Library/Caches/no text \xff\xfe", "Pictures/2014"};

bool isExcluded(const QByteArray &path)
{
    return std::ranges::any_of(kExcluded, [&path](const QByteArray &excluded) {
        return path == excluded || path.startsWith(excluded + '/');
    });
}

/// All that was made, but for what the cleaned slices take.
QList<QByteArray> pathsToKeep(const SampleHome &home)
{
    QList<QByteArray> paths = home.paths();
    for (const SliceKind kind : kCleaned) {
        for (const QByteArray &path : home.pathsCleanedWith(indexOf(kind))) {
            if (!isExcluded(path))
                paths.removeOne(path);
        }
    }
    return paths;
}

/// The window as it is seen with a small window above it.
QPixmap pictureWith(QWidget &window, QWidget &above)
{
    QPixmap picture = window.grab();
    QPainter painter(&picture);
    painter.translate(above.mapToGlobal(QPoint()) - window.mapToGlobal(QPoint()));
    if (!above.mask().isEmpty())
        painter.setClipRegion(above.mask());
    painter.drawPixmap(0, 0, above.grab());
    return picture;
}

class Tour final
{
public:
    Tour(AppDelegate &application, Journey &journey, const SampleHome &home,
         const QString &pictures)
        : m_application(application), m_journey(journey), m_home(home), m_pictures(pictures)
    {
    }

    bool take()
    {
        return step("grant the home folder", grant()) && step("see the disk", seeDisk()) &&
               step("measure the slices", measure()) && step("read the tutorial", readTutorial()) &&
               step("exclude what must stay", exclude()) && step("choose Downloads", choose()) &&
               step("ask what it is", readPopover()) && step("clean", clean()) &&
               step("see what was freed", seeResult());
    }

private:
    bool step(const char *name, bool isDone)
    {
        out() << (isDone ? "done: " : "FAILED: ") << name << Qt::endl;
        if (!isDone)
            takePicture(QStringLiteral("failed"));
        return isDone;
    }

    void takePicture(const QString &name) { savePicture(name, m_journey.picture()); }

    void savePicture(const QString &name, const QPixmap &picture)
    {
        if (m_pictures.isEmpty())
            return;
        const QString file = QDir(m_pictures).filePath(name + QStringLiteral(".png"));
        picture.save(file);
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
        if (!m_journey.waitForSheet())
            return false;
        takePicture(QStringLiteral("3-tutorial"));
        QTest::keyClick(sheetPanel(m_journey.window())->findChild<QTextBrowser *>(), Qt::Key_End);
        takePicture(QStringLiteral("3-tutorial-end"));
        return m_journey.declineTutorial();
    }

    bool exclude()
    {
        PreferencesJourney preferences(m_application, m_journey);
        QList<QByteArray> paths;
        for (const QByteArray &path : kExcluded)
            paths.append(m_home.path(path));
        if (!preferences.open() || !preferences.add(paths.takeFirst()) ||
            !preferences.drop(paths) ||
            !preferences.waitForRows(static_cast<int>(kExcluded.size())) ||
            !preferences.waitForSizes())
            return false;
        preferences.select({0});
        savePicture(QStringLiteral("preferences"), preferences.picture());
        return preferences.close();
    }

    bool choose()
    {
        if (!m_journey.clickSlice(SliceKind::Downloads) ||
            !m_journey.hoverSlice(SliceKind::Downloads))
            return false;
        takePicture(QStringLiteral("4-slices"));
        return true;
    }

    bool readPopover()
    {
        QPointer<Popover> popover = m_journey.openPopover();
        if (!popover)
            return false;
        savePicture(QStringLiteral("popover"), pictureWith(m_journey.window(), *popover));
        QTest::keyClick(popover->windowHandle(), Qt::Key_Escape);
        return QTest::qWaitFor([&] { return !popover; });
    }

    bool clean()
    {
        m_before = bytesPresent(m_home);
        return m_journey.pressClean(QStringLiteral("Delete Files"));
    }

    bool seeResult()
    {
        FinalViewController &page = m_journey.controller().finalPage();
        if (!m_journey.waitForPage(page) ||
            !QTest::qWaitFor([&] { return alphaValue(*page.sizeLabel()) == 1; }))
            return false;
        takePicture(QStringLiteral("5-result"));
        const qint64 after = bytesPresent(m_home);
        out() << "      shown as freed: " << page.sizeLabel()->text() << Qt::endl
              << "      found to be gone: " << stringFromByteCount(m_before - after) << Qt::endl
              << "      left in the home: " << stringFromByteCount(after) << Qt::endl;
        return m_home.presentPaths() == pathsToKeep(m_home);
    }

    AppDelegate &m_application;
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
    const bool isDone = Tour(delegate, journey, home, pictures).take();
    delegate.applicationWillTerminate();
    return isDone ? 0 : 1;
}
