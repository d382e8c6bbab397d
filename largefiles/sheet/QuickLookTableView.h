#pragma once

#include "largefiles/sheet/QuickLookTableViewDelegate.h"
#include "platform/base/WeakReference.h"

#include <QMenu>
#include <QPointer>
#include <QTableView>

/// A table of files, one column without headers. The space bar asks the delegate for a preview,
/// Enter for what a row's button does. The context menu is that of the row under the pointer,
/// whichever rows are selected; beside the rows there is none. Main thread only.
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
    /// The context menu, with at least one item; stays its owner's.
    void setMenu(QMenu *menu) { m_menu = menu; }

    /// The menu for a place in the viewport: its first item bears the row there, a
    /// QPersistentModelIndex, as its data. Null where there is no row.
    QMenu *menuForEvent(QPoint position);

    /// As if the key had been pressed in the table.
    void keyDown(QKeyEvent *event) { keyPressEvent(event); }

    /// The selected rows, from top to bottom.
    QList<int> selectedRows() const;

    void setModel(QAbstractItemModel *model) override;

    /// What stands in the middle while there are no rows.
    void setEmptyText(const QString &text);
    QString emptyText() const { return m_emptyText; }

Q_SIGNALS:
    /// Enter was pressed while rows are selected.
    void togglePressed();
    /// Other rows are selected, or none; rows that go take their selection with them.
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
