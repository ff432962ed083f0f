#pragma once

#include "MCTimeValidator.h"

#include <QObject>

class QLineEdit;

// Makes a line edit behave as an HH:MM:SS mask: every edit goes through the
// time validator, which answers the text, caret and whether to beep; leaving
// the field normalises it. The validator posts the two notifications that
// the selection rules listen to; the field's object name is its identifier.
class MCTimeField : public QObject
{
    Q_OBJECT
public:
    explicit MCTimeField(QLineEdit *field);

private:
    void edited(const QString &text);
    void finished();

    QLineEdit *m_field;
    MCTimeValidator m_validator;
};
