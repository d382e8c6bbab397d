#pragma once

#include "prefs/exclusions/FileToView.h"

#include <QAbstractTableModel>
#include <span>

/// The excluded files and folders as a table: icon, name and folder in one column, the size in the
/// other. Sizes and icons come in the background. An entry of the settings that cannot be read
/// stays in its row, word for word, until the user removes it. Main thread only.
class ExcludedFilesModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { PathColumn, SizeColumn, ColumnCount };
    enum Role {
        ImageNameRole = Qt::UserRole, ///< the drawing of the entry's icon
        PlaceRole,                    ///< the folder that holds the entry, for people
        IsUsableRole,                 ///< false for an entry that is not there or cannot be read
    };

    /// Must outlive the model.
    explicit ExcludedFilesModel(FileToView &toView, QObject *parent = nullptr);
    ~ExcludedFilesModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Replaces all rows by what the settings hold.
    void setStoredStrings(const QStringList &strings);
    /// The rows as the settings hold them, in order, duplicates kept.
    QStringList storedStrings() const;

    const std::shared_ptr<File> &fileAt(int row) const { return m_rows.at(row).file; }

    void append(const FileUrls &urls);
    /// Takes each path at once as the path of a file, so that it is excluded from now on, and finds
    /// out in the background which ones are folders.
    void appendPaths(const QList<QByteArray> &paths);
    /// Rows may come in any order.
    void remove(QList<int> rows);

    /// Finds out again which entries are there.
    void lookAgain();

Q_SIGNALS:
    /// What was taken as a file has turned out to be a folder.
    void storedStringsChanged();

private:
    struct Row
    {
        std::shared_ptr<File> file = {};
        std::optional<QString> unreadable = {}; ///< a stored string that is no URL
        FileFacts facts = {};
        bool hasNoSize = false;    ///< it may not be measured now
        bool isOfOpenKind = false; ///< may still turn out to be a folder
    };

    static Row rowOf(const QString &stored);
    QString sizeText(const Row &row) const;
    QString placeText(const Row &row) const;
    bool isUsable(const Row &row) const;
    QVariant pathData(const Row &row, int role) const;
    QVariant sizeData(const Row &row, int role) const;
    void forgetRows();
    std::span<Row> rowsFrom(qsizetype first);
    void prepare(int firstRow);
    void measure(Row &row);
    void takeFacts(const File *file, const FileFacts &facts);
    void settleKind(Row &row);
    int rowOf(const File *file) const;
    void rowChanged(int row);

    FileToView &m_toView;
    QList<Row> m_rows;
};
