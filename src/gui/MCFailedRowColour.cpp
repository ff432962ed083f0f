#include "MCFailedRowColour.h"

#include "MCMainWindow.h"
#include "MCQueueJobModel.h"

#include <QApplication>

QVariant MCFailedRowColour::data(const QModelIndex &index, int role) const
{
    if (role == Qt::ForegroundRole && index.data(MCQueueJobModel::FailedRole).toBool())
        // Read at paint time, so a change of theme is followed.
        return MCMainWindow::colorFor(QStringLiteral("red"), QApplication::palette());
    return QIdentityProxyModel::data(index, role);
}
