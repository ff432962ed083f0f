#pragma once

#include <QAbstractTableModel>
#include <QVariantList>

// The progress table of the running job: rows {"Step", "Progress"}.
class MCProgressTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit MCProgressTableModel(QObject *parent = nullptr);

    const QVariantList &rows() const { return m_rows; }
    void setRows(const QVariantList &rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QVariantList m_rows;
};
