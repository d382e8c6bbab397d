#pragma once

#include "widgets/AttributedText.h"

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

class FileIconNames;
class QTableView;

/// The look of one row of large files: its icon, its name, and the button that bears its size and
/// picks it. Rows are painted, not made of widgets, so that any number of them scrolls smoothly.
/// Main thread only.
class FileTableCellView final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// Paints the rows of this table and watches the mouse over it; the table owns it.
    FileTableCellView(FileIconNames &icons, QTableView *table);

    /// The styles of the size button's title, from a run without text.
    void setAddedAttributes(const TextRun &style) { m_addedAttributes = style; }
    void setUnaddedAttributes(const TextRun &style) { m_unaddedAttributes = style; }
    const TextRun &addedAttributes() const { return m_addedAttributes; }
    const TextRun &unaddedAttributes() const { return m_unaddedAttributes; }

    /// Where the size button is in a row's rectangle.
    static QRect addButtonRect(const QRect &row);
    /// The drawing of the size button.
    static QString addButtonImageName(bool isAdded, bool isPressed);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

Q_SIGNALS:
    /// A row's size button was pressed and released.
    void addButtonPressed(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isOnButton(QPoint position, const QModelIndex &index) const;
    bool press(QPoint position);
    bool release(QPoint position);
    void setPressed(bool isPressed);
    void paintButton(QPainter &painter, const QRect &row, const QModelIndex &index) const;

    FileIconNames &m_icons;
    QTableView &m_table;
    TextRun m_addedAttributes;
    TextRun m_unaddedAttributes;
    QPersistentModelIndex m_held; ///< the row on whose button the mouse went down
    bool m_isPressed = false;     ///< whether the mouse is still over it
};
