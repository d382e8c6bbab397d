#pragma once

#include "largefiles/search/CurrentSize.h"
#include "largefiles/search/File.h"
#include "slices/record/Confirmation.h"

#include <QAbstractListModel>
#include <QHash>
#include <functional>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

/// The large files that were found, the largest first and among equal ones the first found first,
/// no path twice, and which of them the user has picked. Kept from one search to the next. Owned by
/// the sheet, main thread only; never touches the file system.
///
/// The picked total follows what is on the disk when the picks change: the list asks for the sizes
/// again, and sizeStringChanged() tells when they have come. Until then the last known sizes count.
class LargeFileList final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        SizeStringRole = Qt::UserRole,
        IsAddedRole,
    };

    using Answer = std::function<void(const QList<CurrentSize> &sizes)>;
    /// Reads the present sizes of files, in their order. Answers on the main thread, at once or
    /// later; a question may stay unanswered when a later one was asked.
    using ReadSizes = std::function<void(const FileUrls &files, Answer answer)>;

    using Clock = std::function<Moment()>;

    /// Without a way to read sizes, the total is the sum of the sizes found. Without a clock,
    /// nothing is known of the time of the picks.
    explicit LargeFileList(ReadSizes readSizes = {}, Clock clock = {}, QObject *parent = nullptr);
    ~LargeFileList() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    /// The name for Qt::DisplayRole, the path for Qt::ToolTipRole, name, size and whether it is
    /// picked for Qt::AccessibleTextRole, and the roles above.
    QVariant data(const QModelIndex &index, int role) const override;

    const File &fileAt(int row) const { return *m_files[std::size_t(row)]; }
    /// All files, in list order.
    FileUrls fileURLs() const;
    bool contains(const FileUrl &file) const { return m_byPath.contains(file.path()); }

    /// Inserts a file at its position; false when its path is listed already.
    bool insert(const File &file);
    /// Removes the rows of these files. Ignores files that are not listed.
    void remove(const FileUrls &files);
    /// Empties the list, and with it the picks.
    void deleteData();

    void toggle(int row);
    /// Picks these files, or drops them; however many there are, the total is asked for once.
    void setAdded(const QList<int> &rows, bool isAdded);
    /// Unpicks every file.
    void dropPicks();

    /// The picked files, the largest first.
    FileUrls selectedURLs() const;
    /// When the first of them was picked, and what each was when its size was first read after its
    /// own pick: they were meant as they were then.
    const Confirmation &picked() const { return m_choice; }
    /// The picked total in bytes, and as people read it.
    qint64 selectedSize() const;
    QString sizeString() const;
    /// What of the picked total a cleaning would free, in bytes.
    qint64 deletableSize() const;
    /// Asks for the sizes of the picked files again.
    void refreshSizes();

Q_SIGNALS:
    void sizeStringChanged();

private:
    /// Equal sizes go by path: what is picked has one order.
    struct LargestFirst
    {
        bool operator()(const File *file, const File *other) const;
    };

    static QString accessibleText(const File &file);
    void setAdded(File &file, bool isAdded);
    void removeRun(std::size_t first, std::size_t end);
    void picksChanged();
    CurrentSize currentSize(const File &file) const;
    void takeSizes(const FileUrls &files, const QList<CurrentSize> &sizes);

    const ReadSizes m_readSizes;
    const Clock m_clock;
    Confirmation m_choice;
    std::unordered_map<QByteArray, std::unique_ptr<File>> m_byPath;
    std::vector<File *> m_files; ///< in list order; bare, because a row in between moves all below
    /// Apart, so that a pick costs what is picked and not what is listed.
    std::set<const File *, LargestFirst> m_picked;
    QHash<QByteArray, CurrentSize> m_currentSizes; ///< by path, of files that are or were picked
    quint64 m_question = 0;                        ///< the number of the latest question for sizes
};
