#include "MCIntegerField.h"

#include <QLineEdit>

MCIntegerField::MCIntegerField(QLineEdit *field)
    : QObject(field)
    , m_field(field)
{
    m_validator.beginEditing(field->text());
    // A program's setText starts a new edit from the new text.
    connect(field, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (!m_field->isModified())
            m_validator.beginEditing(text);
    });
    connect(field, &QLineEdit::textEdited, this, [this](const QString &text) {
        const QString accepted = m_validator.textDidChange(text);
        if (accepted != text) {
            const int cursor = m_field->cursorPosition() - (text.size() - accepted.size());
            m_field->setText(accepted);
            m_field->setCursorPosition(qBound(0, cursor, accepted.size()));
        }
    });
}
