#pragma once

#include <QStyledItemDelegate>

// Draws a step's status as a progress bar when it holds a percentage
// ("37%", "Pass #2: 37%"), with the status as the bar's text; any other word
// is drawn as text.
class MCProgressDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
