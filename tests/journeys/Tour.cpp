// Takes the real window through the whole job on a made home folder, of the kind that this system
// has, as a user would, and says what was measured, freed and left.

#include "app/Appearance.h"
#include "app/pages/DiskInfoViewController.h"
#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/LargeFilesWindowController.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/base/ByteCount.h"
#include "platform/look/ViewAlpha.h"
#include "platform/sheet/Sheet.h"
#include "platform/system/SystemHomes.h"
#include "prefs/popover/Popover.h"
#include "prefs/window/ColorWindow.h"
#include "tests/journeys/PreferencesJourney.h"
#include "tests/support/page/Journey.h"
#include "tests/support/page/SampleHome.h"
#include "tests/support/run/ScratchEnvironment.h"
#include "widgets/TextField.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

const QList<SliceKind> kCleaned{SliceKind::Trash, SliceKind::Cache, SliceKind::AppLogs,
                                SliceKind::OldIos, SliceKind::Downloads};

// Rows of the list of large files.
constexpr int kPanoramaRow = 4;
constexpr std::array kPickedRows{1, 2};

qint64 bytesPresent(const SampleHome &home)
{
    qint64 bytes = 0;
    for (const QByteArray &path : home.presentPaths())
        bytes += home.sizeOf(path);
    return bytes;
}

QList<QByteArray> excludedIn(const SampleHome &home)
{
    return {SampleHome::kKeep, "Documents/Thesis.odt",
            home.locationsOf(indexOf(SliceKind::Cache)).constFirst() + "/no text \xff\xfe",
            "Pictures/2014"};
}

bool isExcluded(const SampleHome &home, const QByteArray &path)
{
    return std::ranges::any_of(excludedIn(home), [&path](const QByteArray &excluded) {
        return path == excluded || path.startsWith(excluded + '/');
    });
}

/// All that was made, except what the cleaned slices take.
QList<QByteArray> pathsToKeep(const SampleHome &home)
{
    QList<QByteArray> paths = home.paths();
    for (const SliceKind kind : kCleaned) {
        for (const QByteArray &path : home.pathsCleanedWith(indexOf(kind))) {
            if (!isExcluded(home, path))
                paths.removeOne(path);
        }
    }
    for (const int row : kPickedRows)
        paths.removeOne(home.largeFiles()[row]);
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

/// A picture to look at: hills in the evening.
QImage paintedPanorama()
{
    QImage picture(2400, 1000, QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 700);
    sky.setColorAt(0, QColor(70, 110, 190));
    sky.setColorAt(1, QColor(250, 200, 150));
    painter.fillRect(picture.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 240, 200));
    painter.drawEllipse(QPoint(1700, 480), 90, 90);
    for (int ridge = 0; ridge < 4; ++ridge) {
        QPainterPath hills(QPointF(0, 1000));
        for (int x = 0; x <= 2400; x += 20)
            hills.lineTo(x, 520 + ridge * 110 +
                                70 * std::sin(x / (260.0 - 35 * ridge) + ridge * 2) +
                                18 * std::sin(x / 47.0 + ridge));
        hills.lineTo(2400, 1000);
        painter.fillPath(hills, QColor(96 - ridge * 20, 96 - ridge * 16, 130 - ridge * 24));
    }
    return picture;
}

/// Gives one of the made files, which are all empty pages, something to see. It keeps its size.
bool paintPanorama(const SampleHome &home)
{
    const QByteArray path = home.path(home.largeFiles()[kPanoramaRow]);
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadWrite) && paintedPanorama().save(&file, "PNG");
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
               step("exclude what must stay", exclude()) &&
               step("find large files", findLargeFiles()) && step("look into them", lookInside()) &&
               step("pick two", pickTwo()) && step("choose Downloads", choose()) &&
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
        for (const QByteArray &path : excludedIn(m_home))
            paths.append(m_home.path(path));
        const auto count = static_cast<int>(paths.size());
        if (!preferences.open() || !preferences.add(paths.takeFirst()) ||
            !preferences.drop(paths) || !preferences.waitForRows(count) ||
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
        takePicture(QStringLiteral("7-slices"));
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

    bool findLargeFiles()
    {
        if (!m_journey.openLargeFiles() || !m_journey.waitForSearch())
            return false;
        LargeFilesWindowController &sheet = m_journey.largeFiles();
        for (int row = 0; row < kPanoramaRow; ++row)
            m_journey.press(Qt::Key_Down);
        QSignalSpy shown(&sheet, &LargeFilesWindowController::thumbnailShown);
        m_journey.press(Qt::Key_Down);
        if (!QTest::qWaitFor([&] { return !shown.isEmpty(); }))
            return false;
        takePicture(QStringLiteral("4-large-files"));
        return sheet.array().rowCount() == m_home.largeFiles().size();
    }

    bool lookInside()
    {
        m_journey.press(Qt::Key_Space);
        PreviewPanel *const panel = m_journey.largeFiles().previewPanel();
        if (!panel || !QTest::qWaitFor([&] { return panel->content().has_value(); }))
            return false;
        takePicture(QStringLiteral("5-preview"));
        m_journey.press(Qt::Key_Space);
        return panel->isHidden();
    }

    bool pickTwo()
    {
        LargeFilesWindowController &sheet = m_journey.largeFiles();
        for (const int row : kPickedRows) {
            if (!m_journey.clickSizeButton(row))
                return false;
        }
        takePicture(QStringLiteral("6-picked"));
        out() << "      picked: " << sheet.sizeString() << Qt::endl;
        return m_journey.pressInLargeFiles(*sheet.addButton());
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
        takePicture(QStringLiteral("8-result"));
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

struct Wishes
{
    QString pictures; ///< the folder for them; none without
    HomeKind home = homesHaveALibrary() ? HomeKind::Library : HomeKind::Freedesktop;
};

Wishes wishesOf(const QApplication &application)
{
    QCommandLineParser parser;
    const QCommandLineOption pictures(QStringLiteral("pictures"),
                                      QStringLiteral("Save a picture of every page here."),
                                      QStringLiteral("folder"));
    const QCommandLineOption library(
        QStringLiteral("library"),
        QStringLiteral("Go through a home with a Library, whatever homes this system has."));
    parser.addOptions({pictures, library});
    parser.addHelpOption();
    parser.process(application);
    Wishes wishes;
    wishes.pictures = parser.value(pictures);
    if (!wishes.pictures.isEmpty())
        QDir().mkpath(wishes.pictures);
    if (parser.isSet(library))
        wishes.home = HomeKind::Library;
    return wishes;
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    QApplication application(argc, argv);
    setUpAppearance(application);
    const Wishes wishes = wishesOf(application);

    const ScratchFolder place;
    const SampleHome home(place, 1, wishes.home);
    if (!paintPanorama(home))
        return 1;
    AppDelegate delegate({.realHomeDirectory = [&home] { return home.path(); }});
    delegate.applicationDidFinishLaunching();
    Journey journey(delegate);
    const bool isDone = Tour(delegate, journey, home, wishes.pictures).take();
    delegate.applicationWillTerminate();
    return isDone ? 0 : 1;
}
