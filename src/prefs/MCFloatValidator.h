#pragma once

#include <QString>

// Keeps a text field or combo box to decimal numbers while the user types:
// digits and at most one ".", or nothing at all. A refused change puts the
// field back to its last good text.
class MCFloatValidator
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
