#include "largefiles/search/LargeFileList.h"

#include "platform/base/ByteCount.h"
#include "platform/base/PlainToolTip.h"

#include <QPointer>
#include <QSet>
#include <algorithm>

LargeFileList::LargeFileList(ReadSizes readSizes, Clock clock, QObject *parent)
    : QAbstractListModel(parent), m_readSizes(std::move(readSizes)), m_clock(std::move(clock))
{
}

LargeFileList::~LargeFileList() = default;

bool LargeFileList::LargestFirst::operator()(const File *file, const File *other) const
{
    if (file->size() != other->size())
        return file->size() > other->size();
    return file->fileURL().path() < other->fileURL().path();
}

int LargeFileList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_files.size());
}

/// What the row's icon, name and button say to the eye.
QString LargeFileList::accessibleText(const File &file)
{
    const QString text =
        file.isAdded() ? tr("%1, %2, picked", "name, size") : tr("%1, %2", "name, size");
    return text.arg(file.name(), file.sizeString().value_or(QString()));
}

QVariant LargeFileList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const File &file = fileAt(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return file.name();
    case Qt::ToolTipRole:
        return plainToolTip(file.fileURL().displayPath());
    case Qt::AccessibleTextRole:
        return accessibleText(file);
    case SizeStringRole:
        return file.sizeString().value_or(QString());
    case IsAddedRole:
        return file.isAdded();
    default:
        return {};
    }
}

FileUrls LargeFileList::fileURLs() const
{
    FileUrls urls;
    urls.reserve(static_cast<qsizetype>(m_files.size()));
    for (const File *file : m_files)
        urls.append(file->fileURL());
    return urls;
}

bool LargeFileList::insert(const File &file)
{
    const auto [entry, isNew] = m_byPath.try_emplace(file.fileURL().path());
    if (!isNew)
        return false;
    entry->second = std::make_unique<File>(file);
    if (file.isAdded())
        m_picked.insert(entry->second.get());
    const auto isLarger = [](qint64 size, const File *listed) { return size > listed->size(); };
    const auto place = std::upper_bound(m_files.begin(), m_files.end(), file.size(), isLarger);
    const int row = static_cast<int>(place - m_files.begin());
    beginInsertRows({}, row, row);
    m_files.insert(place, entry->second.get());
    endInsertRows();
    if (file.isAdded())
        picksChanged();
    return true;
}

/// Removes from the bottom up, so that no row is moved that is itself removed later. Rows that lie
/// together go in one step.
void LargeFileList::remove(const FileUrls &files)
{
    QSet<QByteArray> going;
    for (const FileUrl &file : files)
        going.insert(file.path());
    const auto goes = [&](std::size_t row) {
        return going.contains(m_files[row]->fileURL().path());
    };
    const std::size_t picked = m_picked.size();
    for (std::size_t end = m_files.size(); end > 0; --end) {
        if (!goes(end - 1))
            continue;
        std::size_t first = end;
        while (first > 0 && goes(first - 1))
            --first;
        removeRun(first, end);
        if (first == 0)
            break;
        end = first;
    }
    if (m_picked.size() != picked)
        picksChanged();
}

void LargeFileList::removeRun(std::size_t first, std::size_t end)
{
    beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
    const auto from = m_files.begin() + static_cast<std::ptrdiff_t>(first);
    const auto to = m_files.begin() + static_cast<std::ptrdiff_t>(end);
    for (auto file = from; file != to; ++file) {
        m_picked.erase(*file);
        m_byPath.erase((*file)->fileURL().path());
    }
    m_files.erase(from, to);
    endRemoveRows();
}

void LargeFileList::deleteData()
{
    beginResetModel();
    m_picked.clear();
    m_files.clear();
    m_byPath.clear();
    endResetModel();
    picksChanged();
}

void LargeFileList::toggle(int row)
{
    setAdded({row}, !fileAt(row).isAdded());
}

void LargeFileList::setAdded(File &file, bool isAdded)
{
    file.setIsAdded(isAdded);
    if (isAdded && m_picked.empty())
        m_choice.moment = m_clock ? m_clock() : Moment();
    if (isAdded)
        m_picked.insert(&file);
    else
        m_picked.erase(&file);
    m_choice.locations.remove(file.fileURL().path());
}

void LargeFileList::setAdded(const QList<int> &rows, bool isAdded)
{
    int first = rowCount();
    int last = -1;
    for (const int row : rows) {
        File &file = *m_files[std::size_t(row)];
        if (file.isAdded() == isAdded)
            continue;
        setAdded(file, isAdded);
        first = std::min(first, row);
        last = std::max(last, row);
    }
    if (last < 0)
        return;
    Q_EMIT dataChanged(index(first), index(last), {IsAddedRole, Qt::AccessibleTextRole});
    picksChanged();
}

void LargeFileList::dropPicks()
{
    if (m_files.empty())
        return;
    for (File *file : m_files)
        file->setIsAdded(false);
    m_picked.clear();
    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {IsAddedRole, Qt::AccessibleTextRole});
    picksChanged();
}

FileUrls LargeFileList::selectedURLs() const
{
    FileUrls urls;
    urls.reserve(static_cast<qsizetype>(m_picked.size()));
    for (const File *file : m_picked)
        urls.append(file->fileURL());
    return urls;
}

qint64 LargeFileList::selectedSize() const
{
    qint64 sum = 0;
    for (const File *file : m_picked)
        sum = sumOfByteCounts(sum, currentSize(*file).bytes);
    return sum;
}

qint64 LargeFileList::deletableSize() const
{
    qint64 sum = 0;
    for (const File *file : m_picked) {
        const CurrentSize size = currentSize(*file);
        if (size.isDeletable)
            sum = sumOfByteCounts(sum, size.bytes);
    }
    return sum;
}

CurrentSize LargeFileList::currentSize(const File &file) const
{
    return m_currentSizes.value(file.fileURL().path(), {file.size(), file.isDeletable()});
}

QString LargeFileList::sizeString() const
{
    return stringFromByteCount(selectedSize());
}

void LargeFileList::refreshSizes()
{
    const quint64 question = ++m_question;
    const FileUrls files = selectedURLs();
    if (files.isEmpty()) {
        m_currentSizes.clear();
        m_choice.locations.clear();
        return;
    }
    if (!m_readSizes)
        return;
    m_readSizes(files, [list = QPointer(this), question, files](const QList<CurrentSize> &sizes) {
        if (list && question == list->m_question)
            list->takeSizes(files, sizes);
    });
}

void LargeFileList::picksChanged()
{
    refreshSizes();
    Q_EMIT sizeStringChanged();
}

void LargeFileList::takeSizes(const FileUrls &files, const QList<CurrentSize> &sizes)
{
    m_currentSizes.clear();
    m_currentSizes.reserve(files.size());
    for (qsizetype i = 0; i < std::min(files.size(), sizes.size()); ++i) {
        const QByteArray path = files[i].path();
        m_currentSizes.insert(path, sizes[i]);
        if (sizes[i].identity != FileIdentity() && !m_choice.locations.contains(path))
            m_choice.locations.insert(path, sizes[i].identity);
    }
    Q_EMIT sizeStringChanged();
}
