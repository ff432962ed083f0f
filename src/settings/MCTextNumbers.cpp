#include "MCTextNumbers.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace MCTextNumbers {

long long integerValue(const QString &text)
{
    constexpr long long kLimit = std::numeric_limits<long long>::max() / 10 - 10;
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        negative = text.at(i++) == QLatin1Char('-');
    long long value = 0;
    for (; i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
        if (value < kLimit)
            value = value * 10 + (text.at(i).unicode() - '0');
    }
    return negative ? -value : value;
}

double floatValue(const QString &text)
{
    static const QRegularExpression leading(QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)"));
    const QRegularExpressionMatch match = leading.match(text);
    return match.hasMatch() ? match.captured(0).trimmed().toDouble() : 0.0;
}

std::optional<QString> normalisedDecimal(const QString &text, int fractionDigits)
{
    static const QRegularExpression number(QStringLiteral("^[+-]?(\\d+\\.?\\d*|\\.\\d+)$"));
    const QString trimmed = text.trimmed();
    if (!number.match(trimmed).hasMatch())
        return std::nullopt;
    const double scale = std::pow(10.0, fractionDigits);
    const double value = std::round(trimmed.toDouble() * scale) / scale;
    if (!std::isfinite(value))
        return std::nullopt;
    QString written = QString::number(value, 'f', fractionDigits);
    if (written.contains(QLatin1Char('.'))) {
        while (written.endsWith(QLatin1Char('0')))
            written.chop(1);
        if (written.endsWith(QLatin1Char('.')))
            written.chop(1);
    }
    if (written == QLatin1String("-0"))
        written = QStringLiteral("0");
    return written;
}

} // namespace MCTextNumbers
