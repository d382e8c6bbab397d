#include "largefiles/sheet/QuickLookTableView.h"

#include "platform/look/Fonts.h"
#include "widgets/ThinScrollBar.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <algorithm>

namespace {

constexpr int kRowHeight = 46;
constexpr int kEmptyTextSize = 15;
constexpr QColor kEmptyTextColour(150, 156, 163);

bool isEnter(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

QuickLookTableView::QuickLookTableView(QWidget *parent) : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setUpLook();
}

void QuickLookTableView::setUpLook()
{
    setVerticalScrollBar(new ThinScrollBar(Qt::Vertical, this));
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    // The delegate paints what is selected.
    QPalette colours = palette();
    colours.setColor(QPalette::Highlight, Qt::transparent);
    setPalette(colours);
    horizontalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // One height for all rows, so that no row is ever measured.
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(kRowHeight);
    verticalHeader()->setDefaultSectionSize(kRowHeight);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
}

void QuickLookTableView::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &QuickLookTableView::selectionDidChange);
    // A reset clears the selection without a signal.
    connect(model, &QAbstractItemModel::modelReset, this, &QuickLookTableView::selectionDidChange);
}

QList<int> QuickLookTableView::selectedRows() const
{
    QList<int> rows;
    if (selectionModel()) {
        // Not row by row: that would ask the model about each of very many rows.
        for (const QItemSelectionRange &range : selectionModel()->selection()) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                rows.append(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

void QuickLookTableView::setEmptyText(const QString &text)
{
    m_emptyText = text;
    viewport()->update();
}

void QuickLookTableView::keyPressEvent(QKeyEvent *event)
{
    QuickLookTableViewDelegate *const delegate = qlDelegate();
    const bool isSpace = event->text() == QLatin1String(" ");
    if (delegate && isSpace && event->isAutoRepeat())
        return event->accept(); // a held key would open and close what it shows
    if (delegate && isSpace && delegate->didPressSpacebarForTableView(*this))
        return event->accept();
    if (isEnter(*event) && !selectedRows().isEmpty()) {
        event->accept();
        Q_EMIT togglePressed();
        return;
    }
    if (event->key() == Qt::Key_Down && selectedRows().isEmpty() && model() != nullptr &&
        model()->rowCount() > 0) {
        event->accept();
        selectRow(0); // whichever row was current when the list filled
        return;
    }
    QTableView::keyPressEvent(event);
}

/// The right button asks for the menu; the selection stays.
void QuickLookTableView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton)
        event->accept();
    else
        QTableView::mousePressEvent(event);
}

QMenu *QuickLookTableView::menuForEvent(QPoint position)
{
    const QModelIndex row = indexAt(position);
    if (!row.isValid() || !m_menu)
        return nullptr;
    // A search may insert rows while the menu is up.
    m_menu->actions().constFirst()->setData(QVariant::fromValue(QPersistentModelIndex(row)));
    return m_menu;
}

void QuickLookTableView::contextMenuEvent(QContextMenuEvent *event)
{
    QPoint position = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        if (!currentIndex().isValid())
            return;
        scrollTo(currentIndex());
        position = visualRect(currentIndex()).center();
    }
    if (QMenu *const menu = menuForEvent(position))
        menu->popup(viewport()->mapToGlobal(position));
}

void QuickLookTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_emptyText.isEmpty() || (model() != nullptr && model()->rowCount() > 0))
        return;
    QPainter painter(viewport());
    painter.setFont(interfaceFont(Typeface::Light, kEmptyTextSize));
    painter.setPen(kEmptyTextColour);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}
