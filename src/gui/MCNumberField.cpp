#include "MCNumberField.h"

#include <QLineEdit>

MCNumberField::MCNumberField(QLineEdit *field, Kind kind)
    : QObject(field)
    , m_field(field)
{
    if (kind == Kind::Decimal)
        m_validator = MCFloatValidator();
    std::visit([&](auto &validator) { validator.beginEditing(field->text()); }, m_validator);
    // A program's setText starts a new edit from the new text.
    connect(field, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (!m_field->isModified())
            std::visit([&](auto &validator) { validator.beginEditing(text); }, m_validator);
    });
    connect(field, &QLineEdit::textEdited, this, [this](const QString &text) {
        const QString accepted = textDidChange(text);
        if (accepted != text) {
            const int cursor = m_field->cursorPosition() - static_cast<int>(text.size() - accepted.size());
            m_field->setText(accepted);
            m_field->setCursorPosition(qBound(0, cursor, static_cast<int>(accepted.size())));
        }
    });
}

QString MCNumberField::textDidChange(const QString &text)
{
    return std::visit([&](auto &validator) { return validator.textDidChange(text); }, m_validator);
}
