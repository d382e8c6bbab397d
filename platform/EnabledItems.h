#pragma once

#include <QIdentityProxyModel>
#include <functional>

/// A file system model in which the items that may not be chosen are disabled. The rule gets raw
/// paths. Main thread only.
class EnabledItems final : public QIdentityProxyModel
{
    Q_OBJECT

public:
    using Rule = std::function<bool(const QByteArray &path)>;

    EnabledItems(Rule shouldEnable, QObject *parent);

    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    Rule m_shouldEnable;
};
