#include "MCPresetListColumn.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

MCPresetListColumn::MCPresetListColumn(QWidget *parent)
    : QWidget(parent)
    , list(new QListView(this))
    , names(new QStringListModel(list))
    , addButton(smallButton(QStringLiteral("+"), this))
    , removeButton(smallButton(QStringLiteral("-"), this))
{
    list->setModel(names);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setMinimumWidth(180);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    buttons->addWidget(addButton);
    buttons->addWidget(removeButton);
    buttons->addStretch();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new QLabel(QStringLiteral("Presets"), this));
    column->addWidget(list, 1);
    column->addLayout(buttons);
}

QPushButton *MCPresetListColumn::smallButton(const QString &title, QWidget *parent)
{
    auto *button = new QPushButton(title, parent);
    button->setAutoDefault(false);
    const int side = button->sizeHint().height();
    button->setFixedSize(side + 4, side);
    return button;
}
