#include "MCProgressDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleOptionProgressBar>

std::optional<int> MCProgressDelegate::percentageIn(const QString &status)
{
    static const QRegularExpression trailing(QStringLiteral("(\\d+(?:\\.\\d+)?)\\s*%\\s*$"));
    const auto match = trailing.match(status);
    if (!match.hasMatch())
        return std::nullopt;
    const double value = match.captured(1).toDouble();
    return static_cast<int>(qBound(0.0, value, 100.0));
}

void MCProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QString status = index.data().toString();
    const auto percent = percentageIn(status);
    if (!percent) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(2, 2, -2, -2);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = *percent;
    bar.text = status;
    bar.textVisible = true;
    bar.textAlignment = Qt::AlignCenter;
    bar.palette = option.palette;
    bar.fontMetrics = option.fontMetrics;
    QStyle *style = option.widget ? option.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, option.widget);
}
