#include "largefiles/preview/MediaView.h"
#include "largefiles/preview/PreviewCard.h"
#include "largefiles/preview/PreviewPanel.h"
#include "largefiles/sheet/QuickLookTableView.h"
#include "platform/system/HostSystemCalls.h"
#include "tests/support/disk/FolderAccess.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAbstractButton>
#include <QPainter>
#include <QPdfWriter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStringListModel>

/// A table of files and a panel that previews its selected rows.
class Files final : public QObject,
                    public QuickLookTableViewDelegate,
                    public PreviewPanelDataSource,
                    public PreviewPanelDelegate
{
    Q_OBJECT

public:
    explicit Files(const QStringList &names)
        : access(folder.path()),
          model(names),
          table(&window),
          panel({hostSystemCalls(), access}, &window)
    {
        window.resize(600, 400);
        table.setGeometry(0, 0, 400, 400);
        table.setModel(&model);
        table.setQlDelegate(this);
        panel.setDataSource(this);
        panel.setDelegate(this);
        connect(&table, &QuickLookTableView::selectionDidChange, this, [this] {
            if (panel.isVisible())
                panel.reloadData();
        });
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
        table.setFocus();
    }

    bool didPressSpacebarForTableView(QuickLookTableView &) override
    {
        if (panel.isVisible()) {
            panel.orderOut();
        } else {
            panel.makeKeyAndOrderFront();
            panel.reloadData();
        }
        return true;
    }
    int numberOfPreviewItemsInPreviewPanel(PreviewPanel &) override
    {
        return int(table.selectedRows().size());
    }
    std::optional<File> previewItemAtIndex(PreviewPanel &, int index) override
    {
        const QString name = model.stringList().at(table.selectedRows().at(index));
        return File(FileUrl::fromPath(folder.path(name.toUtf8()), FileUrlKind::File));
    }
    bool handleEvent(PreviewPanel &, QEvent &event) override
    {
        if (event.type() == QEvent::KeyPress)
            table.keyDown(static_cast<QKeyEvent *>(&event));
        return event.type() == QEvent::KeyPress;
    }

    void write(const QByteArray &name, const QByteArray &bytes) const
    {
        QFile file(QFile::decodeName(folder.path(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
    }
    /// What the panel shows once it has been read.
    PreviewContent shown()
    {
        if (!QTest::qWaitFor([this] { return panel.content().has_value(); }))
            qFatal("nothing was read");
        return *panel.content();
    }
    QString title() const { return panel.findChild<PreviewCard *>()->title(); }
    void press(int key) { QTest::keyClick(window.focusWidget(), Qt::Key(key)); }

    ScratchFolder folder;
    FolderAccess access;
    QWidget window;
    QStringListModel model;
    QuickLookTableView table;
    PreviewPanel panel;
};

class PreviewPanelTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spaceWithNothingSelectedShowsAnEmptyPanel()
    {
        Files files({QStringLiteral("a")});
        files.press(Qt::Key_Space);
        QVERIFY(files.panel.isVisible());
        QCOMPARE(files.panel.currentPreviewItemIndex(), -1);
        QCOMPARE(files.title(), QStringLiteral("Nothing is selected"));
    }

    void spaceHidesItWhereverTheFocusIs()
    {
        Files files({QStringLiteral("a")});
        files.press(Qt::Key_Space);
        QVERIFY(files.panel.hasFocus());
        files.press(Qt::Key_Space);
        QVERIFY(!files.panel.isVisible());
        QVERIFY(files.table.hasFocus());
        files.press(Qt::Key_Space);
        files.table.setFocus();
        files.press(Qt::Key_Space);
        QVERIFY(!files.panel.isVisible());
    }

    void aHeldSpaceBarCountsOnce()
    {
        Files files({QStringLiteral("a")});
        files.press(Qt::Key_Space);
        for (QWidget *const widget :
             {static_cast<QWidget *>(&files.panel), static_cast<QWidget *>(&files.table)}) {
            QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Space, {}, QStringLiteral(" "), true);
            QApplication::sendEvent(widget, &repeated);
            QVERIFY(files.panel.isVisible());
        }
    }

    void escapeClosesIt()
    {
        Files files({QStringLiteral("a")});
        files.press(Qt::Key_Space);
        files.press(Qt::Key_Escape);
        QVERIFY(!files.panel.isVisible());
    }

    void arrowsMoveTheSelectionOfTheTable()
    {
        Files files({QStringLiteral("a"), QStringLiteral("b")});
        files.write("b", "beta");
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        files.press(Qt::Key_Down);
        QCOMPARE(files.table.selectedRows(), QList<int>{1});
        QCOMPARE(files.shown().text, QStringLiteral("beta"));
    }

    void severalRowsArePagedThroughInTheirOrder()
    {
        Files files({QStringLiteral("a"), QStringLiteral("b")});
        files.table.selectAll();
        files.press(Qt::Key_Space);
        QCOMPARE(files.title(), QStringLiteral("a   1 of 2"));
        files.press(Qt::Key_Right);
        QCOMPARE(files.title(), QStringLiteral("b   2 of 2"));
        files.press(Qt::Key_Right);
        QCOMPARE(files.panel.currentPreviewItemIndex(), 1);
        files.press(Qt::Key_Left);
        QCOMPARE(files.panel.currentPreviewItemIndex(), 0);
    }

    void showsHowATextBegins()
    {
        Files files({QStringLiteral("log.txt")});
        files.write("log.txt", QByteArray("line\n").repeated(20'000));
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        const PreviewContent content = files.shown();
        QCOMPARE(content.kind, PreviewContent::Kind::Text);
        QCOMPARE(content.text.size(), kPreviewedText);
        QVERIFY(content.isCut);
    }

    void aTextIsReachedWithTheTabKey()
    {
        Files files({QStringLiteral("log.txt"), QStringLiteral("film.mkv")});
        files.write("log.txt", QByteArray("line\n").repeated(2000));
        files.write("film.mkv", QByteArray("\0\1\2\3", 4));
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        files.press(Qt::Key_Tab); // nothing is there yet
        QVERIFY(files.panel.hasFocus());
        files.shown();
        auto *const text = files.panel.findChild<QPlainTextEdit *>();
        QCOMPARE(text->horizontalScrollBar()->contextMenuPolicy(), Qt::PreventContextMenu);
        files.press(Qt::Key_Tab);
        QVERIFY(text->hasFocus());
        files.press(Qt::Key_Down);
        QCOMPARE(text->textCursor().blockNumber(), 1);
        QCOMPARE(files.table.selectedRows(), QList<int>{0});
        files.press(Qt::Key_Backtab);
        QVERIFY(files.panel.hasFocus());
        files.press(Qt::Key_Tab);
        files.table.selectRow(1); // the text goes
        QVERIFY(files.panel.hasFocus());
        files.table.selectRow(0);
        files.shown();
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Escape}) {
            files.press(Qt::Key_Tab);
            QVERIFY(text->hasFocus());
            files.press(key);
            QVERIFY(!files.panel.isVisible());
            QVERIFY(files.table.hasFocus());
            files.press(Qt::Key_Space);
            files.shown();
        }
    }

    void showsTheFactsOfEverythingElse()
    {
        Files files({QStringLiteral("film.mkv"), QStringLiteral("gone")});
        files.write("film.mkv", QByteArray("\0\1\2\3", 4));
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        QCOMPARE(files.shown().kind, PreviewContent::Kind::Facts);
        QCOMPARE(files.shown().size, 4);
        QVERIFY(!files.shown().image.isNull());
        files.press(Qt::Key_Down);
        QCOMPARE(files.shown().kind, PreviewContent::Kind::Missing);
    }

    void playsAFilmUntilItIsNoLongerShown_data()
    {
        QTest::addColumn<int>("leave");
        QTest::newRow("closed") << int(Qt::Key_Space);
        QTest::newRow("escaped from") << int(Qt::Key_Escape);
        QTest::newRow("another file") << int(Qt::Key_Down);
    }
    void playsAFilmUntilItIsNoLongerShown()
    {
        QFETCH(int, leave);
        Files files({QStringLiteral("film.mp4"), QStringLiteral("b.txt")});
        files.write("film.mp4", QByteArray("\0\1\2\3", 4));
        files.write("b.txt", "beta");
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        files.shown();
        const MediaView &media = *files.panel.findChild<MediaView *>();
        const bool hasPlayer = Player().isInstalled();
        QCOMPARE(media.isVisible(), hasPlayer);
        QVERIFY(!media.isOpen());
        files.press(Qt::Key_P);
        QCOMPARE(media.isOpen(), hasPlayer);
        files.press(leave);
        QVERIFY(!media.isOpen());
        QVERIFY(!media.isVisible());
    }

    void staysUsableWithAFilmThatCannotBePlayed()
    {
        Files files({QStringLiteral("film.mp4"), QStringLiteral("b.txt")});
        files.write("film.mp4", QByteArray("\0\1\2\3", 4));
        files.write("b.txt", "beta");
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        files.shown();
        const MediaView &media = *files.panel.findChild<MediaView *>();
        QKeyEvent mediaKey(QEvent::KeyPress, Qt::Key_MediaTogglePlayPause, {});
        QApplication::sendEvent(&files.panel, &mediaKey);
        QCOMPARE(media.isOpen(), media.isVisible());
        if (media.isVisible()) // built with a player
            QTRY_COMPARE_WITH_TIMEOUT(media.message(), QStringLiteral("This file cannot be played"),
                                      20'000);
        files.press(Qt::Key_Down);
        QCOMPARE(files.shown().text, QStringLiteral("beta"));
        files.press(Qt::Key_P); // nothing to play
        QVERIFY(!media.isOpen());
        files.press(Qt::Key_Space);
        QVERIFY(!files.panel.isVisible());
    }

    void showsAPictureAsLargeAsThereIsRoom()
    {
        Files files({QStringLiteral("wide.png")});
        QImage picture(3000, 1000, QImage::Format_RGB32);
        picture.fill(Qt::darkGreen);
        QVERIFY(picture.save(QFile::decodeName(files.folder.path("wide.png"))));
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        QCOMPARE(files.shown().kind, PreviewContent::Kind::Picture);
        const QSize room = files.panel.findChild<PreviewCard *>()->contentSize();
        QCOMPARE(files.shown().image.width(), room.width());
        const QImage shot = files.window.grab().toImage();
        QCOMPARE(shot.pixelColor(shot.width() / 2, shot.height() / 2), QColor(Qt::darkGreen));
    }

    void turnsThePagesOfADocument()
    {
        Files files({QStringLiteral("two.pdf")});
        QPdfWriter writer(QFile::decodeName(files.folder.path("two.pdf")));
        QPainter painter(&writer);
        painter.fillRect(0, 0, writer.width(), writer.height(), Qt::red);
        writer.newPage();
        painter.fillRect(0, 0, writer.width(), writer.height(), Qt::blue);
        painter.end();
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        if (files.shown().pageCount == 0) { // built without documents
            QVERIFY(files.shown().image.isNull());
            return;
        }
        const auto colour = [&] {
            const QImage image = files.shown().image;
            return image.pixelColor(image.rect().center());
        };
        QCOMPARE(colour(), QColor(Qt::red));
        for (int press = 0; press < 2; ++press) { // the last page is the last
            files.press(Qt::Key_PageDown);
            QCOMPARE(colour(), QColor(Qt::blue));
        }
        files.press(Qt::Key_PageUp);
        QCOMPARE(colour(), QColor(Qt::red));
        QCOMPARE(files.table.selectedRows(), QList<int>{0});
    }

    void turnsOnBeforeAPageHasBeenRead()
    {
        Files files({QStringLiteral("three.pdf"), QStringLiteral("b"), QStringLiteral("c")});
        QPdfWriter writer(QFile::decodeName(files.folder.path("three.pdf")));
        QPainter painter(&writer);
        for (const Qt::GlobalColor colour : {Qt::red, Qt::green, Qt::blue}) {
            if (colour != Qt::red)
                writer.newPage();
            painter.fillRect(0, 0, writer.width(), writer.height(), colour);
        }
        painter.end();
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        for (int round = 0; round < 2; ++round) { // nothing known yet; the page count known
            files.press(Qt::Key_PageDown);
            files.press(Qt::Key_PageDown);
            QCOMPARE(files.table.selectedRows(), QList<int>{0});
            const PreviewContent content = files.shown();
            if (content.pageCount == 0) // built without documents
                return;
            const QColor colour = content.image.pixelColor(content.image.rect().center());
            QCOMPARE(colour, QColor(round == 0 ? Qt::red : Qt::blue));
        }
    }

    void keepsTheMouseFromWhatItCovers()
    {
        Files files({QStringLiteral("a"), QStringLiteral("b")});
        files.table.selectRow(1);
        files.press(Qt::Key_Space);
        const QPoint onFirstRow = files.table.mapTo(&files.window, QPoint(60, 20));
        QTest::mouseClick(files.window.windowHandle(), Qt::LeftButton, {}, onFirstRow);
        QCOMPARE(files.table.selectedRows(), QList<int>{1});
        QCOMPARE(files.panel.geometry().bottomRight(), files.window.rect().bottomRight());
        QTest::mouseClick(files.panel.findChild<QAbstractButton *>(), Qt::LeftButton);
        QVERIFY(!files.panel.isVisible());
        QVERIFY(files.table.hasFocus());
    }

    void givesUpWhatIsNoLongerWanted()
    {
        Files files({QStringLiteral("a"), QStringLiteral("b")});
        files.write("a", "alpha");
        files.write("b", "beta");
        files.table.selectRow(0);
        files.press(Qt::Key_Space);
        files.press(Qt::Key_Down);
        files.press(Qt::Key_Up);
        files.press(Qt::Key_Down);
        QCOMPARE(files.shown().text, QStringLiteral("beta"));
        QCOMPARE(files.title(), QStringLiteral("b"));
        files.press(Qt::Key_Space);
        QVERIFY(!files.panel.content());
    }
};

VANTOR_GUI_TEST_MAIN(PreviewPanelTest)
#include "tst_PreviewPanel.moc"
