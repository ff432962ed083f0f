#pragma once

#include <QIdentityProxyModel>

// The queue table as the view shows it: the rows of failed jobs in the
// theme's red, everything else as the queue's model says.
class MCFailedRowColour : public QIdentityProxyModel
{
    Q_OBJECT
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};
