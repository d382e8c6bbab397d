#include "prefs/exclusions/ExcludedFilesModel.h"

#include "platform/look/FileImages.h"

#include <QPointer>
#include <algorithm>

namespace {

/// A tool tip that looks like marked-up text would be shown as such. A name must not.
QString plainToolTip(const QString &text)
{
    return QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped());
}

} // namespace

ExcludedFilesModel::ExcludedFilesModel(FileToView &toView, QObject *parent)
    : QAbstractTableModel(parent), m_toView(toView)
{
}

ExcludedFilesModel::~ExcludedFilesModel()
{
    forgetRows();
}

int ExcludedFilesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ExcludedFilesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ExcludedFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == PathColumn ? tr("Name") : tr("Size");
}

QVariant ExcludedFilesModel::data(const QModelIndex &index, int role) const
{
    // The view asks without an index, too: when something is copied while no row is current.
    if (!index.isValid())
        return {};
    const Row &row = m_rows.at(index.row());
    if (role == IsUsableRole)
        return isUsable(row);
    return index.column() == PathColumn ? pathData(row, role) : sizeData(row, role);
}

QVariant ExcludedFilesModel::pathData(const Row &row, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return row.unreadable.value_or(row.file->name());
    case Qt::ToolTipRole:
        return plainToolTip(row.unreadable.value_or(row.file->fileURL().displayPath()));
    case Qt::AccessibleDescriptionRole:
    case PlaceRole:
        return placeText(row);
    case ImageNameRole:
        return row.file->fileURL().isFolder() ? QStringLiteral("folder")
                                              : imageNameForGenericIcon(row.facts.iconName);
    default:
        return {};
    }
}

QVariant ExcludedFilesModel::sizeData(const Row &row, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return sizeText(row);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue<int>(Qt::AlignRight | Qt::AlignVCenter);
    default:
        return {};
    }
}

bool ExcludedFilesModel::isUsable(const Row &row) const
{
    return !row.unreadable && row.facts.presence != FileFacts::Presence::Missing;
}

QString ExcludedFilesModel::sizeText(const Row &row) const
{
    if (row.unreadable)
        return tr("Not readable");
    if (row.facts.presence == FileFacts::Presence::Missing)
        return tr("Not found");
    if (row.hasNoSize)
        return QStringLiteral("\u2013");
    return row.file->sizeString().value_or(tr("Calculating..."));
}

QString ExcludedFilesModel::placeText(const Row &row) const
{
    if (row.unreadable)
        return tr("This entry cannot be read. Nothing is cleaned until it is removed.");
    const QString path = row.file->fileURL().displayPath();
    const auto slash = path.lastIndexOf(QLatin1Char('/'));
    return slash > 0 ? path.left(slash) : QStringLiteral("/");
}

void ExcludedFilesModel::setStoredStrings(const QStringList &strings)
{
    beginResetModel();
    forgetRows();
    for (const QString &stored : strings)
        m_rows.append(rowOf(stored));
    endResetModel();
    prepare(0);
}

void ExcludedFilesModel::forgetRows()
{
    for (const Row &row : std::as_const(m_rows))
        m_toView.cancel(*row.file);
    m_rows.clear();
}

ExcludedFilesModel::Row ExcludedFilesModel::rowOf(const QString &stored)
{
    const std::optional<FileUrl> url = FileUrl::fromString(stored);
    Row row;
    row.file = std::make_shared<File>(url.value_or(FileUrl()));
    if (!url)
        row.unreadable = stored;
    return row;
}

QStringList ExcludedFilesModel::storedStrings() const
{
    QStringList strings;
    for (const Row &row : m_rows)
        strings.append(
            row.unreadable.value_or(QString::fromLatin1(row.file->fileURL().absoluteString())));
    return strings;
}

void ExcludedFilesModel::append(const FileUrls &urls)
{
    if (urls.isEmpty())
        return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(urls.size()) - 1);
    for (const FileUrl &url : urls)
        m_rows.append({.file = std::make_shared<File>(url)});
    endInsertRows();
    prepare(first);
}

void ExcludedFilesModel::appendPaths(const QList<QByteArray> &paths)
{
    FileUrls urls;
    for (const QByteArray &path : paths)
        urls.append(FileUrl::fromPath(path, FileUrlKind::File));
    append(urls);
    for (Row &row : rowsFrom(m_rows.size() - urls.size()))
        row.isOfOpenKind = true;
}

void ExcludedFilesModel::remove(QList<int> rows)
{
    std::sort(rows.begin(), rows.end(), std::greater<>());
    for (const int row : std::as_const(rows)) {
        beginRemoveRows({}, row, row);
        m_toView.cancel(*m_rows.takeAt(row).file);
        endRemoveRows();
    }
}

void ExcludedFilesModel::lookAgain()
{
    prepare(0);
}

/// Looks at the rows from this one on, and measures those without a size.
std::span<ExcludedFilesModel::Row> ExcludedFilesModel::rowsFrom(qsizetype first)
{
    return std::span(m_rows.data(), static_cast<std::size_t>(m_rows.size()))
        .subspan(static_cast<std::size_t>(first));
}

void ExcludedFilesModel::prepare(int firstRow)
{
    QList<QByteArray> paths;
    QList<std::shared_ptr<File>> files;
    for (Row &row : rowsFrom(firstRow)) {
        if (row.unreadable)
            continue;
        paths.append(row.file->fileURL().path());
        files.append(row.file);
        if (!row.file->sizeString())
            measure(row);
    }
    m_toView.lookAt(paths, [model = QPointer(this), files](const QList<FileFacts> &facts) {
        for (int i = 0; model && i < files.size(); ++i)
            model->takeFacts(files.at(i).get(), facts.at(i));
    });
}

void ExcludedFilesModel::measure(Row &row)
{
    row.hasNoSize = false;
    m_toView.prepareFileForDisplay(row.file, [this, file = row.file.get()] {
        const int measured = rowOf(file);
        if (measured < 0)
            return;
        m_rows[measured].hasNoSize = !file->sizeString();
        rowChanged(measured);
    });
}

void ExcludedFilesModel::takeFacts(const File *file, const FileFacts &facts)
{
    const int row = rowOf(file);
    if (row < 0)
        return;
    Row &taken = m_rows[row];
    const bool isBack = taken.facts.presence == FileFacts::Presence::Missing &&
                        facts.presence == FileFacts::Presence::Present;
    taken.facts = facts;
    if (taken.isOfOpenKind && facts.presence != FileFacts::Presence::Unknown)
        settleKind(taken);
    if (isBack) {
        taken.file->setSizeString(std::nullopt);
        measure(taken);
    }
    rowChanged(row);
}

void ExcludedFilesModel::settleKind(Row &row)
{
    row.isOfOpenKind = false;
    if (row.facts.kind != FileUrlKind::Folder)
        return;
    m_toView.cancel(*row.file);
    row.file =
        std::make_shared<File>(FileUrl::fromPath(row.file->fileURL().path(), FileUrlKind::Folder));
    measure(row);
    Q_EMIT storedStringsChanged();
}

int ExcludedFilesModel::rowOf(const File *file) const
{
    const auto found = std::find_if(m_rows.begin(), m_rows.end(),
                                    [file](const Row &row) { return row.file.get() == file; });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

void ExcludedFilesModel::rowChanged(int row)
{
    Q_EMIT dataChanged(index(row, PathColumn), index(row, SizeColumn));
}
