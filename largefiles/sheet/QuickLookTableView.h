#pragma once

#include "largefiles/sheet/QuickLookTableViewDelegate.h"
#include "platform/base/WeakReference.h"

#include <QMenu>
#include <QPointer>
#include <QTableView>

/// A table of files, one column without headers. The space bar asks the delegate for a preview.
/// Enter asks for what a row's button does. The context menu belongs to the row under the pointer,
/// whichever rows are selected; outside the rows there is no menu. Main thread only.
class QuickLookTableView final : public QTableView
{
    Q_OBJECT

public:
    explicit QuickLookTableView(QWidget *parent = nullptr);

    QuickLookTableViewDelegate *qlDelegate() const { return m_qlDelegate.get(); }
    void setQlDelegate(WeakReference<QuickLookTableViewDelegate> delegate)
    {
        m_qlDelegate = std::move(delegate);
    }

    QMenu *menu() const { return m_menu; }
    /// Sets the context menu, which has at least one item. Its owner keeps it.
    void setMenu(QMenu *menu) { m_menu = menu; }

    /// The menu for a position in the viewport. The data of its first item is the row there, as a
    /// QPersistentModelIndex. Null where there is no row.
    QMenu *menuForEvent(QPoint position);

    /// Acts as if the key had been pressed in the table.
    void keyDown(QKeyEvent *event) { keyPressEvent(event); }

    /// The selected rows, from top to bottom.
    QList<int> selectedRows() const;

    void setModel(QAbstractItemModel *model) override;

    /// Sets the text that stands in the middle while there are no rows.
    void setEmptyText(const QString &text);
    QString emptyText() const { return m_emptyText; }

Q_SIGNALS:
    /// Enter was pressed while rows are selected.
    void togglePressed();
    /// Other rows are selected, or none. A row that is removed leaves the selection.
    void selectionDidChange();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setUpLook();

    WeakReference<QuickLookTableViewDelegate> m_qlDelegate;
    QPointer<QMenu> m_menu;
    QString m_emptyText;
};
