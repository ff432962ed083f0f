#pragma once

#include <QWidget>

class QListView;
class QPushButton;
class QStringListModel;

// The left column of both preset editors: the presets' names with the
// add and remove buttons under them.
class MCPresetListColumn : public QWidget
{
    Q_OBJECT
public:
    explicit MCPresetListColumn(QWidget *parent);

    QListView *list;
    QStringListModel *names;
    QPushButton *addButton;
    QPushButton *removeButton;

    // A square "+"/"-" button of the height of a normal one.
    static QPushButton *smallButton(const QString &title, QWidget *parent);
};
