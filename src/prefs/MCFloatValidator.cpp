#include "MCFloatValidator.h"

bool MCFloatValidator::beginEditing(const QString &currentText)
{
    m_oldText = currentText;
    return true;
}

QString MCFloatValidator::textDidChange(const QString &newText)
{
    if (!isAcceptable(newText))
        return m_oldText;
    m_oldText = newText;
    return newText;
}

bool MCFloatValidator::isAcceptable(const QString &text)
{
    int points = 0;
    for (const QChar c : text) {
        if (c == QLatin1Char('.'))
            ++points;
        else if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return points <= 1;
}
