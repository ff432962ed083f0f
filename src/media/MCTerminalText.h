#pragma once

#include <QString>

#include <cstdio>

// Text from files (names, titles, languages) made safe to print on a
// terminal: control characters would otherwise move the cursor, retitle the
// window or ring the bell. They are shown as escapes instead: "\e" for ESC,
// "\xHH" for the other C0 controls and DEL, "\uHHHH" for C1 controls and the
// bidirectional overrides that would reorder the rest of the line.
class MCTerminalText
{
public:
    // Line breaks are kept (multi-line reports stay readable); tabs too.
    static QString escaped(const QString &text);
    // Everything escaped, line breaks included: for one-line fields.
    static QString escapedLine(const QString &text);
    // Writes escaped(text) as UTF-8 and flushes.
    static void print(std::FILE *out, const QString &text);
};
