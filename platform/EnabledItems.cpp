#include "platform/EnabledItems.h"

#include <QFile>
#include <QFileSystemModel>

EnabledItems::EnabledItems(Rule shouldEnable, QObject *parent)
    : QIdentityProxyModel(parent), m_shouldEnable(std::move(shouldEnable))
{
}

Qt::ItemFlags EnabledItems::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QIdentityProxyModel::flags(index);
    const QString path = index.data(QFileSystemModel::FilePathRole).toString();
    if (path.isEmpty() || m_shouldEnable(QFile::encodeName(path)))
        return flags;
    return flags & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
}
