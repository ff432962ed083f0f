#include "MCIntegerValidator.h"

bool MCIntegerValidator::beginEditing(const QString &currentText)
{
    m_oldText = currentText;
    return true;
}

QString MCIntegerValidator::textDidChange(const QString &newText)
{
    if (!isAcceptable(newText))
        return m_oldText;
    m_oldText = newText;
    return newText;
}

bool MCIntegerValidator::isAcceptable(const QString &text)
{
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}
