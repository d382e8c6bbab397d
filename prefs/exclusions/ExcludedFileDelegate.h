#pragma once

#include <QStyledItemDelegate>

/// Paints an entry of the excluded paths: its icon, its name over the folder that holds it, and at
/// the right its size; a line below. An entry that is not there is faint. Main thread.
class ExcludedFileDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
