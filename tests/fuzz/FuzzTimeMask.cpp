// Fuzz target for the split time mask: any old text, new text and caret.
// Input: the first byte is the caret (signed), then the old and the new text
// separated by a newline (no newline: the old text is "00:00:00").
#include "MCTimeValidator.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

bool isMask(const QString &text)
{
    static const QRegularExpression mask(QRegularExpression::anchoredPattern(QStringLiteral("[0-9][0-9]:[0-9][0-9]:[0-9][0-9]")));
    return mask.match(text).hasMatch();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1 || size > 4096)
        return 0;
    const int caret = int(int8_t(data[0]));
    const QByteArray rest(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const qsizetype split = rest.indexOf('\n');
    const QString oldText = QString::fromUtf8(split < 0 ? QByteArray("00:00:00") : rest.left(split));
    const QString newText = QString::fromUtf8(split < 0 ? rest : rest.mid(split + 1));

    const MCTimeEdit edit = MCTimeValidator::maskEdit(oldText, newText, caret);
    if (edit.caret < 0 || edit.caret > edit.text.size())
        abort();
    // Whatever is typed, a proper mask stays a proper mask.
    if (isMask(oldText) && !isMask(edit.text))
        abort();

    const QString normalised =
        MCTimeValidator::convertToTextTimeFrom(MCTimeValidator::convertTimeInSecondsFrom(newText));
    if (normalised.size() < 8)
        abort();
    return 0;
}
