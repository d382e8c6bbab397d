#include "prefs/exclusions/ExcludedFilesView.h"

#include "platform/files/FileUrl.h"
#include "platform/look/Fonts.h"
#include "prefs/exclusions/ExcludedFileDelegate.h"
#include "prefs/exclusions/ExcludedFilesModel.h"
#include "widgets/ThinScrollBar.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <algorithm>

namespace {

constexpr QByteArrayView kOnThisMachine("file://localhost/");

const QString kUriList = QStringLiteral("text/uri-list");
constexpr int kHintSize = 15;
constexpr QColor kHintColour(150, 156, 163);
constexpr double kTargetRadius = 5;

} // namespace

ExcludedFilesView::ExcludedFilesView(QWidget *parent) : QTableView(parent)
{
    setItemDelegate(new ExcludedFileDelegate(this));
    setVerticalScrollBar(new ThinScrollBar(Qt::Vertical, this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setShowGrid(false);
    setTabKeyNavigation(false);
    setFrameShape(QFrame::NoFrame);
    // The delegate paints what is selected.
    QPalette colours = palette();
    colours.setColor(QPalette::Highlight, Qt::transparent);
    setPalette(colours);
    setDragDropMode(QAbstractItemView::DropOnly);
    setAccessibleName(tr("Excluded files and folders"));
    horizontalHeader()->hide();
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void ExcludedFilesView::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    horizontalHeader()->setSectionResizeMode(ExcludedFilesModel::PathColumn, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(ExcludedFilesModel::SizeColumn,
                                             QHeaderView::ResizeToContents);
}

QList<int> ExcludedFilesView::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        rows.append(index.row());
    return rows;
}

void ExcludedFilesView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Delete) || event->key() == Qt::Key_Backspace)
        Q_EMIT removalRequested();
    else
        QTableView::keyPressEvent(event);
}

bool ExcludedFilesView::takes(const QMimeData &offered) const
{
    const QList<QByteArray> paths = pathsOfUriList(offered.data(kUriList));
    return std::any_of(paths.begin(), paths.end(),
                       [this](const QByteArray &path) { return !m_rule || m_rule(path); });
}

void ExcludedFilesView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!takes(*event->mimeData()))
        return;
    setDropTarget(true);
    event->setDropAction(Qt::LinkAction); // nothing is moved or copied
    event->accept();
}

void ExcludedFilesView::dragMoveEvent(QDragMoveEvent *event)
{
    event->setDropAction(Qt::LinkAction);
    event->accept();
}

void ExcludedFilesView::dragLeaveEvent(QDragLeaveEvent *)
{
    setDropTarget(false);
}

void ExcludedFilesView::dropEvent(QDropEvent *event)
{
    setDropTarget(false);
    event->setDropAction(Qt::LinkAction);
    event->accept();
    Q_EMIT pathsDropped(pathsOfUriList(event->mimeData()->data(kUriList)));
}

void ExcludedFilesView::setDropTarget(bool isDropTarget)
{
    m_isDropTarget = isDropTarget;
    viewport()->update();
}

void ExcludedFilesView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    if (model() != nullptr && model()->rowCount() == 0)
        paintHint(painter);
    if (m_isDropTarget) {
        painter.setPen(QPen(QGuiApplication::palette().color(QPalette::Highlight), 2));
        painter.drawRoundedRect(viewport()->rect().adjusted(1, 1, -1, -1), kTargetRadius,
                                kTargetRadius);
    }
}

void ExcludedFilesView::paintHint(QPainter &painter) const
{
    painter.setFont(interfaceFont(Typeface::Light, kHintSize));
    painter.setPen(kHintColour);
    painter.drawText(viewport()->rect(), Qt::AlignCenter,
                     tr("Nothing is excluded.\nDrop files and folders here, or press Add."));
}

namespace {

/// Some programs do not escape letters beyond ASCII: they give the bytes of the name as they are.
QByteArray escaped(const QByteArray &text)
{
    QByteArray result;
    for (const char byte : text) {
        const bool isAscii = static_cast<unsigned char>(byte) < 0x80;
        result += isAscii ? QByteArray(1, byte) : '%' + QByteArray(1, byte).toHex().toUpper();
    }
    return result;
}

} // namespace

QList<QByteArray> pathsOfUriList(const QByteArray &uriList)
{
    QList<QByteArray> paths;
    for (const QByteArray &line : uriList.split('\n')) {
        QByteArray text = escaped(line.trimmed());
        if (text.startsWith(kOnThisMachine))
            text.replace(0, kOnThisMachine.size(), "file:///");
        // Not through QUrl: it would change the bytes of names that are no UTF-8.
        if (const auto url = FileUrl::fromString(QString::fromLatin1(text)))
            paths.append(url->path());
    }
    return paths;
}
