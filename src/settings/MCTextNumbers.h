#pragma once

#include <QString>

#include <optional>

// How the settings area reads the numbers it keeps as decimal texts.
namespace MCTextNumbers {

// The leading integer of a text, as a lenient reader takes it: blanks
// skipped, an optional sign, then digits; 0 when there are none. Saturates
// instead of overflowing.
long long integerValue(const QString &text);

// The leading decimal number of a text (digits with an optional fraction),
// 0 when there is none.
double floatValue(const QString &text);

// A typed number in the "en_US" form (a point as the decimal mark, no
// grouping), rounded half away from zero to at most fractionDigits digits
// and written without trailing zeros: "1500.6" -> "1501" with 0 digits,
// "23.9764" -> "23.976" with 3. Nothing for an empty or non-numeric text.
std::optional<QString> normalisedDecimal(const QString &text, int fractionDigits);

} // namespace MCTextNumbers
