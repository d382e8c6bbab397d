#pragma once

#include <QTableView>
#include <functional>

/// The table of the excluded paths. Takes files and folders that are dropped on it, and says what
/// it is for while it is empty. Main thread.
class ExcludedFilesView final : public QTableView
{
    Q_OBJECT

public:
    /// Says which paths may be dropped; raw bytes. It does not use the file system.
    using Rule = std::function<bool(const QByteArray &path)>;

    explicit ExcludedFilesView(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model) override;
    void setRule(Rule rule) { m_rule = std::move(rule); }

    /// In any order.
    QList<int> selectedRows() const;

Q_SIGNALS:
    /// At least one of them follows the rule.
    void pathsDropped(const QList<QByteArray> &paths);
    void removalRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool takes(const QMimeData &offered) const;
    void setDropTarget(bool isDropTarget);
    void paintHint(QPainter &painter) const;

    Rule m_rule;
    bool m_isDropTarget = false;
};

/// The paths of a list of URLs, byte for byte. Those that are no local files are left out.
QList<QByteArray> pathsOfUriList(const QByteArray &uriList);
