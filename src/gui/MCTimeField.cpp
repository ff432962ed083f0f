#include "MCTimeField.h"

#include <QApplication>
#include <QLineEdit>

MCTimeField::MCTimeField(QLineEdit *field)
    : QObject(field)
    , m_field(field)
{
    m_validator.textShouldBeginEditing(field->text(), field->cursorPosition(), 0);
    // Text set by the program becomes the base of the next edit.
    connect(field, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (!m_field->isModified())
            m_validator.oldText = text;
    });
    connect(field, &QLineEdit::textEdited, this, &MCTimeField::edited);
    connect(field, &QLineEdit::editingFinished, this, &MCTimeField::finished);
}

void MCTimeField::edited(const QString &text)
{
    const MCTimeEdit edit = m_validator.controlTextDidChange(m_field->objectName(), text, m_field->cursorPosition());
    if (edit.text != text)
        m_field->setText(edit.text);
    m_field->setCursorPosition(edit.caret);
    if (edit.beep)
        QApplication::beep();
}

void MCTimeField::finished()
{
    const QString normalised = m_validator.isValidObject(m_field->objectName(), m_field->text());
    if (normalised != m_field->text())
        m_field->setText(normalised);
    m_validator.oldText = normalised;
}
