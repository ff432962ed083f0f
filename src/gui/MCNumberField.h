#pragma once

#include "MCFloatValidator.h"
#include "MCIntegerValidator.h"

#include <QObject>

#include <variant>

class QLineEdit;

// Keeps a line edit (or an editable combo box's) to numbers while the user
// types: each edit goes through the whole-number or the decimal validator,
// which may put the last good text back.
class MCNumberField : public QObject
{
    Q_OBJECT
public:
    enum class Kind { Whole, Decimal };

    MCNumberField(QLineEdit *field, Kind kind);

private:
    QString textDidChange(const QString &text);

    QLineEdit *m_field;
    std::variant<MCIntegerValidator, MCFloatValidator> m_validator;
};
