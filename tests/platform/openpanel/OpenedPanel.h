#pragma once

#include "platform/look/PanelButton.h"
#include "platform/look/WrappedLabel.h"
#include "platform/openpanel/OpenPanel.h"
#include "platform/openpanel/OpenPanelView.h"
#include "tests/support/page/SheetHost.h"

#include <QDir>
#include <QToolButton>
#include <QTreeView>

/// A panel up over a window, in a scratch home with folders "Movies" and "Music" and a file
/// "notes.txt".
struct OpenedPanel
{
    explicit OpenedPanel(const OpenPanel &options)
    {
        QDir home = QDir::home();
        home.mkpath(QStringLiteral("Movies/Old"));
        home.mkpath(QStringLiteral("Music"));
        QFile(home.filePath(QStringLiteral("notes.txt"))).open(QIODevice::WriteOnly);
        presentOpenPanel(host.window, options, [this](std::optional<QByteArray> path) {
            isOver = true;
            answer = path;
        });
        view = qobject_cast<OpenPanelView *>(sheetPanel(host.window));
        QTRY_VERIFY(view->findChild<QTreeView *>(QStringLiteral("treeView")));
        list = view->findChild<QTreeView *>(QStringLiteral("treeView"));
        name = view->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    }

    QModelIndex item(const char *itemName) const
    {
        const QModelIndex root = list->rootIndex();
        for (int row = 0; row < list->model()->rowCount(root); ++row) {
            const QModelIndex index = list->model()->index(row, 0, root);
            if (index.data().toString() == QLatin1String(itemName))
                return index;
        }
        return {};
    }

    void select(const char *itemName) const
    {
        QTRY_VERIFY(item(itemName).isValid());
        const QPoint place = list->visualRect(item(itemName)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    }

    void type(const QString &text) const
    {
        name->setFocus();
        name->selectAll();
        QTest::keyClicks(name, text);
    }

    /// Waits until the list shows all that the folder holds, and is sorted.
    void waitForItems() const
    {
        QTRY_COMPARE(list->model()->rowCount(list->rootIndex()), 3);
        QTRY_COMPARE(item("Movies").row(), 0);
    }

    /// Clicks as the window system does: into the window.
    void click(QWidget &target)
    {
        const QPoint place = target.mapTo(&host.window, target.rect().center());
        QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, place);
    }

    void press(Qt::Key key) { QTest::keyClick(host.window.windowHandle(), key); }

    PanelButton *button(const char *title) const
    {
        for (PanelButton *made : view->findChildren<PanelButton *>()) {
            if (made->text() == QLatin1String(title))
                return made;
        }
        qFatal("the panel has no button %s", title);
    }

    QString message() const { return view->findChildren<WrappedLabel *>().constLast()->text(); }

    SheetHost host;
    OpenPanelView *view = nullptr;
    QTreeView *list = nullptr;
    QLineEdit *name = nullptr;
    bool isOver = false;
    std::optional<QByteArray> answer;
};

/// A path below the home folder, in raw bytes.
inline QByteArray inHome(const char *relative)
{
    return QFile::encodeName(QDir::homePath()) + relative;
}
