#include "MCTerminalText.h"

namespace {

bool isBidiControl(char16_t c)
{
    return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

QString escapedKeeping(const QString &text, bool keepLineBreaks)
{
    QString out;
    out.reserve(text.size());
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (keepLineBreaks && (c == u'\n' || c == u'\t'))
            out += ch;
        else if (c == 0x1B)
            out += QStringLiteral("\\e");
        else if (c < 0x20 || c == 0x7F)
            out += QStringLiteral("\\x%1").arg(int(c), 2, 16, QLatin1Char('0'));
        else if ((c >= 0x80 && c <= 0x9F) || isBidiControl(c))
            out += QStringLiteral("\\u%1").arg(int(c), 4, 16, QLatin1Char('0'));
        else
            out += ch;
    }
    return out;
}

} // namespace

QString MCTerminalText::escaped(const QString &text)
{
    return escapedKeeping(text, true);
}

void MCTerminalText::print(std::FILE *out, const QString &text)
{
    const QByteArray bytes = escaped(text).toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), out);
    std::fflush(out);
}

QString MCTerminalText::escapedLine(const QString &text)
{
    return escapedKeeping(text, false);
}
