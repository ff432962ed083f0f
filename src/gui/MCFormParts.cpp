#include "MCFormParts.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

QButtonGroup *MCFormParts::radioGroup(QWidget *parent, QBoxLayout *layout, const QStringList &titles)
{
    auto *group = new QButtonGroup(parent);
    for (int i = 0; i < titles.size(); ++i) {
        auto *button = new QRadioButton(titles.at(i), parent);
        group->addButton(button, i);
        layout->addWidget(button);
    }
    group->button(0)->setChecked(true);
    return group;
}

QLineEdit *MCFormParts::numberField(QWidget *parent, int width)
{
    auto *field = new QLineEdit(parent);
    field->setFixedWidth(width);
    field->setAlignment(Qt::AlignRight);
    return field;
}

void MCFormParts::addAudioTrackChooser(QWidget *parent, QBoxLayout *layout, QLabel *&label, QComboBox *&popUp)
{
    auto *row = new QHBoxLayout;
    label = new QLabel(QStringLiteral("Track:"), parent);
    popUp = new QComboBox(parent);
    popUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    row->addWidget(label);
    row->addWidget(popUp, 1);
    layout->addLayout(row);
}

QWidget *MCFormParts::withUnit(QWidget *parent, QWidget *field, const QString &unit)
{
    auto *box = new QWidget(parent);
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(field);
    if (!unit.isEmpty())
        layout->addWidget(new QLabel(unit, box));
    layout->addStretch();
    return box;
}

void MCFormParts::fillCombo(QComboBox *combo, const QStringList &items, const QString &current)
{
    QStringList present;
    for (int i = 0; i < combo->count(); ++i)
        present << combo->itemText(i);
    if (present != items) {
        combo->clear();
        combo->addItems(items);
    }
    const int index = combo->findText(current);
    if (index >= 0)
        combo->setCurrentIndex(index);
    else if (combo->isEditable())
        combo->setEditText(current);
}

void MCFormParts::checkRow(QButtonGroup *group, int index)
{
    if (QAbstractButton *button = group->button(index))
        button->setChecked(true);
}

void MCFormParts::showText(QLineEdit *field, const QString &text)
{
    if (!field->hasFocus() && field->text() != text)
        field->setText(text);
}
