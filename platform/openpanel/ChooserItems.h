#pragma once

#include <QIdentityProxyModel>
#include <functional>

/// A file system model as a file chooser shows it: the items that may not be chosen are disabled,
/// and sizes and dates are written as in the rest of the program. The rule gets raw paths; without
/// one everything may be chosen. Main thread only.
class ChooserItems final : public QIdentityProxyModel
{
    Q_OBJECT

public:
    using Rule = std::function<bool(const QByteArray &path)>;

    enum Column { Name, Size, Type, Date };

    ChooserItems(Rule shouldEnable, QObject *parent);

    /// Drops the rule: what it refers to may be gone from now on.
    void dropRule() { m_shouldEnable = {}; }

    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVariant text(const QModelIndex &index) const;

    Rule m_shouldEnable;
};
