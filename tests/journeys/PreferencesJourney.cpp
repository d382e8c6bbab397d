#include "tests/journeys/PreferencesJourney.h"

#include "platform/files/FileUrl.h"
#include "prefs/exclusions/ExcludedFilesModel.h"
#include "prefs/exclusions/ExcludedFilesView.h"
#include "prefs/exclusions/PreferencesWindowController.h"
#include "prefs/window/ColorWindow.h"
#include "prefs/window/WindowButton.h"
#include "prefs/window/WindowMenu.h"
#include "tests/support/page/SheetDriver.h"

#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>

namespace {

void clickAt(const QWidget &widget, QPoint position, Qt::KeyboardModifiers modifiers = {})
{
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, modifiers,
                      widget.mapTo(widget.window(), position));
}

/// Hands a view the events of a drag that ends on it. Returns whether the view took the drag.
bool dropOn(QWidget &view, const QMimeData &data)
{
    const QPointF place = QRectF(view.rect()).center();
    const Qt::DropActions offered = Qt::CopyAction | Qt::LinkAction;
    QDragEnterEvent enter(place.toPoint(), offered, &data, Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(&view, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(place, offered, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&view, &drop);
    return drop.isAccepted();
}

} // namespace

PreferencesWindowController &PreferencesJourney::controller()
{
    return m_application.preferencesWindowController();
}

QWidget &PreferencesJourney::window()
{
    return *controller().window();
}

ExcludedFilesView &PreferencesJourney::table()
{
    return *controller().tableView();
}

bool PreferencesJourney::open()
{
    const WindowButton &button = *m_journey.window().menuButton();
    clickAt(button, button.rect().center());
    const auto *menu = m_journey.window().findChild<WindowMenu *>();
    if (!menu || !QTest::qWaitFor([menu] { return menu->isVisible(); }))
        return false;
    const auto *command =
        m_journey.window().findChild<QAction *>(QStringLiteral("openPreferencesAction"));
    QAction *entry = menu->actions().value(menu->actions().indexOf(command));
    if (!entry)
        return false;
    clickAt(*menu, menu->actionGeometry(entry).center());
    const bool isGranted = m_application.defaults().hasInitializedFolders();
    return QTest::qWaitForWindowActive(&window()) && QTest::qWaitFor([this, isGranted] {
               return controller().homeFolder().isValid() == isGranted;
           });
}

bool PreferencesJourney::close()
{
    QTest::keyClick(window().windowHandle(), Qt::Key_Escape);
    return QTest::qWaitFor([this] { return !window().isVisible(); });
}

bool PreferencesJourney::clickButton(const char *name)
{
    const auto *button = window().findChild<QAbstractButton *>(QLatin1String(name));
    if (!QTest::qWaitFor([button] { return button->isVisible() && button->isEnabled(); }))
        return false;
    clickAt(*button, button->rect().center());
    return true;
}

bool PreferencesJourney::add(const QByteArray &path)
{
    const int rows = table().model()->rowCount();
    if (!clickButton("addButton"))
        return false;
    const auto nameEdit = [this] {
        const QWidget *panel = sheetPanel(window());
        return panel ? panel->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
    };
    if (!QTest::qWaitFor([&] { return nameEdit() && nameEdit()->isVisible(); }))
        return false;
    nameEdit()->setFocus();
    nameEdit()->selectAll();
    QTest::keyClicks(nameEdit(), QFile::decodeName(path));
    return pressSheetButton(window(), QStringLiteral("Add")) && waitForRows(rows + 1);
}

bool PreferencesJourney::drop(const QList<QByteArray> &paths)
{
    QByteArray list;
    for (const QByteArray &path : paths)
        list += FileUrl::fromPath(path, FileUrlKind::File).absoluteString() + "\r\n";
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), list);
    return dropOn(*table().viewport(), data);
}

bool PreferencesJourney::waitForRows(int count)
{
    return QTest::qWaitFor([this, count] { return table().model()->rowCount() == count; });
}

bool PreferencesJourney::waitForSizes()
{
    return QTest::qWaitFor([this] {
        return !texts(ExcludedFilesModel::SizeColumn).contains(QStringLiteral("Calculating..."));
    });
}

void PreferencesJourney::select(const QList<int> &rows)
{
    Qt::KeyboardModifiers modifiers;
    for (const int row : rows) {
        const QRect cell = table().visualRect(table().model()->index(row, 0));
        clickAt(*table().viewport(), cell.center(), modifiers);
        modifiers = Qt::ControlModifier;
    }
}

bool PreferencesJourney::pressRemove()
{
    return clickButton("removeButton");
}

void PreferencesJourney::pressKey(Qt::Key key)
{
    QTest::keyClick(window().windowHandle(), key);
}

QStringList PreferencesJourney::texts(int column)
{
    QStringList texts;
    for (int row = 0; row < table().model()->rowCount(); ++row)
        texts.append(table().model()->index(row, column).data().toString());
    return texts;
}

QPixmap PreferencesJourney::picture()
{
    return window().grab();
}
