#include "MCProgressDelegate.h"

#include "MCStepStatus.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionProgressBar>

void MCProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QString status = index.data().toString();
    const std::optional<double> percent = MCStepStatus::percentIn(status);
    if (!percent) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(2, 2, -2, -2);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = static_cast<int>(*percent);
    bar.text = status;
    bar.textVisible = true;
    bar.textAlignment = Qt::AlignCenter;
    bar.palette = option.palette;
    bar.fontMetrics = option.fontMetrics;
    QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, option.widget);
}
