#include "platform/openpanel/ChooserItems.h"

#include "platform/base/ByteCount.h"

#include <QDateTime>
#include <QFile>
#include <QFileSystemModel>
#include <QLocale>

namespace {

bool isFigure(int column)
{
    return column == ChooserItems::Size || column == ChooserItems::Date;
}

constexpr int kAtTheLeft = Qt::AlignLeft | Qt::AlignVCenter;
constexpr int kAtTheRight = Qt::AlignRight | Qt::AlignVCenter;

} // namespace

ChooserItems::ChooserItems(Rule shouldEnable, QObject *parent)
    : QIdentityProxyModel(parent), m_shouldEnable(std::move(shouldEnable))
{
}

Qt::ItemFlags ChooserItems::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QIdentityProxyModel::flags(index);
    const QString path = index.data(QFileSystemModel::FilePathRole).toString();
    if (!m_shouldEnable || path.isEmpty() || m_shouldEnable(QFile::encodeName(path)))
        return flags;
    return flags & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
}

QVariant ChooserItems::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DisplayRole && isFigure(index.column()))
        return text(index);
    if (role == Qt::TextAlignmentRole && isFigure(index.column()))
        return kAtTheRight;
    return QIdentityProxyModel::data(index, role);
}

QVariant ChooserItems::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return isFigure(section) ? kAtTheRight : kAtTheLeft;
    return QIdentityProxyModel::headerData(section, orientation, role);
}

QVariant ChooserItems::text(const QModelIndex &index) const
{
    const auto *const files = qobject_cast<const QFileSystemModel *>(sourceModel());
    const QModelIndex item = mapToSource(index);
    if (!files || !item.isValid())
        return {};
    if (index.column() == Date)
        return QLocale().toString(files->lastModified(item), QLocale::ShortFormat);
    return files->isDir(item) ? QString() : stringFromByteCount(files->size(item));
}
