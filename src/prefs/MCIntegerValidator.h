#pragma once

#include <QString>

// Keeps a text field to whole numbers while the user types: a change that
// brings in any other character puts the field back to its last good text.
// The widget calls beginEditing when editing starts and shows whatever
// textDidChange answers.
class MCIntegerValidator
{
public:
    // Remembers the field's text; editing is always allowed.
    bool beginEditing(const QString &currentText);
    // The text the field must show after the change.
    QString textDidChange(const QString &newText);

    QString oldText() const { return m_oldText; }

    static bool isAcceptable(const QString &text);

private:
    QString m_oldText;
};
