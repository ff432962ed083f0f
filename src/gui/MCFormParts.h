#pragma once

#include <QString>
#include <QStringList>

class QBoxLayout;
class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QWidget;

// The small pieces the window's tabs are built from, so every tab's rows
// and fields look and behave alike.
namespace MCFormParts {

// Radio buttons with ids 0, 1, ... in a group; the first is checked.
QButtonGroup *radioGroup(QWidget *parent, QBoxLayout *layout, const QStringList &titles);
// A right-aligned field for a number.
QLineEdit *numberField(QWidget *parent, int width = 70);
// The "Track:" row of an audio box: its label and pop-up, added to layout.
void addAudioTrackChooser(QWidget *parent, QBoxLayout *layout, QLabel *&label, QComboBox *&popUp);
// The field with its unit after it.
QWidget *withUnit(QWidget *parent, QWidget *field, const QString &unit);

// Replaces a pop-up's items only when they changed, so an open pop-up and
// its highlighted item survive the many refreshes of a single action.
void fillCombo(QComboBox *combo, const QStringList &items, const QString &current);
// Checks the row with that id, if there is one.
void checkRow(QButtonGroup *group, int index);
// The user's typing wins over a refresh while the field has the focus.
void showText(QLineEdit *field, const QString &text);

} // namespace MCFormParts
