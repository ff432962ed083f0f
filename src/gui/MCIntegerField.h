#pragma once

#include "MCIntegerValidator.h"

#include <QObject>

class QLineEdit;

// Keeps a line edit to whole numbers while the user types: each edit goes
// through the number validator, which may put the last good text back.
class MCIntegerField : public QObject
{
    Q_OBJECT
public:
    explicit MCIntegerField(QLineEdit *field);

private:
    QLineEdit *m_field;
    MCIntegerValidator m_validator;
};
