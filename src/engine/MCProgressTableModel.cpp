#include "MCProgressTableModel.h"

#include <QVariantMap>

namespace {
const QString kKeys[] = {QStringLiteral("Step"), QStringLiteral("Progress")};
}

MCProgressTableModel::MCProgressTableModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    m_rows.reserve(200);
}

void MCProgressTableModel::setRows(const QVariantList &rows)
{
    if (rows.size() == m_rows.size()) {
        // Same shape: a cheap redraw instead of a reset on every tick.
        m_rows = rows;
        if (!m_rows.isEmpty())
            emit dataChanged(index(0, 0), index(static_cast<int>(m_rows.size()) - 1, 1));
        return;
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int MCProgressTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int MCProgressTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant MCProgressTableModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= m_rows.size() || index.column() > 1)
        return {};
    return m_rows.at(index.row()).toMap().value(kKeys[index.column()]).toString();
}

QVariant MCProgressTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section > 1)
        return {};
    return kKeys[section];
}
