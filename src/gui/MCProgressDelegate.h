#pragma once

#include <QStyledItemDelegate>

#include <optional>

// Draws a step's status as a progress bar when it ends in a percentage
// ("37%", "Pass #2: 37%"), with the status as the bar's text; any other word
// is drawn as text.
class MCProgressDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    // The whole percentage a status text ends in, if it ends in one.
    static std::optional<int> percentageIn(const QString &status);
};
